// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_REFRESHRUN_H
#define MARVOLA_CLI_REFRESHRUN_H

#include <QtCore/QStringList>

namespace marvola {

class Session;

/// How a refresh went.
struct RefreshRun
{
    QStringList completed; ///< names of the places that were indexed to their end
    bool isCancelled = false;
    qint64 milliseconds = 0;
};

/// Runs one refresh to its end, or until the user stops it, and shows its progress. The index is consistent afterwards.
RefreshRun runRefresh(Session &session);

} // namespace marvola

#endif
