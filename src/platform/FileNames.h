// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_FILENAMES_H
#define MARVOLA_PLATFORM_FILENAMES_H

#include <QtCore/QLatin1String>
#include <QtCore/QString>

/// The names of the library's files and of the list file's groups, all in one place.
namespace marvola {

/// Groups and keys: playlists, saved lists, and the index's artists, albums and genres.
inline constexpr QLatin1String ListFileName(".marvola.list");
/// Records of the indexed media files.
inline constexpr QLatin1String InfoFileName(".marvola.info");
/// Written, to see whether there is room, and removed at once.
inline constexpr QLatin1String ProbeFileName("haha");
/// The settings file, below the directory that the player may write to.
inline constexpr QLatin1String SettingsFileName("setup/juv_marvola.cfg");

inline constexpr QLatin1String ArtistGroup("artistlist");
inline constexpr QLatin1String AlbumGroup("albumlist");
inline constexpr QLatin1String GenreGroup("genrelist");
inline constexpr QLatin1String CatalogueGroup("allplaylist");

/// \a left and \a right with exactly one "/" between them; a "/" that \a left ends with is that one.
inline QString joinPath(const QString &left, const QString &right)
{
    return left.endsWith(QLatin1Char('/')) ? left + right : left + QLatin1Char('/') + right;
}

} // namespace marvola

#endif
