// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_PLAYLISTCATALOGUE_H
#define MARVOLA_PLAYLIST_PLAYLISTCATALOGUE_H

#include "platform/PlacedFile.h"
#include "playlist/CurrentList.h"
#include "playlist/PlaylistGroups.h"

#include <atomic>

/// The playlists of the list file as a whole. Each call opens the list file for its own length; an empty path stands
/// for none. A call that writes is one step as seen by other writers of the file.
namespace marvola {

/// Stores the current list back into its own playlist, if it has a name, and starts an empty one without a name. The
/// list stays as it is when the playlist could not be written whole.
PlaylistStatus newPlayList(const PlacedFile &listFile, const PlaylistLimits &limits, CurrentList &list);

/// Takes \a name out of the catalogue; the playlist's items stay in the file until the name is used again.
/// \return false when the catalogue does not hold it, and then loses all its entries, or when it could not be written
[[nodiscard]] bool deletePlayList(const PlacedFile &listFile, const QString &name);

/// Removes every playlist of the catalogue with its items, and the catalogue.
[[nodiscard]] bool deleteAllPlayLists(const PlacedFile &listFile);

/// Renames a playlist, which keeps its place in the catalogue; \a list moves along when it has the old name.
/// \return false, with nothing changed, when there is no \a oldName, when \a newName is taken or cannot be written
[[nodiscard]] bool renamePlayList(const PlacedFile &listFile, const QString &oldName, const QString &newName,
                                  CurrentList &list);

bool hasPlayList(const PlacedFile &listFile, const QString &name);

/// A name that no playlist has, "playlist" and a number: the process's counter, counted up past the names in use. Null
/// when there is no list file.
QString getDefaultPlayListName(const PlacedFile &listFile);
/// The same with a counter of the caller's.
QString getDefaultPlayListName(const PlacedFile &listFile, std::atomic<quint32> &counter);

} // namespace marvola

#endif
