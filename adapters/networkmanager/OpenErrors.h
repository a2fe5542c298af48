// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_OPENERRORS_H
#define MARVOLA_NETWORKMANAGER_OPENERRORS_H

#include <marvola/NetworkManagerSession.h>

QT_FORWARD_DECLARE_CLASS(QDBusMessage)

namespace marvola {

using OpenError = NetworkManagerSession::OpenError;

/// What an error that came instead of an answer means for the opening of a link.
OpenError openErrorOf(const QDBusMessage &error);

/// Tells whether \a error leaves nobody to ask any further.
bool isServiceGone(OpenError error);

/// What the failure of a device for \a reason, a reason for a change of its state, means.
OpenError openErrorOfReason(uint reason);

} // namespace marvola

#endif
