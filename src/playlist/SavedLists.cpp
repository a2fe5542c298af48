// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/SavedLists.h"

#include "platform/NumberedGroup.h"

#include <marvola/ConfigFile.h>

namespace marvola {

namespace {

constexpr QLatin1String HistoryGroup("history");
constexpr QLatin1String BookmarkGroup("bookmark");
constexpr QLatin1String CurrentListGroup("currentplaylist");
constexpr QLatin1String NameKey("currentplaylistname");
constexpr QLatin1String ActiveIndexKey("currentitem");

// Nothing here can be reported, so each entry is tried: one that is refused costs only itself.
void storeEntries(NumberedGroup group, const QStringList &entries)
{
    const int count = static_cast<int>(qMin<qsizetype>(entries.size(), NumberedGroup::MaxEntries));
    const int oldCount = group.count();
    group.removeEntries(count + 1, oldCount);
    static_cast<void>(group.writeCount(count));
    for (int number = group.writeEntries(entries, count) + 1; number <= count; ++number) {
        if (!group.writeEntry(number, entries.at(number - 1)) && number <= oldCount)
            group.removeEntry(number);
    }
}

// A missing entry is an empty one.
QStringList storedEntries(const NumberedGroup &group)
{
    QStringList entries = group.entries();
    for (QString &entry : entries) {
        if (entry.isNull())
            entry = QLatin1String("");
    }
    return entries;
}

void storeBookmarks(ConfigFile &file, const QMap<QString, QString> &bookmarks)
{
    const QMap<QString, QString> old = file.getGroupEntriesKeyList(BookmarkGroup);
    for (auto bookmark = old.cbegin(); bookmark != old.cend(); ++bookmark)
        file.removeEntry(BookmarkGroup, bookmark.key());
    const auto count = qMin<qsizetype>(bookmarks.size(), NumberedGroup::MaxEntries);
    file.writeEntry(BookmarkGroup, NumberedGroup::CounterKey, static_cast<int>(count));
    for (auto bookmark = bookmarks.cbegin(); bookmark != bookmarks.cend(); ++bookmark) {
        // Deliberate: bookmarks share the group with their count, and one that has its name loses to it.
        if (bookmark.key() != NumberedGroup::CounterKey)
            file.writeEntry(BookmarkGroup, bookmark.key(), bookmark.value());
    }
}

void storeCurrentList(ConfigFile &file, CurrentList &list)
{
    file.writeEntry(CurrentListGroup, NameKey, list.storedName());
    // Deliberate: the list keeps the index as its cursor, as players that go on after storing have come to expect.
    file.writeEntry(CurrentListGroup, ActiveIndexKey, list.turnCursorIntoIndex());
    storeEntries(NumberedGroup(file, CurrentListGroup), list.items());
}

} // namespace

void storeSavedLists(const PlacedFile &listFile, const QStringList &history, const QMap<QString, QString> &bookmarks,
                     CurrentList &list)
{
    if (listFile.isEmpty())
        return;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    storeEntries(NumberedGroup(file, HistoryGroup), history);
    storeBookmarks(file, bookmarks);
    storeCurrentList(file, list);
}

bool restoreSavedLists(const PlacedFile &listFile, Shuffle shuffle, QStringList &history,
                       QMap<QString, QString> &bookmarks, CurrentList &list)
{
    if (listFile.isEmpty())
        return true;
    ConfigFile file = listFile.open();
    history += storedEntries(NumberedGroup(file, HistoryGroup));
    bookmarks.insert(file.getGroupEntriesKeyList(BookmarkGroup));
    bookmarks.remove(NumberedGroup::CounterKey);
    const QString name = file.readEntry(CurrentListGroup, NameKey);
    const int activeIndex = file.readNumEntry(CurrentListGroup, ActiveIndexKey, NoPosition);
    list.restore(name, storedEntries(NumberedGroup(file, CurrentListGroup)), activeIndex, shuffle);
    return !file.isUnreadable();
}

} // namespace marvola
