// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_PLAYLISTNAME_H
#define MARVOLA_PLAYLIST_PLAYLISTNAME_H

#include <QtCore/QLatin1String>
#include <QtCore/QString>

/// A playlist's stored name, which is also its group in the list file: the name with a prefix, so that no playlist can
/// take the place of another group.
namespace marvola {

inline constexpr QLatin1String PlaylistPrefix("pl-");

inline QString storedPlaylistName(const QString &name)
{
    return PlaylistPrefix + name;
}

/// The name without the prefix's three characters, whatever they are; empty for a null name.
inline QString shownPlaylistName(const QString &storedName)
{
    return storedName.mid(PlaylistPrefix.size());
}

} // namespace marvola

#endif
