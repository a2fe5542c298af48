// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistFile.h"

#include "playlist/ListFileOnDisk.h"
#include "playlist/ListText.h"
#include "playlist/ScriptedDraws.h"

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr PlaylistLimits Plenty{50, 50};
constexpr int LongestName = 65535;
constexpr int LongestValue = 16777215;

CurrentList listWith(const QStringList &items)
{
    CurrentList list;
    list.restore(QString(), items, 0, Shuffle::Off);
    return list;
}

PlaylistStatus save(const ListFileOnDisk &file, const QString &name, const char *items,
                    const PlaylistLimits &limits = Plenty)
{
    CurrentList list = listOf(items, 0);
    return savePlayList(file.path(), name, limits, list);
}

} // namespace

TEST(PlaylistSave, NewPlaylistIsEnteredAndNamed)
{
    const ListFileOnDisk file;
    CurrentList list = listOf("a b", 1);
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock counter=1");
    EXPECT_EQ(file.group("pl-Rock"), "1=a 2=b counter=2");
    EXPECT_EQ(list.storedName(), u"pl-Rock"_s);
    EXPECT_EQ(shown(list), "a b | 10 11 | 0 1 | 1");
    EXPECT_EQ(file.names(), QStringList{u".marvola.list"_s});
}

TEST(PlaylistSave, ItemsAreStoredInListOrder)
{
    const ListFileOnDisk file;
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-Rock"), "1=a 2=b 3=c counter=3");
}

TEST(PlaylistSave, CatalogueKeepsTheOrderOfCreation)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"z"_s, "1"), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"a"_s, "2"), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"z"_s, "3"), PlaylistStatus::Done);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-z 2=pl-a counter=2");
    EXPECT_EQ(file.group("pl-z"), "1=3 counter=1");
}

TEST(PlaylistSave, EmptyListIsAPlaylist)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, ""), PlaylistStatus::Done);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock counter=1");
    EXPECT_EQ(file.group("pl-Rock"), "counter=0");
}

TEST(PlaylistSave, ShorterListLeavesNoStaleItems)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, "a b c d"), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"Rock"_s, "x"), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-Rock"), "1=x counter=1");
}

TEST(PlaylistSave, LeftoverItemsOfADeletedPlaylistGo)
{
    const ListFileOnDisk file;
    file.writeList("pl-Rock", words("a b c"));
    EXPECT_EQ(save(file, u"Rock"_s, "x"), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-Rock"), "1=x counter=1");
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock counter=1");
}

TEST(PlaylistSave, NamesDifferInCase)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, "a"), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"rock"_s, "b"), PlaylistStatus::Done);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock 2=pl-rock counter=2");
    EXPECT_EQ(file.group("pl-Rock"), "1=a counter=1");
    EXPECT_EQ(file.group("pl-rock"), "1=b counter=1");
}

TEST(PlaylistSave, AnyTextIsANameAndAnItem)
{
    const ListFileOnDisk file;
    const QString odd = u"]=%\n \\\"Ωя\U0001F3B5 "_s;
    CurrentList list = listWith({odd, u" lead"_s, u""_s});
    EXPECT_EQ(savePlayList(file.path(), odd, Plenty, list), PlaylistStatus::Done);
    CurrentList loaded;
    EXPECT_EQ(loadPlayList(file.path(), odd, Shuffle::Off, loaded), list.items());
    EXPECT_EQ(loaded.name(), odd);
}

TEST(PlaylistSave, EmptyNameIsRefusedBeforeAllElse)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u""_s, "a"), PlaylistStatus::EmptyName);
    EXPECT_EQ(save(file, QString(), "a"), PlaylistStatus::EmptyName);
    CurrentList list = listOf("a", 0);
    EXPECT_EQ(savePlayList(QString(), u""_s, Plenty, list), PlaylistStatus::EmptyName);
    EXPECT_TRUE(file.names().isEmpty());
}

TEST(PlaylistSave, NoListFileIsAFailure)
{
    CurrentList list = listOf("a", 0);
    EXPECT_EQ(savePlayList(QString(), u"Rock"_s, Plenty, list), PlaylistStatus::Failed);
    EXPECT_TRUE(list.storedName().isNull());
}

TEST(PlaylistSave, FullCatalogueTakesNoNewName)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"a"_s, "1", {2, 50}), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"b"_s, "1", {2, 50}), PlaylistStatus::Done);
    CurrentList list = listOf("1", 0);
    EXPECT_EQ(savePlayList(file.path(), u"c"_s, {2, 50}, list), PlaylistStatus::LimitReached);
    EXPECT_EQ(savePlayList(file.path(), u"c"_s, {1, 50}, list), PlaylistStatus::LimitReached);
    EXPECT_TRUE(list.storedName().isNull());
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b counter=2");
    EXPECT_EQ(file.group("pl-c"), "");
}

TEST(PlaylistSave, FullCatalogueTakesAnOldName)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"a"_s, "1"), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"b"_s, "1"), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"b"_s, "2", {1, 50}), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-b"), "1=2 counter=1");
}

TEST(PlaylistSave, LimitOfZeroPlaylistsRefusesEveryNewName)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"a"_s, "1", {0, 50}), PlaylistStatus::LimitReached);
    EXPECT_EQ(save(file, u"b"_s, "", {0, 50}), PlaylistStatus::LimitReached);
    EXPECT_TRUE(file.names().isEmpty());
}

TEST(PlaylistSave, TooManyItemsAreCutAndTheNameIsNotAdopted)
{
    const ListFileOnDisk file;
    CurrentList list = listOf("a b c d e", 0);
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, {2, 3}, list), PlaylistStatus::LimitReached);
    EXPECT_EQ(file.group("pl-Rock"), "1=a 2=b 3=c counter=3");
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock counter=1");
    EXPECT_TRUE(list.storedName().isNull());
    // The same in place of the old one.
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, {2, 1}, list), PlaylistStatus::LimitReached);
    EXPECT_EQ(file.group("pl-Rock"), "1=a counter=1");
    EXPECT_TRUE(list.storedName().isNull());
}

TEST(PlaylistSave, AsManyItemsAsAllowedAreNotCut)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, "a b c", {2, 3}), PlaylistStatus::Done);
    EXPECT_EQ(save(file, u"Empty"_s, "", {2, 0}), PlaylistStatus::Done);
    EXPECT_EQ(file.group("pl-Empty"), "counter=0");
}

TEST(PlaylistSave, UnwritableFileIsAFailure)
{
    const ListFileOnDisk file;
    ASSERT_TRUE(file.becomeADirectory());
    CurrentList list = listOf("a", 0);
    list.setName(u"Old"_s);
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, Plenty, list), PlaylistStatus::Failed);
    EXPECT_EQ(list.name(), u"Old"_s);
}

TEST(PlaylistSave, RefusedCatalogueEntryTakesTheCountBack)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-a pl-b"));
    const QString tooLong(LongestValue - 2, u'x');
    EXPECT_EQ(save(file, tooLong, "1"), PlaylistStatus::Failed);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b counter=2");
}

TEST(PlaylistSave, RefusedItemCountTakesTheCatalogueEntryBack)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-a pl-b"));
    const QString tooLong(LongestName - 2, u'x');
    CurrentList list = listOf("1", 0);
    EXPECT_EQ(savePlayList(file.path(), tooLong, Plenty, list), PlaylistStatus::Failed);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-a 2=pl-b counter=2");
    EXPECT_TRUE(list.storedName().isNull());
    // One character less is a name.
    EXPECT_EQ(savePlayList(file.path(), tooLong.chopped(1), Plenty, list), PlaylistStatus::Done);
    EXPECT_EQ(list.name(), tooLong.chopped(1));
}

TEST(PlaylistSave, RefusedItemKeepsWhatWasWritten)
{
    const ListFileOnDisk file;
    CurrentList list = listWith({u"a"_s, u"b"_s, QString(LongestValue + 1, u'x'), u"d"_s});
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, Plenty, list), PlaylistStatus::Failed);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock counter=1");
    EXPECT_EQ(file.group("pl-Rock"), "1=a 2=b counter=2");
    EXPECT_TRUE(list.storedName().isNull());
    // The same in place of an old one.
    file.writeList("pl-Rock", words("k l m n o"));
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, Plenty, list), PlaylistStatus::Failed);
    EXPECT_EQ(file.group("pl-Rock"), "1=a 2=b counter=2");
}

TEST(PlaylistSave, RefusedItemCountOfACataloguedPlaylistIsAFailure)
{
    const ListFileOnDisk file;
    const QString tooLong(LongestName - 2, u'x');
    file.writeList("allplaylist", {u"pl-"_s + tooLong});
    CurrentList list;
    EXPECT_EQ(savePlayList(file.path(), tooLong, Plenty, list), PlaylistStatus::Failed);
    EXPECT_TRUE(list.storedName().isNull());
}

TEST(PlaylistSave, FailedCommitIsAFailureButTheNameIsSet)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, "a"), PlaylistStatus::Done);
    CurrentList list = listWith({QString(5000, u'x')});
    PlaylistStatus status = PlaylistStatus::Done;
    {
        const FileSizeLimit limit(10);
        status = savePlayList(file.path(), u"Jazz"_s, Plenty, list);
    }
    EXPECT_EQ(status, PlaylistStatus::Failed);
    EXPECT_EQ(list.name(), u"Jazz"_s);
    EXPECT_EQ(file.group("allplaylist"), "1=pl-Rock counter=1");
    EXPECT_EQ(file.group("pl-Jazz"), "");
    EXPECT_EQ(file.names(), QStringList{u".marvola.list"_s});
}

TEST(PlaylistSave, OtherGroupsStay)
{
    const ListFileOnDisk file;
    file.writeList("artistlist", words("x y"));
    EXPECT_EQ(save(file, u"Rock"_s, "a"), PlaylistStatus::Done);
    EXPECT_EQ(file.group("artistlist"), "1=x 2=y counter=2");
}

TEST(PlaylistSave, TwoProcessesLoseNoneOfEachOthersPlaylists)
{
    constexpr int PerProcess = 40;
    const ListFileOnDisk file;
    const auto saveMany = [&file](const QString &prefix) {
        for (int number = 0; number < PerProcess; ++number) {
            if (save(file, prefix + QString::number(number), "a b", {1000, 50}) != PlaylistStatus::Done)
                return 1;
        }
        return 0;
    };
    const pid_t child = ::fork();
    ASSERT_NE(child, -1);
    if (child == 0)
        ::_exit(saveMany(u"child"_s));
    EXPECT_EQ(saveMany(u"parent"_s), 0);
    int result = -1;
    ASSERT_EQ(::waitpid(child, &result, 0), child);
    EXPECT_EQ(result, 0);

    const ConfigFile stored(file.path(), false);
    EXPECT_EQ(stored.readNumEntry(u"allplaylist"_s, u"counter"_s), 2 * PerProcess);
    QStringList names = stored.getGroupEntriesKeyList(u"allplaylist"_s).values();
    EXPECT_EQ(names.removeDuplicates(), 0);
    for (const QString &prefix : {u"child"_s, u"parent"_s}) {
        for (int number = 0; number < PerProcess; ++number)
            EXPECT_TRUE(names.contains(u"pl-"_s + prefix + QString::number(number)));
    }
}

TEST(PlaylistLoad, ReplacesTheCurrentList)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, "a b c"), PlaylistStatus::Done);
    CurrentList list = listOf("x y", 1);
    EXPECT_EQ(shown(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list)), "a b c");
    EXPECT_EQ(shown(list), "a b c | 0 0 0 | 0 1 2 | 0");
    EXPECT_EQ(list.storedName(), u"pl-Rock"_s);
}

TEST(PlaylistLoad, UnknownNameLeavesTheListEvenIfItsGroupExists)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-Jazz"));
    file.writeList("pl-Rock", words("a b c"));
    CurrentList list = listOf("x y", 1);
    list.setName(u"Old"_s);
    EXPECT_TRUE(loadPlayList(file.path(), u"Rock"_s, Shuffle::On, list).isEmpty());
    EXPECT_TRUE(loadPlayList(file.path(), u"jazz"_s, Shuffle::On, list).isEmpty());
    EXPECT_TRUE(loadPlayList(file.path(), u""_s, Shuffle::On, list).isEmpty());
    EXPECT_TRUE(loadPlayList(QString(), u"Jazz"_s, Shuffle::On, list).isEmpty());
    EXPECT_EQ(shown(list), "x y | 10 11 | 0 1 | 1");
    EXPECT_EQ(list.name(), u"Old"_s);
}

TEST(PlaylistLoad, EntryOfTheEmptyNameIsNoPlaylist)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-"));
    file.writeList("pl-", words("a b"));
    CurrentList list = listOf("x y", 1);
    EXPECT_TRUE(loadPlayList(file.path(), u""_s, Shuffle::Off, list).isEmpty());
    EXPECT_EQ(shown(list), "x y | 10 11 | 0 1 | 1");
}

TEST(PlaylistLoad, EmptyPlaylistHasNoCursor)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, ""), PlaylistStatus::Done);
    CurrentList list = listOf("x y", 1);
    EXPECT_TRUE(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list).isEmpty());
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_EQ(list.name(), u"Rock"_s);
}

TEST(PlaylistLoad, CataloguedPlaylistWithoutAGroupIsEmpty)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-Rock"));
    CurrentList list = listOf("x y", 1);
    EXPECT_TRUE(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list).isEmpty());
    EXPECT_EQ(shown(list), " |  |  | -1");
}

TEST(PlaylistLoad, MissingKeysAreSkippedButKeepTheirPlaces)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-Rock"));
    file.writeList("pl-Rock", words("a b c d"));
    file.removeEntry("pl-Rock", "2");
    CurrentList list;
    EXPECT_EQ(shown(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list)), "a c d");
    EXPECT_EQ(shown(list), "a c d | 0 0 0 | 0 1 2 3 | 0");
}

TEST(PlaylistLoad, EmptyItemsAreNotMissing)
{
    const ListFileOnDisk file;
    file.writeList("allplaylist", words("pl-Rock"));
    file.writeList("pl-Rock", {u"a"_s, u""_s, u"c"_s});
    CurrentList list;
    EXPECT_EQ(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list), (QStringList{u"a"_s, u""_s, u"c"_s}));
}

TEST(PlaylistLoad, ForeignCounts)
{
    struct Row
    {
        const char *counter;
        const char *list;
    };
    for (const Row &row : {Row{"-3", " |  |  | -1"}, {"many", " |  |  | -1"}, {"1", "a | 0 | 0 | 0"}}) {
        const ListFileOnDisk file;
        file.writeList("allplaylist", words("pl-Rock"));
        file.writeList("pl-Rock", words("a b"));
        file.write("pl-Rock", "counter", QString::fromUtf8(row.counter));
        CurrentList list;
        loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list);
        EXPECT_EQ(shown(list), row.list) << row.counter;
    }
}

TEST(PlaylistLoad, ShuffleMovesTheOrder)
{
    const ListFileOnDisk file;
    EXPECT_EQ(save(file, u"Rock"_s, "a b c"), PlaylistStatus::Done);
    const ScriptedDraws draws({1, 2});
    CurrentList list(draws.reseed());
    EXPECT_EQ(shown(loadPlayList(file.path(), u"Rock"_s, Shuffle::On, list)), "a b c");
    EXPECT_EQ(shown(list), "a b c | 0 0 0 | 2 0 1 | 0");
}

TEST(PlaylistLoad, WritesNothing)
{
    const ListFileOnDisk file;
    CurrentList list;
    EXPECT_TRUE(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, list).isEmpty());
    EXPECT_TRUE(file.names().isEmpty());
}

// Quadratic work on this size would take many minutes, far beyond the time that a test is given.
TEST(PlaylistLoad, FullListIsSavedAndLoadedWhateverTheLimit)
{
    QStringList items;
    for (int number = 0; number < 65535; ++number)
        items.append(u"/media/music/"_s + QString::number(number));
    const ListFileOnDisk file;
    CurrentList list = listWith(items);
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, {1, 65535}, list), PlaylistStatus::Done);
    EXPECT_EQ(savePlayList(file.path(), u"Rock"_s, {1, 65535}, list), PlaylistStatus::Done);
    CurrentList loaded;
    EXPECT_EQ(loadPlayList(file.path(), u"Rock"_s, Shuffle::Off, loaded), items);
}
