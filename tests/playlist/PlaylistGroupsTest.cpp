// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/PlaylistGroups.h"

#include "platform/NumberedGroup.h"
#include "playlist/ListFileOnDisk.h"
#include "playlist/ListText.h"

#include <gtest/gtest.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

const QString Group = u"pl-Rock"_s;
const QString Refused(16777216, u'x'); // longer than a value may be

int find(const ListFileOnDisk &list, const QString &group)
{
    ConfigFile file(list.path(), false);
    return findPlaylist(file, group);
}

PlaylistStatus write(const ListFileOnDisk &list, const QStringList &items, quint16 maxItems, int oldCount = 0)
{
    ConfigFile file(list.path(), false);
    static_cast<void>(NumberedGroup(file, Group).writeCount(static_cast<int>(items.size())));
    return writeItems(file, Group, items, maxItems, oldCount);
}

} // namespace

TEST(PlaylistStatus, NumbersAreThePlayers)
{
    EXPECT_EQ(static_cast<quint8>(PlaylistStatus::Done), 0);
    EXPECT_EQ(static_cast<quint8>(PlaylistStatus::Failed), 1);
    EXPECT_EQ(static_cast<quint8>(PlaylistStatus::LimitReached), 2);
    EXPECT_EQ(static_cast<quint8>(PlaylistStatus::EmptyName), 3);
}

TEST(PlaylistFind, GivesTheFirstNumberThatHoldsTheName)
{
    const ListFileOnDisk list;
    list.writeList("allplaylist", words("pl-a pl-b pl-a pl-c"));
    EXPECT_EQ(find(list, u"pl-a"_s), 1);
    EXPECT_EQ(find(list, u"pl-b"_s), 2);
    EXPECT_EQ(find(list, u"pl-c"_s), 4);
}

TEST(PlaylistFind, NothingButTheWholeNameCounts)
{
    const ListFileOnDisk list;
    list.writeList("allplaylist", words("pl-a pl-B"));
    for (const QString &other : {u"a"_s, u"pl-A"_s, u"pl-b"_s, u"pl-"_s, u"pl-a "_s, u"2"_s, u"counter"_s})
        EXPECT_EQ(find(list, other), 0) << other.toStdString();
}

TEST(PlaylistFind, GapsArePassedOverAndTheCountIsTheEnd)
{
    const ListFileOnDisk list;
    list.writeList("allplaylist", words("pl-a pl-b pl-c"));
    list.removeEntry("allplaylist", "1");
    EXPECT_EQ(find(list, u"pl-b"_s), 2);
    list.write("allplaylist", "counter", u"2"_s);
    EXPECT_EQ(find(list, u"pl-c"_s), 0);
}

TEST(PlaylistFind, NoCatalogueHoldsNone)
{
    const ListFileOnDisk list;
    EXPECT_EQ(find(list, Group), 0);
    EXPECT_TRUE(list.names().isEmpty());
}

TEST(PlaylistWrite, OldItemsGoWhereverItStops)
{
    struct Row
    {
        QStringList items;
        quint16 limit;
        const char *stored;
    };
    for (const Row &row : {Row{{}, 50, "7=beyond the count counter=0"},
                           {words("x"), 50, "1=x 7=beyond the count counter=1"},
                           {words("x y z"), 50, "1=x 2=y 3=z 7=beyond the count counter=3"},
                           {words("x y z w"), 2, "1=x 2=y 7=beyond the count counter=2"},
                           {{u"x"_s, Refused, u"z"_s, u"w"_s}, 50, "1=x 7=beyond the count counter=1"},
                           {words("x y z w"), 0, "7=beyond the count counter=0"}}) {
        const ListFileOnDisk list;
        list.writeList("pl-Rock", words("a b c"));
        list.write("pl-Rock", "7", u"beyond the count"_s);
        static_cast<void>(write(list, row.items, row.limit, 3));
        EXPECT_EQ(list.group(Group), row.stored);
    }
}

TEST(PlaylistWrite, StopsAtTheLimitWithTheCountOfWhatIsWritten)
{
    struct Row
    {
        quint16 limit;
        PlaylistStatus status;
        const char *stored;
    };
    for (const Row &row : {Row{0, PlaylistStatus::LimitReached, "counter=0"},
                           {1, PlaylistStatus::LimitReached, "1=a counter=1"},
                           {2, PlaylistStatus::LimitReached, "1=a 2=b counter=2"},
                           {3, PlaylistStatus::Done, "1=a 2=b 3=c counter=3"},
                           {65535, PlaylistStatus::Done, "1=a 2=b 3=c counter=3"}}) {
        const ListFileOnDisk list;
        EXPECT_EQ(write(list, words("a b c"), row.limit), row.status) << row.limit;
        EXPECT_EQ(list.group(Group), row.stored) << row.limit;
    }
}

TEST(PlaylistWrite, NoItemsReachNoLimit)
{
    const ListFileOnDisk list;
    EXPECT_EQ(write(list, {}, 0), PlaylistStatus::Done);
    EXPECT_EQ(list.group(Group), "counter=0");
}

TEST(PlaylistWrite, RefusedItemStopsItWithTheCountOfWhatIsWritten)
{
    struct Row
    {
        QStringList items;
        const char *stored;
    };
    for (const Row &row : {Row{{Refused, u"b"_s, u"c"_s}, "counter=0"},
                           {{u"a"_s, Refused, u"c"_s}, "1=a counter=1"},
                           {{u"a"_s, u"b"_s, Refused}, "1=a 2=b counter=2"}}) {
        const ListFileOnDisk list;
        EXPECT_EQ(write(list, row.items, 50), PlaylistStatus::Failed);
        EXPECT_EQ(list.group(Group), row.stored);
    }
}

TEST(PlaylistWrite, RefusedItemBeyondTheLimitIsNotTried)
{
    const ListFileOnDisk list;
    EXPECT_EQ(write(list, {u"a"_s, Refused}, 1), PlaylistStatus::LimitReached);
    EXPECT_EQ(list.group(Group), "1=a counter=1");
}

TEST(PlaylistWrite, UnwritableFileIsAFailureBothWays)
{
    const ListFileOnDisk list;
    ASSERT_TRUE(list.becomeADirectory());
    EXPECT_EQ(write(list, words("a b"), 50), PlaylistStatus::Failed);
    EXPECT_EQ(write(list, words("a b"), 0), PlaylistStatus::Failed);
    EXPECT_EQ(write(list, {}, 0), PlaylistStatus::Done) << "nothing was to be written";
}
