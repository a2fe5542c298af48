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

/// Stores the three lists. Afterwards the cursor of \a list is the index of its active item.
void storeSavedLists(const PlacedFile &listFile, const QStringList &history, const QMap<QString, QString> &bookmarks,
                     CurrentList &list);

/// Adds what is stored to the three lists, without regard for limits.
/// \return false when there is a list file that could not be read; what it holds must not be overwritten by lists that
/// know nothing of it
[[nodiscard]] bool restoreSavedLists(const PlacedFile &listFile, Shuffle shuffle, QStringList &history,
                                     QMap<QString, QString> &bookmarks, CurrentList &list);

} // namespace marvola

#endif
