// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_DATALINK_H
#define MARVOLA_CLI_DATALINK_H

#include "Commands.h"

#include <QtCore/QString>

namespace marvola {

/// What the command line asks of the data link.
struct LinkRequest
{
    QString profile;       ///< the network profile for this run; empty for the one of the settings
    bool endsOnce = false; ///< close the link as soon as it is up
};

/// Opens the data link, tells of it and holds it until it breaks or the user ends it. There are two of this function:
/// one for a program with a link service, one that only says that there is none.
///
/// Call it before the library is made, which makes its link service along with itself, and before any thread is
/// started.
Action openDataLink(const LinkRequest &request);

} // namespace marvola

#endif
