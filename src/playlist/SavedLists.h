// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_SAVEDLISTS_H
#define MARVOLA_PLAYLIST_SAVEDLISTS_H

#include "platform/PlacedFile.h"
#include "playlist/CurrentList.h"

#include <QtCore/QMap>

/// The lists that survive a restart, in the list file: history, bookmarks and the current list with its active item. An
/// empty path stands for no list file; then nothing happens. Failures pass unnoticed.
namespace marvola {

/// What a library knows of the lists that are stored. Lists that it does not know, because they could not be read or
/// are on another card than those that were, must not be replaced by what began without them.
struct KnownLists
{
    QString path;                   ///< of the list file
    std::optional<MediumId> medium; ///< that they were read from or stored on; nothing when they were not
    std::size_t digest = 0;         ///< of what was read or stored
};

/// Stores the three lists unless there are some at \a known's path that it does not know. Afterwards the cursor of
/// \a list is the index of its active item, and they are known.
void storeSavedLists(const PlacedFile &listFile, const QStringList &history, const QMap<QString, QString> &bookmarks,
                     CurrentList &list, KnownLists &known);

/// Adds what is stored to the three lists, without regard for limits. When the list file could be read, they are known.
void restoreSavedLists(const PlacedFile &listFile, Shuffle shuffle, QStringList &history,
                       QMap<QString, QString> &bookmarks, CurrentList &list, KnownLists &known);

} // namespace marvola

#endif
