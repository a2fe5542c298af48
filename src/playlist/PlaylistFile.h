// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_PLAYLISTFILE_H
#define MARVOLA_PLAYLIST_PLAYLISTFILE_H

#include "platform/PlacedFile.h"
#include "playlist/CurrentList.h"
#include "playlist/PlaylistGroups.h"

/// Playlists between the list file and the current list. Each call opens the list file for its own length; an empty
/// path stands for none. A call that writes is one step as seen by other writers of the file.
namespace marvola {

/// Stores the items of \a list as the playlist \a name, new or in place of the old one. A complete save makes \a name
/// the list's name; what stops early leaves a playlist with the items written so far, and the list's name alone.
PlaylistStatus savePlayList(const PlacedFile &listFile, const QString &name, const PlaylistLimits &limits,
                            CurrentList &list);

/// Makes the playlist \a name the current list, without regard for limits.
/// \return the items; none, with \a list untouched, when the catalogue does not hold the name
QStringList loadPlayList(const PlacedFile &listFile, const QString &name, Shuffle shuffle, CurrentList &list);

} // namespace marvola

#endif
