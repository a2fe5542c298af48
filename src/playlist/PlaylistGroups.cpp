// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistGroups.h"

#include "platform/FileNames.h"
#include "platform/NumberedGroup.h"

namespace marvola {

int findPlaylist(ConfigFile &file, const QString &group)
{
    const NumberedGroup catalogue(file, CatalogueGroup);
    const int count = catalogue.count();
    for (int number = 1; number <= count; ++number) {
        if (catalogue.entry(number) == group)
            return number;
    }
    return 0;
}

bool beginItems(ConfigFile &file, const QString &group, qsizetype count)
{
    NumberedGroup playlist(file, group);
    const int oldCount = playlist.count();
    if (!playlist.writeCount(static_cast<int>(count)))
        return false;
    for (int number = 1; number <= oldCount; ++number)
        playlist.removeEntry(number);
    return true;
}

PlaylistStatus writeItems(ConfigFile &file, const QString &group, const QStringList &items, quint16 maxItems)
{
    NumberedGroup playlist(file, group);
    const int count = static_cast<int>(qMin<qsizetype>(items.size(), maxItems));
    for (int number = 1; number <= count; ++number) {
        if (!playlist.writeEntry(number, items.at(number - 1))) {
            // Should this be refused as well, the commit will be, too.
            static_cast<void>(playlist.writeCount(number - 1));
            return PlaylistStatus::Failed;
        }
    }
    if (items.size() == count)
        return PlaylistStatus::Done;
    return playlist.writeCount(count) ? PlaylistStatus::LimitReached : PlaylistStatus::Failed;
}

} // namespace marvola
