// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistCatalogue.h"

#include "playlist/ListFileOnDisk.h"
#include "playlist/ListText.h"

#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr PlaylistLimits Plenty{50, 50};

/// Playlists "a", "b" and "c" with the items "a1 a2" and so on.
void writeThree(const ListFileOnDisk &file)
{
    file.writeList("allplaylist", words("pl-a pl-b pl-c"));
    file.writeList("pl-a", words("a1 a2"));
    file.writeList("pl-b", words("b1 b2"));
    file.writeList("pl-c", words("c1 c2"));
}

QString defaultName(const ListFileOnDisk &file, quint32 counter)
{
    std::atomic<quint32> own{counter};
    return getDefaultPlayListName(file.path(), own);
}

} // namespace

TEST(PlaylistNew, StoresTheListBackAndStartsAnEmptyOne)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list = listOf("x y z", 1);
    list.setName(u"b"_s);
    EXPECT_EQ(newPlayList(file.path(), Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-b"), "1=x 2=y 3=z counter=3");
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b 3=pl-c counter=3");
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_TRUE(list.storedName().isNull());
}

TEST(PlaylistNew, ShorterListLeavesNoStaleItems)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list = listOf("x", 0);
    list.setName(u"b"_s);
    EXPECT_EQ(newPlayList(file.path(), Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-b"), "1=x counter=1");
}

TEST(PlaylistNew, UncataloguedListIsStoredAllTheSame)
{
    const ListFileOnDisk file;
    CurrentList list = listOf("x", 0);
    list.setName(u"lost"_s);
    EXPECT_EQ(newPlayList(file.path(), Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-lost"), "1=x counter=1");
    EXPECT_EQ(file.group("allplaylist"), "");
}

TEST(PlaylistNew, UnnamedListIsOnlyEmptied)
{
    const ListFileOnDisk file;
    CurrentList list = listOf("x y", 1);
    EXPECT_EQ(newPlayList(file.path(), Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_TRUE(file.names().isEmpty());
}

TEST(PlaylistNew, NoListFileIsAFailure)
{
    CurrentList list = listOf("x y", 1);
    EXPECT_EQ(newPlayList(QString(), Plenty, list), PlaylistStatus::Failed);
    EXPECT_EQ(list.count(), 2);
}

TEST(PlaylistNew, LimitIsTestedForEqualityOnly)
{
    struct Row
    {
        quint16 limit;
        PlaylistStatus status;
    };
    for (const Row &row : {Row{2, PlaylistStatus::Done},
                           {3, PlaylistStatus::LimitReached},
                           {4, PlaylistStatus::Done},
                           {0, PlaylistStatus::Done}}) {
        const ListFileOnDisk file;
        writeThree(file);
        CurrentList list = listOf("x", 0);
        list.setName(u"b"_s);
        EXPECT_EQ(newPlayList(file.path(), {row.limit, 50}, list), row.status) << row.limit;
        EXPECT_EQ(list.isEmpty(), row.status == PlaylistStatus::Done) << row.limit;
        EXPECT_EQ(file.group("pl-b"), row.status == PlaylistStatus::Done ? "1=x counter=1" : "1=b1 2=b2 counter=2");
    }
}

TEST(PlaylistNew, LimitOfZeroStopsAnEmptyCatalogue)
{
    const ListFileOnDisk file;
    CurrentList list = listOf("x", 0);
    EXPECT_EQ(newPlayList(file.path(), {0, 50}, list), PlaylistStatus::LimitReached);
    EXPECT_EQ(list.count(), 1);
}

TEST(PlaylistNew, TooManyItemsAreCutAndTheListStays)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list = listOf("v w x y z", 2);
    list.setName(u"b"_s);
    EXPECT_EQ(newPlayList(file.path(), {50, 3}, list), PlaylistStatus::LimitReached);
    EXPECT_EQ(file.group("pl-b"), "1=v 2=w 3=x counter=3");
    EXPECT_EQ(shown(list), "v w x y z | 10 11 12 13 14 | 0 1 2 3 4 | 2");
    EXPECT_EQ(list.name(), u"b"_s);
}

TEST(PlaylistNew, RefusedItemLeavesTheList)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list;
    list.restore(u"pl-b"_s, {u"x"_s, QString(16777216, u'y'), u"z"_s}, 0, Shuffle::Off);
    EXPECT_EQ(newPlayList(file.path(), Plenty, list), PlaylistStatus::Failed);
    EXPECT_EQ(file.group("pl-b"), "1=x counter=1");
    EXPECT_EQ(list.count(), 3);
    EXPECT_EQ(list.name(), u"b"_s);
}

TEST(PlaylistNew, UnwritableFileLeavesTheList)
{
    for (const char *items : {"", "x y"}) {
        const ListFileOnDisk file;
        ASSERT_TRUE(file.becomeADirectory());
        CurrentList list = listOf(items, -1);
        list.setName(u"b"_s);
        EXPECT_EQ(newPlayList(file.path(), Plenty, list), PlaylistStatus::Failed);
        EXPECT_EQ(list.name(), u"b"_s);
        EXPECT_EQ(shown(list.items()), items);
    }
}

TEST(PlaylistNew, FailedCommitIsAFailureButTheListIsEmptied)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list;
    list.restore(u"pl-b"_s, {QString(5000, u'x')}, 0, Shuffle::Off);
    PlaylistStatus status = PlaylistStatus::Done;
    {
        const FileSizeLimit limit(10);
        status = newPlayList(file.path(), Plenty, list);
    }
    EXPECT_EQ(status, PlaylistStatus::Failed);
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(file.group("pl-b"), "1=b1 2=b2 counter=2");
}

TEST(PlaylistDelete, OthersCloseTheGapAndTheItemsStay)
{
    const ListFileOnDisk file;
    writeThree(file);
    EXPECT_TRUE(deletePlayList(file.path(), u"b"_s));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-c counter=2");
    EXPECT_EQ(file.group("pl-b"), "1=b1 2=b2 counter=2");
    EXPECT_FALSE(hasPlayList(file.path(), u"b"_s));
    EXPECT_TRUE(hasPlayList(file.path(), u"c"_s));
}

TEST(PlaylistDelete, TheLastOneLeavesAnEmptyCatalogue)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-a"));
    EXPECT_TRUE(deletePlayList(file.path(), u"a"_s));
    EXPECT_EQ(file.group("allplaylist"), "counter=0");
}

TEST(PlaylistDelete, UnknownNameCostsTheCatalogueItsEntriesButNotItsCount)
{
    const ListFileOnDisk file;
    writeThree(file);
    EXPECT_FALSE(deletePlayList(file.path(), u"x"_s));
    EXPECT_EQ(file.group("allplaylist"), "counter=3");
    for (const QString &name : {u"a"_s, u"b"_s, u"c"_s, u"x"_s})
        EXPECT_FALSE(hasPlayList(file.path(), name));
    EXPECT_EQ(file.group("pl-a"), "1=a1 2=a2 counter=2");
}

TEST(PlaylistDelete, EveryEntryOfTheNameGoesAndTheCountSinksByOne)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-a pl-b pl-a pl-c"));
    EXPECT_TRUE(deletePlayList(file.path(), u"a"_s));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-b 2=pl-c counter=3");
}

TEST(PlaylistDelete, CountThatLiesIsTheOneThatSinks)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.write("allplaylist", "counter", u"2"_s);
    EXPECT_TRUE(deletePlayList(file.path(), u"a"_s));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-b 3=pl-c counter=1");
    file.write("allplaylist", "counter", u"-1"_s);
    EXPECT_FALSE(deletePlayList(file.path(), u"b"_s));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-b 3=pl-c counter=-1");
}

TEST(PlaylistDelete, MissingEntryIsWrittenBackEmpty)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.removeEntry("allplaylist", "2");
    EXPECT_TRUE(deletePlayList(file.path(), u"a"_s));
    EXPECT_EQ(file.group("allplaylist"), "1= 2=pl-c counter=2");
}

TEST(PlaylistDelete, RefusesEmptyNameAndNoFile)
{
    const ListFileOnDisk file;
    writeThree(file);
    EXPECT_FALSE(deletePlayList(file.path(), u""_s));
    EXPECT_FALSE(deletePlayList(QString(), u"a"_s));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b 3=pl-c counter=3");
}

TEST(PlaylistDelete, FailedCommitIsReported)
{
    const ListFileOnDisk file;
    writeThree(file);
    bool isDeleted = true;
    {
        const FileSizeLimit limit(10);
        isDeleted = deletePlayList(file.path(), u"b"_s);
    }
    EXPECT_FALSE(isDeleted);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b 3=pl-c counter=3");
}

TEST(PlaylistDeleteAll, RemovesPlaylistsAndCatalogueOnly)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.writeList("pl-leftover", words("x"));
    file.writeList("artistlist", words("x y"));
    EXPECT_TRUE(deleteAllPlayLists(file.path()));
    for (const char *group : {"allplaylist", "pl-a", "pl-b", "pl-c"})
        EXPECT_EQ(file.group(group), "") << group;
    EXPECT_EQ(file.group("pl-leftover"), "1=x counter=1");
    EXPECT_EQ(file.group("artistlist"), "1=x 2=y counter=2");
}

TEST(PlaylistDeleteAll, EmptyCatalogueIsASuccess)
{
    const ListFileOnDisk file;
    EXPECT_TRUE(deleteAllPlayLists(file.path()));
}

TEST(PlaylistDeleteAll, MissingAndEmptyEntriesNameNoGroup)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.write("", "1", u"kept"_s);
    file.write("allplaylist", "1", u""_s);
    file.removeEntry("allplaylist", "2");
    EXPECT_TRUE(deleteAllPlayLists(file.path()));
    EXPECT_EQ(file.group(""), "1=kept");
    EXPECT_EQ(file.group("pl-a"), "1=a1 2=a2 counter=2");
    EXPECT_EQ(file.group("pl-b"), "1=b1 2=b2 counter=2");
    EXPECT_EQ(file.group("pl-c"), "");
}

TEST(PlaylistDeleteAll, FailuresAreReported)
{
    EXPECT_FALSE(deleteAllPlayLists(QString()));
    const ListFileOnDisk directory;
    ASSERT_TRUE(directory.becomeADirectory());
    EXPECT_FALSE(deleteAllPlayLists(directory.path()));
    const ListFileOnDisk file;
    writeThree(file);
    bool isDeleted = true;
    {
        const FileSizeLimit limit(10);
        isDeleted = deleteAllPlayLists(file.path());
    }
    EXPECT_FALSE(isDeleted);
    EXPECT_EQ(file.group("pl-a"), "1=a1 2=a2 counter=2");
}

TEST(PlaylistRename, KeepsPlaceAndItems)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.write("pl-b", "7", u"beyond the count"_s);
    CurrentList list = listOf("x", 0);
    list.setName(u"a"_s);
    EXPECT_TRUE(renamePlayList(file.path(), u"b"_s, u"B"_s, list));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-B 3=pl-c counter=3");
    EXPECT_EQ(file.group("pl-B"), "1=b1 2=b2 7=beyond the count counter=2");
    EXPECT_EQ(file.group("pl-b"), "");
    EXPECT_EQ(list.name(), u"a"_s);
}

TEST(PlaylistRename, MovesTheCurrentListsNameAlong)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list = listOf("x", 0);
    list.setName(u"b"_s);
    EXPECT_TRUE(renamePlayList(file.path(), u"b"_s, u"d"_s, list));
    EXPECT_EQ(list.storedName(), u"pl-d"_s);
    EXPECT_EQ(shown(list), "x | 10 | 0 | 0");
}

TEST(PlaylistRename, RefusalsChangeNothing)
{
    const ListFileOnDisk file;
    writeThree(file);
    const std::pair<QString, QString> rows[] = {
        {u"b"_s, u"c"_s}, {u"b"_s, u"a"_s}, {u"x"_s, u"y"_s}, {u"x"_s, u"a"_s},
        {u""_s, u"y"_s},  {u"b"_s, u""_s},  {u""_s, u""_s},   {u"b"_s, QString()},
    };
    for (const auto &[oldName, newName] : rows) {
        CurrentList list = listOf("x", 0);
        list.setName(oldName);
        EXPECT_FALSE(renamePlayList(file.path(), oldName, newName, list)) << oldName.toStdString();
        EXPECT_EQ(list.name(), oldName);
    }
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b 3=pl-c counter=3");
    EXPECT_EQ(file.group("pl-b"), "1=b1 2=b2 counter=2");
    EXPECT_EQ(file.group("pl-c"), "1=c1 2=c2 counter=2");
}

TEST(PlaylistRename, EqualNamesAreASuccessEvenWithoutFileOrPlaylist)
{
    CurrentList list;
    EXPECT_TRUE(renamePlayList(QString(), u"x"_s, u"x"_s, list));
    EXPECT_FALSE(renamePlayList(QString(), u"x"_s, u"y"_s, list));
    const ListFileOnDisk file;
    EXPECT_TRUE(renamePlayList(file.path(), u"x"_s, u"x"_s, list));
    EXPECT_TRUE(file.names().isEmpty());
}

TEST(PlaylistRename, NameThatCannotBeWrittenChangesNothing)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list;
    list.setName(u"b"_s);
    for (const int length : {65533, 16777213}) {
        EXPECT_FALSE(renamePlayList(file.path(), u"b"_s, QString(length, u'x'), list));
        EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b 3=pl-c counter=3");
        EXPECT_EQ(file.group("pl-b"), "1=b1 2=b2 counter=2");
        EXPECT_EQ(list.name(), u"b"_s);
    }
}

TEST(PlaylistRename, ItemThatCannotBeCopiedLeavesBothGroups)
{
    const ListFileOnDisk file;
    // Written by hand: an item that the file's reader takes and its writer does not.
    QFile byHand(file.path());
    ASSERT_TRUE(byHand.open(QIODevice::WriteOnly));
    byHand.write("[allplaylist]\ncounter=1\n1=pl-b\n[pl-new]\n1=leftover\n9=stays\n[pl-b]\n1=b1\n2=");
    byHand.write(QByteArray(16777216, 'x') + "\ncounter=2\n");
    byHand.close();
    ASSERT_EQ(ConfigFile(file.path(), false).readEntry(u"pl-b"_s, u"2"_s).size(), 16777216);
    CurrentList list;
    EXPECT_FALSE(renamePlayList(file.path(), u"b"_s, u"new"_s, list));
    EXPECT_EQ(file.group("allplaylist"), "1=pl-b counter=1");
    EXPECT_EQ(file.group("pl-new"), "1=leftover 9=stays");
    EXPECT_EQ(ConfigFile(file.path(), false).readEntry(u"pl-b"_s, u"1"_s), u"b1"_s);
}

TEST(PlaylistRename, LeftoverItemsBeyondTheNewOnesStay)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.writeList("pl-d", words("d1 d2 d3"));
    CurrentList list;
    EXPECT_TRUE(renamePlayList(file.path(), u"b"_s, u"d"_s, list));
    EXPECT_EQ(file.group("pl-d"), "1=b1 2=b2 3=d3 counter=2");
}

TEST(PlaylistRename, FailedCommitIsReportedButTheCurrentListIsRenamed)
{
    const ListFileOnDisk file;
    writeThree(file);
    CurrentList list = listOf("x", 0);
    list.setName(u"b"_s);
    bool isRenamed = true;
    {
        const FileSizeLimit limit(10);
        isRenamed = renamePlayList(file.path(), u"b"_s, u"a name that needs room"_s, list);
    }
    EXPECT_FALSE(isRenamed);
    EXPECT_EQ(list.name(), u"a name that needs room"_s);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b 3=pl-c counter=3");
    EXPECT_EQ(file.group("pl-b"), "1=b1 2=b2 counter=2");
}

TEST(PlaylistCatalogue, HasComparesExactly)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.writeList("pl-d", words("x"));
    EXPECT_TRUE(hasPlayList(file.path(), u"a"_s));
    EXPECT_TRUE(hasPlayList(file.path(), u"c"_s));
    EXPECT_FALSE(hasPlayList(file.path(), u"A"_s));
    EXPECT_FALSE(hasPlayList(file.path(), u"d"_s));
    EXPECT_FALSE(hasPlayList(file.path(), u"pl-a"_s));
    EXPECT_FALSE(hasPlayList(file.path(), u""_s));
    EXPECT_FALSE(hasPlayList(QString(), u"a"_s));
}

TEST(PlaylistCatalogue, EntryOfTheEmptyNameIsNoPlaylist)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl- pl-a"));
    CurrentList list;
    EXPECT_FALSE(hasPlayList(file.path(), u""_s));
    EXPECT_FALSE(deletePlayList(file.path(), u""_s));
    EXPECT_FALSE(renamePlayList(file.path(), u""_s, u"b"_s, list));
    EXPECT_EQ(file.group("allplaylist"), "1=pl- 2=pl-a counter=2");
}

TEST(PlaylistCatalogue, EntriesPastTheCountAreNotThere)
{
    const ListFileOnDisk file;
    writeThree(file);
    file.write("allplaylist", "counter", u"2"_s);
    EXPECT_TRUE(hasPlayList(file.path(), u"b"_s));
    EXPECT_FALSE(hasPlayList(file.path(), u"c"_s));
}

TEST(PlaylistCatalogue, FirstDefaultNameOfAProcessIsPlaylist0)
{
    // Runs in a process of its own, whose counter nobody has used.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const ListFileOnDisk file;
    EXPECT_EXIT(std::_Exit(getDefaultPlayListName(file.path()) == u"playlist0"_s &&
                                   getDefaultPlayListName(file.path()) == u"playlist0"_s
                               ? 0
                               : 1),
                testing::ExitedWithCode(0), "");
}

TEST(PlaylistCatalogue, ProcessesCounterGrowsPastTakenNamesAndStays)
{
    const ListFileOnDisk file;
    const QString first = getDefaultPlayListName(file.path());
    ASSERT_TRUE(first.startsWith(u"playlist"_s));
    const int number = first.mid(8).toInt();
    file.writeList("allplaylist", {u"pl-"_s + first});
    const QString next = u"playlist"_s + QString::number(number + 1);
    EXPECT_EQ(getDefaultPlayListName(file.path()), next);
    EXPECT_TRUE(deleteAllPlayLists(file.path()));
    EXPECT_EQ(getDefaultPlayListName(file.path()), next);
}

TEST(PlaylistCatalogue, DefaultNameIsTheFirstFreeFromTheCounterOn)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-playlist0 pl-playlist1 pl-playlist4 pl-Playlist2"));
    std::atomic<quint32> counter{0};
    EXPECT_EQ(getDefaultPlayListName(file.path(), counter), u"playlist2"_s);
    EXPECT_EQ(counter, 2U);
    EXPECT_EQ(getDefaultPlayListName(file.path(), counter), u"playlist2"_s);
    EXPECT_EQ(defaultName(file, 3), u"playlist3"_s);
    EXPECT_EQ(defaultName(file, 4), u"playlist5"_s);
}

TEST(PlaylistCatalogue, DefaultNameIgnoresTheLimitAndIsNotReserved)
{
    const ListFileOnDisk file;
    EXPECT_EQ(defaultName(file, 0), u"playlist0"_s);
    EXPECT_TRUE(file.names().isEmpty());
}

TEST(PlaylistCatalogue, NoListFileHasNoDefaultName)
{
    EXPECT_TRUE(getDefaultPlayListName(QString()).isNull());
}

// Quadratic work on this size would take many minutes, far beyond the time that a test is given.
TEST(PlaylistCatalogue, FullCatalogueIsLinear)
{
    QStringList names;
    for (int number = 0; number < 65535; ++number)
        names.append(u"pl-playlist"_s + QString::number(number));
    const ListFileOnDisk file;
    file.writeList("allplaylist", names);
    EXPECT_EQ(defaultName(file, 0), u"playlist65535"_s);
    CurrentList list;
    EXPECT_TRUE(renamePlayList(file.path(), u"playlist65534"_s, u"x"_s, list));
    EXPECT_TRUE(deletePlayList(file.path(), u"playlist0"_s));
    EXPECT_TRUE(hasPlayList(file.path(), u"x"_s));
    EXPECT_EQ(defaultName(file, 0), u"playlist0"_s);
    EXPECT_TRUE(deleteAllPlayLists(file.path()));
    EXPECT_FALSE(hasPlayList(file.path(), u"x"_s));
}
