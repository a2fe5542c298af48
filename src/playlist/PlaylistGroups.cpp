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

PlaylistStatus writeItems(ConfigFile &file, const QString &group, const QStringList &items, quint16 maxItems,
                          int oldCount)
{
    NumberedGroup playlist(file, group);
    const int count = static_cast<int>(qMin<qsizetype>(items.size(), maxItems));
    const int written = playlist.writeEntries(items, count);
    playlist.removeEntries(written + 1, oldCount);
    if (written == items.size())
        return PlaylistStatus::Done;
    // Should this be refused as well, the commit will be, too.
    const bool isCounted = playlist.writeCount(written);
    return isCounted && written == count ? PlaylistStatus::LimitReached : PlaylistStatus::Failed;
}

} // namespace marvola
