// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FOOTPRINT_COLLECTION_H
#define MARVOLA_FOOTPRINT_COLLECTION_H

#include <QtCore/QString>

/// How much a device has.
struct Amounts
{
    int mediaFiles;
    int filesPerArtist;
    int items; ///< of the list being played and of each playlist
    int playlists;
    int bookmarks;
    int history;
};

/// Makes a device in \a dir: empty files, a settings file whose limits are just \a amounts, and saved lists of that
/// length. \return false when something could not be written
[[nodiscard]] bool makeCollection(const QString &dir, const Amounts &amounts);

#endif
