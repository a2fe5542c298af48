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

/// What a library knows of the lists that are stored in one place. Lists that it does not know, because they could not
/// be read or are on another card than those that were, must not be replaced by what began without them.
struct KnownLists
{
    std::optional<MediumId> medium; ///< that they were read from or stored on; nothing when they were not
    std::size_t digest = 0;         ///< of what was read or stored
    std::size_t lastTried = 0;      ///< of what may have been stored, though that was told as failed
};

/// Stores the three lists unless there are others that are not \a known; what was stored is. Afterwards the cursor of
/// \a list is the index of its active item.
void storeSavedLists(const PlacedFile &listFile, const QStringList &history, const QMap<QString, QString> &bookmarks,
                     CurrentList &list, KnownLists &known);

/// Adds what is stored to the three lists, without regard for limits. When the list file could be read, it is \a known;
/// else that stays as it was.
void restoreSavedLists(const PlacedFile &listFile, Shuffle shuffle, QStringList &history,
                       QMap<QString, QString> &bookmarks, CurrentList &list, KnownLists &known);

} // namespace marvola

#endif
