// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistFile.h"

#include "platform/FileNames.h"
#include "platform/NumberedGroup.h"
#include "playlist/PlaylistName.h"

#include <marvola/ConfigFile.h>

namespace marvola {

namespace {

// Enters a new playlist into the catalogue and writes its count; a refused write takes back what was done before.
PlaylistStatus enterPlaylist(ConfigFile &file, const QString &group, int items, quint16 maxLists)
{
    NumberedGroup catalogue(file, CatalogueGroup);
    const int count = catalogue.count();
    if (count >= maxLists)
        return PlaylistStatus::LimitReached;
    if (!catalogue.writeCount(count + 1))
        return PlaylistStatus::Failed;
    if (catalogue.writeEntry(count + 1, group)) {
        if (NumberedGroup(file, group).writeCount(items))
            return PlaylistStatus::Done;
        catalogue.removeEntry(count + 1);
    }
    static_cast<void>(catalogue.writeCount(count));
    return PlaylistStatus::Failed;
}

PlaylistStatus beginPlaylist(ConfigFile &file, const QString &group, int items, quint16 maxLists)
{
    if (findPlaylist(file, group) == 0)
        return enterPlaylist(file, group, items, maxLists);
    return NumberedGroup(file, group).writeCount(items) ? PlaylistStatus::Done : PlaylistStatus::Failed;
}

} // namespace

PlaylistStatus savePlayList(const PlacedFile &listFile, const QString &name, const PlaylistLimits &limits,
                            CurrentList &list)
{
    if (name.isEmpty())
        return PlaylistStatus::EmptyName;
    if (listFile.isEmpty())
        return PlaylistStatus::Failed;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    const QString group = storedPlaylistName(name);
    const int oldCount = NumberedGroup(file, group).count();
    PlaylistStatus status = beginPlaylist(file, group, list.count(), limits.lists);
    if (status == PlaylistStatus::Done)
        status = writeItems(file, group, list.items(), limits.items, oldCount);
    // Deliberate: only a complete save adopts the name, whether or not the commit succeeds then. What was written
    // before it stopped is committed all the same.
    if (status != PlaylistStatus::Done)
        return status;
    list.setStoredName(group);
    return file.flush() ? PlaylistStatus::Done : PlaylistStatus::Failed;
}

QStringList loadPlayList(const PlacedFile &listFile, const QString &name, Shuffle shuffle, CurrentList &list)
{
    if (name.isEmpty() || listFile.isEmpty())
        return {};
    ConfigFile file = listFile.open();
    const QString group = storedPlaylistName(name);
    if (findPlaylist(file, group) == 0)
        return {};
    QStringList items = NumberedGroup(file, group).entries();
    const auto storedCount = static_cast<int>(items.size());
    items.removeIf([](const QString &item) { return item.isNull(); });
    list.load(group, items, storedCount, shuffle);
    return list.items();
}

} // namespace marvola
