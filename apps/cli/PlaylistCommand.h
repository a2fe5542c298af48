// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_PLAYLISTCOMMAND_H
#define MARVOLA_CLI_PLAYLISTCOMMAND_H

#include "Commands.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

/// What the subcommands of "playlist" share.
namespace marvola {

/// What the library says of a playlist that it was to store.
enum class PlaylistResult { Done = 0, Failed = 1, LimitReached = 2, EmptyName = 3 };

/// The playlist that the user means: the very name, or the name as this program prints it. Null for none.
QString playlistMeant(Session &session, const QString &text);

[[nodiscard]] ExitStatus failUnknownPlaylist(const QString &text);

/// The line for the user about why the playlist \a name is not stored whole.
[[nodiscard]] ExitStatus failToStore(Session &session, const QString &name, PlaylistResult result);

/// The items of a playlist; the list being played stays as it is.
QStringList itemsOfPlaylist(Session &session, const QString &name);

/// Adds "export" and "import" to the command of the playlists.
void declarePlaylistTransfer(CLI::App &playlist, Action &action);

} // namespace marvola

#endif
