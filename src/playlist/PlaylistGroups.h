// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_PLAYLISTGROUPS_H
#define MARVOLA_PLAYLIST_PLAYLISTGROUPS_H

#include <QtCore/QString>
#include <QtCore/QStringList>

class ConfigFile;

/// How playlists lie in the list file: the catalogue is a numbered group of the playlists' stored names, and each
/// stored name is a numbered group of the playlist's items.
namespace marvola {

/// What became of a playlist; the numbers are those that the player gets.
enum class PlaylistStatus : quint8 {
    Done = 0,
    Failed = 1,       ///< no list file, a refused write, or a failed commit
    LimitReached = 2, ///< the catalogue is full, or the items were cut
    EmptyName = 3
};

struct PlaylistLimits
{
    quint16 lists = 0; ///< playlists in the catalogue
    quint16 items = 0; ///< items in a playlist
};

/// The catalogue's first number that holds \a group, or 0.
int findPlaylist(ConfigFile &file, const QString &group);

/// Writes a playlist's items, at most \a maxItems, in the place of the \a oldCount that it had. Their count is written
/// already; where it stops early, what was written stays and the count says so.
PlaylistStatus writeItems(ConfigFile &file, const QString &group, const QStringList &items, quint16 maxItems,
                          int oldCount);

} // namespace marvola

#endif
