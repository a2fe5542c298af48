// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_KEPTLISTS_H
#define MARVOLA_CLI_KEPTLISTS_H

#include "ExitStatus.h"

#include <QtCore/QMap>
#include <QtCore/QString>

#include <functional>

/// The lists that one run of the program leaves to the next, as they stand in the list file. The library neither hands
/// out the links of its bookmarks nor tells whether it could store its lists; the file does both.
namespace marvola {

class Session;

/// The bookmarks of the file, from name to link, in the library's order.
QMap<QString, QString> keptBookmarks(Session &session);

/// The link of the file's history that was played last.
QString latestKeptLink(Session &session);

/// Fails, with a line for the user, when the library has no directory to keep its lists in.
[[nodiscard]] ExitStatus requireListFile(Session &session);

/// Stores settings and lists. Fails, with a line for the user, when \a isKept does not find the change in the file.
[[nodiscard]] ExitStatus keepLists(Session &session, const std::function<bool()> &isKept);

} // namespace marvola

#endif
