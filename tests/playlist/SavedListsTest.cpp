// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/SavedLists.h"

#include "playlist/ListFileOnDisk.h"
#include "playlist/ListText.h"
#include "playlist/ScriptedDraws.h"

#include <gtest/gtest.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

using Bookmarks = QMap<QString, QString>;

PlacedFile placed(const ListFileOnDisk &file)
{
    return PlacedFile::here(file.path());
}

/// As a library has it that read its lists there before.
KnownLists anyLists(const ListFileOnDisk &file)
{
    KnownLists known;
    known.medium = placed(file).medium();
    return known;
}

void store(const ListFileOnDisk &file, const QStringList &history, const Bookmarks &bookmarks = {})
{
    KnownLists known = anyLists(file);
    CurrentList list;
    storeSavedLists(placed(file), history, bookmarks, list, known);
}

/// What comes back, in lists that were empty before.
struct Restored
{
    explicit Restored(const ListFileOnDisk &file, Shuffle shuffle = Shuffle::Off,
                      const Reseed &reseed = reseedFromClock)
        : list(reseed)
    {
        restoreSavedLists(placed(file), shuffle, history, bookmarks, list, known);
    }

    KnownLists known;
    QStringList history;
    Bookmarks bookmarks;
    CurrentList list;
};

} // namespace

TEST(SavedLists, EverythingComesBack)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a b c d e", 3);
    list.setName(u"Rock"_s);
    const Bookmarks bookmarks = {{u"News"_s, u"rtsp://n"_s}, {u"1"_s, u"rtsp://1"_s}, {u""_s, u"x"_s}};
    storeSavedLists(placed(file), words("h1 h2"), bookmarks, list, known);
    EXPECT_EQ(shown(list), "a b c d e | 10 11 12 13 14 | 0 1 2 3 4 | 3");

    const Restored restored(file);
    EXPECT_EQ(shown(restored.history), "h1 h2");
    EXPECT_EQ(restored.bookmarks, bookmarks);
    EXPECT_EQ(restored.list.storedName(), u"pl-Rock"_s);
    EXPECT_EQ(shown(restored.list), "a b c d e | 0 0 0 0 0 | 0 1 2 3 4 | 3");
}

TEST(SavedLists, StoredFormat)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a b", 1);
    list.setName(u"Rock"_s);
    storeSavedLists(placed(file), words("h1 h2"), {{u"News"_s, u"rtsp://n"_s}}, list, known);
    EXPECT_EQ(file.group("history"), "1=h1 2=h2 counter=2");
    EXPECT_EQ(file.group("bookmark"), "News=rtsp://n counter=1");
    EXPECT_EQ(file.group("currentplaylist"), "1=a 2=b counter=2 currentitem=1 currentplaylistname=pl-Rock");
}

TEST(SavedLists, EmptyListsAreStored)
{
    const ListFileOnDisk file;
    store(file, {});
    EXPECT_EQ(file.group("history"), "counter=0");
    EXPECT_EQ(file.group("bookmark"), "counter=0");
    EXPECT_EQ(file.group("currentplaylist"), "counter=0 currentitem=-1 currentplaylistname=");
    const Restored restored(file);
    EXPECT_TRUE(restored.history.isEmpty());
    EXPECT_TRUE(restored.bookmarks.isEmpty());
    EXPECT_EQ(shown(restored.list), " |  |  | -1");
}

TEST(SavedLists, ShorterListsLeaveNoStaleEntries)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a b c d", 0);
    storeSavedLists(placed(file), words("1 2 3 4 5"), {{u"a"_s, u"1"_s}, {u"b"_s, u"2"_s}}, list, known);
    list.setItem(u"x"_s);
    storeSavedLists(placed(file), words("6 7"), {{u"b"_s, u"3"_s}}, list, known);
    EXPECT_EQ(file.group("history"), "1=6 2=7 counter=2");
    EXPECT_EQ(file.group("bookmark"), "b=3 counter=1");
    EXPECT_EQ(file.group("currentplaylist"), "1=x counter=1 currentitem=0 currentplaylistname=");
    list.clear();
    storeSavedLists(placed(file), {}, {}, list, known);
    EXPECT_EQ(file.group("currentplaylist"), "counter=0 currentitem=-1 currentplaylistname=");
}

TEST(SavedLists, BookmarkNamedCounterLosesToTheCount)
{
    const ListFileOnDisk file;
    store(file, {}, {{u"counter"_s, u"rtsp://x"_s}, {u"other"_s, u"rtsp://y"_s}});
    EXPECT_EQ(file.group("bookmark"), "counter=2 other=rtsp://y");
    EXPECT_EQ(Restored(file).bookmarks, (Bookmarks{{u"other"_s, u"rtsp://y"_s}}));
}

TEST(SavedLists, StoringTurnsTheCursorIntoTheListPosition)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listPlayedAs("a b c d", {2, 0, 3, 1}, 2);
    storeSavedLists(placed(file), {}, {}, list, known);
    EXPECT_EQ(file.group("currentplaylist"), "1=a 2=b 3=c 4=d counter=4 currentitem=3 currentplaylistname=");
    EXPECT_EQ(shown(list), "a b c d | 10 11 12 13 | 2 0 3 1 | 3");
}

TEST(SavedLists, LeftoverCursorIsStoredAsNone)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a b", 5);
    storeSavedLists(placed(file), {}, {}, list, known);
    EXPECT_EQ(file.group("currentplaylist"), "1=a 2=b counter=2 currentitem=-1 currentplaylistname=");
    EXPECT_EQ(list.cursor(), -1);
}

TEST(SavedLists, ShuffleOnPutsTheActiveItemFirst)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a b c d e", 3);
    storeSavedLists(placed(file), {}, {}, list, known);
    const ScriptedDraws draws({1, 2});
    const Restored restored(file, Shuffle::On, draws.reseed());
    // Shuffled: 2 0 1 3 4
    EXPECT_EQ(shown(restored.list), "a b c d e | 0 0 0 0 0 | 3 0 1 2 4 | 0");
}

TEST(SavedLists, ActiveItemThatIsNoneKeepsTheOrderWithShuffleOn)
{
    const ListFileOnDisk file;
    file.writeList("currentplaylist", words("a b c"));
    file.write("currentplaylist", "currentitem", u"3"_s);
    EXPECT_EQ(shown(Restored(file, Shuffle::On).list), "a b c | 0 0 0 | 0 1 2 | -1");
}

TEST(SavedLists, EmptyListStillHasItsName)
{
    const ListFileOnDisk file;
    file.write("currentplaylist", "counter", u"0"_s);
    file.write("currentplaylist", "currentplaylistname", u"pl-Rock"_s);
    const Restored restored(file);
    EXPECT_TRUE(restored.list.isEmpty());
    EXPECT_EQ(restored.list.name(), u"Rock"_s);
}

TEST(SavedLists, MissingFileGivesEmptyListsAndIsNotMade)
{
    const ListFileOnDisk file;
    const Restored restored(file, Shuffle::On);
    EXPECT_TRUE(restored.history.isEmpty());
    EXPECT_TRUE(restored.bookmarks.isEmpty());
    EXPECT_EQ(shown(restored.list), " |  |  | -1");
    EXPECT_TRUE(file.names().isEmpty());
}

TEST(SavedLists, CountLargerThanTheEntriesGivesEmptyOnes)
{
    const ListFileOnDisk file;
    file.writeList("history", words("a"));
    file.write("history", "counter", u"3"_s);
    file.writeList("currentplaylist", words("x"));
    file.write("currentplaylist", "counter", u"2"_s);
    const Restored restored(file);
    EXPECT_EQ(restored.history, (QStringList{u"a"_s, u""_s, u""_s}));
    EXPECT_FALSE(restored.history.at(1).isNull());
    EXPECT_EQ(restored.list.items(), (QStringList{u"x"_s, u""_s}));
    EXPECT_FALSE(restored.list.itemAt(1).isNull());
    EXPECT_EQ(restored.list.flags().size(), 2);
}

TEST(SavedLists, ForeignCountsAreBounded)
{
    const ListFileOnDisk file;
    file.writeList("history", words("a b"));
    file.write("history", "counter", u"-2"_s);
    file.writeList("currentplaylist", words("x"));
    file.write("currentplaylist", "counter", u"2000000000"_s);
    const Restored restored(file);
    EXPECT_TRUE(restored.history.isEmpty());
    EXPECT_EQ(restored.list.count(), 65535);
}

TEST(SavedLists, EveryStoredEntryIsTaken)
{
    QStringList many;
    Bookmarks bookmarks;
    for (int number = 0; number < 65535; ++number) {
        many.append(u"rtsp://"_s + QString::number(number));
        bookmarks.insert(u"Bookmark"_s + QString::number(number), many.last());
    }
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list;
    list.restore(QString(), many, 65534, Shuffle::Off);
    storeSavedLists(placed(file), many, bookmarks, list, known);
    const Restored restored(file);
    EXPECT_EQ(restored.history, many);
    EXPECT_EQ(restored.bookmarks, bookmarks);
    EXPECT_EQ(restored.list.items(), many);
    EXPECT_EQ(restored.list.cursor(), 65534);
}

TEST(SavedLists, RestoringAddsToWhatIsThere)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a b", 1);
    storeSavedLists(placed(file), words("h"), {{u"k"_s, u"stored"_s}}, list, known);
    QStringList history = words("g");
    Bookmarks bookmarks = {{u"j"_s, u"own"_s}, {u"k"_s, u"own"_s}};
    restoreSavedLists(placed(file), Shuffle::Off, history, bookmarks, list, known);
    EXPECT_EQ(shown(history), "g h");
    EXPECT_EQ(bookmarks, (Bookmarks{{u"j"_s, u"own"_s}, {u"k"_s, u"stored"_s}}));
    EXPECT_EQ(shown(list), "a b a b | 10 11 0 0 | 0 1 0 1 | 1");
}

TEST(SavedLists, RestoringRemovesABookmarkThatHasTheNameOfTheCount)
{
    const ListFileOnDisk file;
    store(file, {}, {{u"k"_s, u"stored"_s}});
    Restored restored(file);
    restored.bookmarks.insert(u"counter"_s, u"own"_s);
    restoreSavedLists(placed(file), Shuffle::Off, restored.history, restored.bookmarks, restored.list, restored.known);
    EXPECT_EQ(restored.bookmarks, (Bookmarks{{u"k"_s, u"stored"_s}}));
}

TEST(SavedLists, NoListFileDoesNothing)
{
    KnownLists known;
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 1);
    QStringList history = words("h");
    Bookmarks bookmarks = {{u"counter"_s, u"x"_s}};
    storeSavedLists(QString(), history, bookmarks, list, known);
    restoreSavedLists(QString(), Shuffle::On, history, bookmarks, list, known);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 1");
    EXPECT_EQ(shown(history), "h");
    EXPECT_EQ(bookmarks.size(), 1);
}

TEST(SavedLists, ListsThatCannotBeReadAreNotKnown)
{
    const ListFileOnDisk file;
    ASSERT_TRUE(file.becomeADirectory());
    CurrentList list = listOf("a", 0);
    QStringList history = words("h");
    Bookmarks bookmarks;
    KnownLists known;
    restoreSavedLists(placed(file), Shuffle::Off, history, bookmarks, list, known);
    EXPECT_FALSE(known.medium);
    EXPECT_EQ(shown(history), "h");
}

namespace {

/// Stores another history in a library that knows \a known, and shows what is stored then.
std::string historyAfterStoring(const ListFileOnDisk &file, KnownLists known)
{
    CurrentList list;
    storeSavedLists(placed(file), words("new"), {}, list, known);
    return shown(Restored(file).history);
}

} // namespace

TEST(SavedLists, ListsThatWereNotReadStay)
{
    const ListFileOnDisk file;
    KnownLists unread;
    EXPECT_EQ(historyAfterStoring(file, unread), "new");
    EXPECT_EQ(historyAfterStoring(file, Restored(file).known), "new");
    store(file, words("theirs"));
    EXPECT_EQ(historyAfterStoring(file, unread), "theirs");
    store(file, {}, {{u"theirs"_s, u"x"_s}});
    EXPECT_EQ(historyAfterStoring(file, unread), "");
    store(file, {});
    EXPECT_EQ(historyAfterStoring(file, unread), "new");
}

TEST(SavedLists, OtherListsOnAnotherMediumStay)
{
    const ListFileOnDisk file;
    store(file, words("ours"));
    KnownLists known = Restored(file).known;
    ASSERT_TRUE(known.medium);
    known.medium->device += 1;
    store(file, words("theirs"));
    EXPECT_EQ(historyAfterStoring(file, known), "theirs");
    known.medium->device -= 1;
    known.medium->filesystem += 1;
    EXPECT_EQ(historyAfterStoring(file, known), "theirs");
    known.medium->filesystem -= 1;
    EXPECT_EQ(historyAfterStoring(file, known), "new");
}

TEST(SavedLists, ListsThatAreAsTheyWereReadAreReplacedOnWhateverMedium)
{
    const ListFileOnDisk file;
    KnownLists known;
    CurrentList list = listOf("a b", 1);
    storeSavedLists(placed(file), words("ours"), {{u"k"_s, u"v"_s}}, list, known);
    ASSERT_TRUE(known.medium);
    for (KnownLists each : {known, Restored(file).known}) {
        each.medium->device += 1;
        EXPECT_EQ(historyAfterStoring(file, each), "new");
        storeSavedLists(placed(file), words("ours"), {{u"k"_s, u"v"_s}}, list, known);
    }
}

TEST(SavedLists, ListsThatCannotBeReadWhenTheyAreStoredDoNotBecomeKnown)
{
    const ListFileOnDisk file;
    store(file, words("old"));
    ASSERT_TRUE(QFile::rename(file.path(), file.path() + u".away"_s) && file.becomeADirectory());
    KnownLists known;
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    storeSavedLists(placed(file), words("new"), {}, list, known);
    EXPECT_FALSE(known.medium);
    EXPECT_EQ(list.cursor(), 2) << "as after any other store";
    ASSERT_TRUE(QDir().rmdir(file.path()) && QFile::rename(file.path() + u".away"_s, file.path()));
    EXPECT_EQ(historyAfterStoring(file, known), "old");
}

TEST(SavedLists, ReadingThatFailsLaterLeavesThemKnown)
{
    const ListFileOnDisk file;
    store(file, words("ours"));
    Restored restored(file);
    ASSERT_TRUE(QFile::rename(file.path(), file.path() + u".away"_s) && file.becomeADirectory());
    restoreSavedLists(placed(file), Shuffle::Off, restored.history, restored.bookmarks, restored.list, restored.known);
    restoreSavedLists(QString(), Shuffle::Off, restored.history, restored.bookmarks, restored.list, restored.known);
    ASSERT_TRUE(QDir().rmdir(file.path()) && QFile::rename(file.path() + u".away"_s, file.path()));
    EXPECT_EQ(historyAfterStoring(file, restored.known), "new");
}

TEST(SavedLists, ListsThatMayHaveBeenStoredAreKnown)
{
    const ListFileOnDisk file;
    store(file, words("ours"));
    const KnownLists before = Restored(file).known;
    KnownLists known = before;
    CurrentList list;
    storeSavedLists(placed(file), words("1 2"), {{u"counter"_s, u"not stored"_s}, {u"k"_s, u"v"_s}}, list, known);
    // On what the system takes for another medium: as after a store that was told as failed though it was done, and as
    // after one that was not.
    KnownLists failed = before;
    failed.lastTried = known.digest;
    failed.medium->device += 1;
    EXPECT_EQ(historyAfterStoring(file, failed), "new");
    store(file, words("ours"));
    EXPECT_EQ(historyAfterStoring(file, failed), "new");
    store(file, words("theirs"));
    EXPECT_EQ(historyAfterStoring(file, failed), "theirs");
}

TEST(SavedLists, RefusedEntryCostsOnlyItself)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    CurrentList list = listOf("a", 0);
    const QString tooLong(16777216, u'x');
    store(file, words("old1 old2 old3 old4"));
    storeSavedLists(placed(file), {u"h1"_s, tooLong, u"h3"_s}, {{u"k"_s, tooLong}, {u"l"_s, u"y"_s}}, list, known);
    const Restored restored(file);
    EXPECT_EQ(restored.history, (QStringList{u"h1"_s, u""_s, u"h3"_s}));
    EXPECT_EQ(file.group("history"), "1=h1 3=h3 counter=3");
    EXPECT_EQ(restored.bookmarks, (Bookmarks{{u"l"_s, u"y"_s}}));
    EXPECT_EQ(shown(restored.list.items()), "a");
}

TEST(SavedLists, RefusedEntryLeavesWhatWasBehindTheOldCount)
{
    const ListFileOnDisk file;
    file.writeList("history", words("old"));
    file.write("history", "2", u"behind"_s);
    file.write("history", "3", u"behind too"_s);
    const QString tooLong(16777216, u'x');
    store(file, {tooLong, tooLong, u"h3"_s});
    EXPECT_EQ(file.group("history"), "2=behind 3=h3 counter=3");
}

TEST(SavedLists, UnwritableFilePassesUnnoticed)
{
    const ListFileOnDisk file;
    KnownLists known = anyLists(file);
    ASSERT_TRUE(file.becomeADirectory());
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    storeSavedLists(placed(file), words("h"), {}, list, known);
    EXPECT_EQ(list.cursor(), 2);
    EXPECT_TRUE(Restored(file).history.isEmpty());
}

TEST(SavedLists, PlaylistsAndIndexStay)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-a"));
    file.writeList("artistlist", words("x"));
    store(file, words("h"));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a counter=1");
    EXPECT_EQ(file.group("artistlist"), "1=x counter=1");
}
