// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/SavedLists.h"

#include "platform/NumberedGroup.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QHashFunctions>

#include <functional>
#include <string_view>

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

void storeCurrentList(ConfigFile &file, CurrentList &list, const QStringList &items)
{
    file.writeEntry(CurrentListGroup, NameKey, list.storedName());
    // Deliberate: the list keeps the index as its cursor, as players that go on after storing have come to expect.
    file.writeEntry(CurrentListGroup, ActiveIndexKey, list.turnCursorIntoIndex());
    storeEntries(NumberedGroup(file, CurrentListGroup), items);
}

std::size_t digestOf(const QString &text, std::size_t before)
{
    const std::u16string_view view(reinterpret_cast<const char16_t *>(text.utf16()),
                                   static_cast<std::size_t>(text.size()));
    return qHash(std::hash<std::u16string_view>()(view), before);
}

std::size_t digestOf(const QStringList &entries, std::size_t before)
{
    const qsizetype count = qMin<qsizetype>(entries.size(), NumberedGroup::MaxEntries);
    std::size_t digest = qHash(count, before);
    for (qsizetype number = 0; number < count; ++number)
        digest = digestOf(entries.at(number), digest);
    return digest;
}

/// Of the three lists as they are in the file; a list's name and active item go with its items.
std::size_t digestOf(const QStringList &history, const QMap<QString, QString> &bookmarks, const QStringList &items)
{
    std::size_t digest = digestOf(items, digestOf(history, 0));
    for (auto bookmark = bookmarks.begin(); bookmark != bookmarks.end(); ++bookmark) {
        if (bookmark.key() != NumberedGroup::CounterKey)
            digest = digestOf(bookmark.value(), digestOf(bookmark.key(), digest));
    }
    return digest;
}

/// The three lists as a file has them.
struct StoredLists
{
    QStringList history;
    QMap<QString, QString> bookmarks;
    QString name;
    int activeIndex = NoPosition;
    QStringList items;

    bool isEmpty() const { return history.isEmpty() && bookmarks.isEmpty() && items.isEmpty(); }
};

StoredLists storedLists(ConfigFile &file)
{
    StoredLists lists;
    lists.history = storedEntries(NumberedGroup(file, HistoryGroup));
    lists.bookmarks = file.getGroupEntriesKeyList(BookmarkGroup);
    lists.bookmarks.remove(NumberedGroup::CounterKey);
    lists.name = file.readEntry(CurrentListGroup, NameKey);
    lists.activeIndex = file.readNumEntry(CurrentListGroup, ActiveIndexKey, NoPosition);
    lists.items = storedEntries(NumberedGroup(file, CurrentListGroup));
    return lists;
}

/// A library that read or stored its lists on a medium has the last word there. The same card may have become another
/// medium to the system; then its lists are as they were.
bool areReplaceable(ConfigFile &file, const PlacedFile &listFile, const KnownLists &known)
{
    // What cannot be read now looks like nothing.
    if (file.isUnreadable())
        return false;
    if (known.medium && listFile.medium() == known.medium)
        return true;
    const StoredLists lists = storedLists(file);
    const std::size_t digest = digestOf(lists.history, lists.bookmarks, lists.items);
    return lists.isEmpty() || (known.medium && (digest == known.digest || digest == known.lastTried));
}

} // namespace

void storeSavedLists(const PlacedFile &listFile, const QStringList &history, const QMap<QString, QString> &bookmarks,
                     CurrentList &list, KnownLists &known)
{
    if (listFile.isEmpty())
        return;
    ConfigFile file = listFile.open();
    file.lockForUpdate();
    if (!areReplaceable(file, listFile, known)) {
        list.turnCursorIntoIndex();
        return;
    }
    const QStringList items = list.items();
    known.lastTried = digestOf(history, bookmarks, items);
    storeEntries(NumberedGroup(file, HistoryGroup), history);
    storeBookmarks(file, bookmarks);
    storeCurrentList(file, list, items);
    if (file.flush())
        known = {listFile.medium(), known.lastTried, known.lastTried};
}

void restoreSavedLists(const PlacedFile &listFile, Shuffle shuffle, QStringList &history,
                       QMap<QString, QString> &bookmarks, CurrentList &list, KnownLists &known)
{
    if (listFile.isEmpty())
        return;
    ConfigFile file = listFile.open();
    const StoredLists lists = storedLists(file);
    // What is read while a card goes is the folder below it, where there is nothing.
    if (!file.isUnreadable() && listFile.folder() && listFile.isInPlace()) {
        const std::size_t digest = digestOf(lists.history, lists.bookmarks, lists.items);
        known = {listFile.medium(), digest, digest};
    }
    history += lists.history;
    bookmarks.insert(lists.bookmarks);
    bookmarks.remove(NumberedGroup::CounterKey);
    list.restore(lists.name, lists.items, lists.activeIndex, shuffle);
}

} // namespace marvola
