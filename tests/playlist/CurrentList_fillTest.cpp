// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/ListText.h"
#include "playlist/ScriptedDraws.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr quint16 Plenty = 50;

QStringList numbered(int first, int count)
{
    QStringList items;
    for (int number = first; number < first + count; ++number)
        items.append(u"/media/a rather usual path of a file/"_s + QString::number(number));
    return items;
}

} // namespace

TEST(CurrentListAppend, DuplicatesAmongTheEntriesAreTakenOnce)
{
    CurrentList list;
    EXPECT_TRUE(list.append(words("a b a"), Plenty, Shuffle::Off));
    EXPECT_EQ(shown(list), "a b | 0 0 | 0 1 | 0");
    EXPECT_TRUE(list.isChanged());
}

TEST(CurrentListAppend, ItemsInTheListAreSkipped)
{
    CurrentList list = listOf("a b", 1);
    EXPECT_TRUE(list.append(words("b c"), Plenty, Shuffle::Off));
    EXPECT_EQ(shown(list), "a b c | 10 11 0 | 0 1 2 | 1");
}

TEST(CurrentListAppend, ComparesExactly)
{
    CurrentList list = listOf("a", 0);
    EXPECT_TRUE(list.append(words("A a"), Plenty, Shuffle::Off));
    EXPECT_EQ(shown(list.items()), "a A");
}

TEST(CurrentListAppend, LimitKeepsWhatWasAcceptedBefore)
{
    CurrentList list = listOf("a b", 0);
    EXPECT_FALSE(list.append(words("c d"), 3, Shuffle::Off));
    EXPECT_EQ(shown(list), "a b c | 10 11 0 | 0 1 2 | 0");
    EXPECT_TRUE(list.isChanged());
}

TEST(CurrentListAppend, ReachingTheLimitIsNotHittingIt)
{
    CurrentList list = listOf("a b", 0);
    EXPECT_TRUE(list.append(words("c"), 3, Shuffle::Off));
    EXPECT_TRUE(list.append(words("a b c"), 3, Shuffle::Off));
    EXPECT_EQ(list.count(), 3);
}

TEST(CurrentListAppend, DuplicatesBeforeTheLimitDoNotHitIt)
{
    CurrentList list = listOf("a b c", 0);
    EXPECT_FALSE(list.append(words("a b d c"), 3, Shuffle::Off));
    EXPECT_EQ(list.count(), 3);
}

TEST(CurrentListAppend, ListAtTheLimitStaysUnchanged)
{
    CurrentList list = listOf("a b", 0);
    EXPECT_FALSE(list.append(words("c"), 2, Shuffle::Off));
    EXPECT_FALSE(list.isChanged());
    EXPECT_EQ(shown(list), "a b | 10 11 | 0 1 | 0");
}

TEST(CurrentListAppend, ListOverTheLimitStaysUnchanged)
{
    CurrentList list = listOf("a b c", 0);
    EXPECT_FALSE(list.append(words("d"), 2, Shuffle::Off));
    EXPECT_EQ(list.count(), 3);
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListAppend, NoEntriesAreASuccessEvenAtTheLimit)
{
    CurrentList list = listOf("a b", 0);
    EXPECT_TRUE(list.append({}, 2, Shuffle::Off));
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListAppend, OnlyDuplicatesLeaveTheChangedState)
{
    CurrentList list = listOf("a b", -1);
    EXPECT_TRUE(list.append(words("a b"), Plenty, Shuffle::Off));
    EXPECT_FALSE(list.isChanged());
    EXPECT_EQ(list.cursor(), -1);
    list.setChanged(true);
    EXPECT_TRUE(list.append(words("a b"), Plenty, Shuffle::Off));
    EXPECT_TRUE(list.isChanged());
}

TEST(CurrentListAppend, CursorIsSetOnlyWhenThereIsNone)
{
    CurrentList none = listOf("a b", -1);
    EXPECT_TRUE(none.append(words("c"), Plenty, Shuffle::Off));
    EXPECT_EQ(none.cursor(), 0);
    CurrentList leftover = listOf("a b", 7);
    EXPECT_TRUE(leftover.append(words("c"), Plenty, Shuffle::Off));
    EXPECT_EQ(leftover.cursor(), 7);
}

TEST(CurrentListAppend, ShuffleMovesTheNewPlacesOnly)
{
    const ScriptedDraws draws({2, 1});
    CurrentList list = listPlayedAs("a b c d e", {4, 1, 0, 3, 2}, 2, draws.reseed());
    EXPECT_TRUE(list.append(words("f a g h"), Plenty, Shuffle::On));
    EXPECT_EQ(shown(list), "a b c d e f g h | 10 11 12 13 14 0 0 0 | 4 1 0 3 2 6 7 5 | 2");
    EXPECT_EQ(draws.reseeds(), 1);
    EXPECT_EQ(draws.draws(), 3);
}

TEST(CurrentListAppend, NothingAcceptedDoesNotTouchTheGenerator)
{
    const ScriptedDraws draws({1});
    CurrentList list = listOf("a b", 0, draws.reseed());
    EXPECT_TRUE(list.append(words("a"), Plenty, Shuffle::On));
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListAppend, EmptyTextIsAnItemLikeAnyOther)
{
    CurrentList list;
    EXPECT_TRUE(list.append({u""_s, QString(), u"a"_s}, Plenty, Shuffle::Off));
    EXPECT_EQ(list.count(), 2);
}

TEST(CurrentListAppend, FullListTakesNoMoreAtTheGreatestLimit)
{
    CurrentList list;
    EXPECT_TRUE(list.append(numbered(0, 65535), 65535, Shuffle::Off));
    EXPECT_FALSE(list.append(numbered(60000, 65535), 65535, Shuffle::Off));
    EXPECT_EQ(list.count(), 65535);
}

// Quadratic work on these sizes would take many minutes, far beyond the time that a test is given.
TEST(CurrentListAppend, FullListAddedToAFullListIsLinear)
{
    const QStringList items = numbered(0, 65535);
    CurrentList list;
    EXPECT_TRUE(list.append(items, 65535, Shuffle::On));
    QStringList backwards = numbered(0, 65535);
    std::reverse(backwards.begin(), backwards.end());
    for (int round = 0; round < 20; ++round)
        EXPECT_TRUE(list.append(backwards, 65535, Shuffle::On));
    EXPECT_EQ(list.items(), items);
}

TEST(CurrentListLoad, ReplacesListNameAndCursor)
{
    CurrentList list = listOf("x y z", 2);
    list.load(u"pl-Rock"_s, words("a b"), 2, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b | 0 0 | 0 1 | 0");
    EXPECT_EQ(list.name(), u"Rock"_s);
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListLoad, EmptyPlaylistHasNoActiveItem)
{
    CurrentList list = listOf("x y z", 2);
    list.load(u"pl-Rock"_s, {}, 0, Shuffle::Off);
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_EQ(list.name(), u"Rock"_s);
}

TEST(CurrentListLoad, OrderIsAsLongAsTheStoredCount)
{
    CurrentList list;
    list.load(u"pl-Rock"_s, words("a b"), 4, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b | 0 0 | 0 1 2 3 | 0");
    list.load(u"pl-Rock"_s, {}, 2, Shuffle::Off);
    EXPECT_EQ(shown(list), " |  | 0 1 | 0");
    EXPECT_TRUE(list.active().isNull());
}

TEST(CurrentListLoad, LongerListAfterRemovalsAtTheFront)
{
    CurrentList list = listOf("a b c d e f g h", 0);
    for (int removal = 0; removal < 6; ++removal)
        EXPECT_TRUE(list.remove(0));
    list.load(QString(), words("1 2 3 4 5 6 7 8"), 8, Shuffle::Off);
    EXPECT_EQ(shown(list), "1 2 3 4 5 6 7 8 | 0 0 0 0 0 0 0 0 | 0 1 2 3 4 5 6 7 | 0");
}

TEST(CurrentListLoad, ShuffleMovesTheWholeOrder)
{
    const ScriptedDraws draws({1, 2});
    CurrentList list(draws.reseed());
    list.load(u"pl-Rock"_s, words("a b c"), 3, Shuffle::On);
    EXPECT_EQ(shown(list), "a b c | 0 0 0 | 2 0 1 | 0");
}

TEST(CurrentListLoad, CountsOutOfRangeAreBounded)
{
    CurrentList list;
    list.load(QString(), words("a"), -5, Shuffle::Off);
    EXPECT_EQ(shown(list), "a | 0 |  | -1");
    list.load(QString(), numbered(0, 70000), 1000000, Shuffle::Off);
    EXPECT_EQ(list.count(), 65535);
    EXPECT_EQ(list.order().size(), 65535);
    EXPECT_EQ(list.flags().size(), 65535);
}

TEST(CurrentListRestore, ShuffleOffKeepsOrderAndCursor)
{
    CurrentList list;
    list.restore(u"pl-Rock"_s, words("a b c d e"), 3, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b c d e | 0 0 0 0 0 | 0 1 2 3 4 | 3");
    EXPECT_EQ(list.name(), u"Rock"_s);
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListRestore, ShuffleOnPutsTheActiveItemFirst)
{
    const ScriptedDraws draws({1, 2, 3});
    CurrentList list(draws.reseed());
    list.restore(QString(), words("a b c d e"), 4, Shuffle::On);
    // Shuffled: 3 0 1 2 4
    EXPECT_EQ(shown(list), "a b c d e | 0 0 0 0 0 | 4 0 1 2 3 | 0");
    EXPECT_EQ(list.active(), u"e"_s);
}

TEST(CurrentListRestore, ShuffleOnWithoutActiveItemKeepsTheOrder)
{
    const ScriptedDraws draws({1, 2, 3});
    CurrentList list(draws.reseed());
    list.restore(QString(), words("a b c"), -1, Shuffle::On);
    EXPECT_EQ(shown(list), "a b c | 0 0 0 | 0 1 2 | -1");
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListRestore, ActiveItemThatIsNoneKeepsTheOrderWithShuffleOn)
{
    const ScriptedDraws draws({1, 2, 3});
    for (const int active : {3, 4, 70000, 2147483647}) {
        CurrentList list(draws.reseed());
        list.restore(QString(), words("a b c"), active, Shuffle::On);
        EXPECT_EQ(shown(list), "a b c | 0 0 0 | 0 1 2 | -1") << active;
    }
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListRestore, ActiveItemThatIsNoneIsALeftoverCursorWithShuffleOff)
{
    CurrentList list;
    list.restore(QString(), words("a b c"), 2147483647, Shuffle::Off);
    EXPECT_EQ(list.cursor(), 2147483647);
    EXPECT_TRUE(list.active().isNull());
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::Off), u"c"_s); // 2,147,483,648 modulo 3
}

TEST(CurrentListRestore, NegativeActiveItemIsNone)
{
    for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
        CurrentList list;
        list.restore(QString(), words("a b c"), -2147483647 - 1, shuffle);
        EXPECT_EQ(shown(list), "a b c | 0 0 0 | 0 1 2 | -1");
    }
}

TEST(CurrentListRestore, AppendsToWhatIsThere)
{
    CurrentList list = listOf("a b", 0);
    list.restore(QString(), words("a b"), 1, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b a b | 10 11 0 0 | 0 1 0 1 | 1");
}

TEST(CurrentListRestore, NeverHoldsMoreThan65535)
{
    CurrentList list;
    list.restore(QString(), numbered(0, 40000), 0, Shuffle::Off);
    list.restore(QString(), numbered(0, 40000), 0, Shuffle::On);
    list.restore(QString(), numbered(0, 40000), 0, Shuffle::Off);
    EXPECT_EQ(list.count(), 65535);
    EXPECT_EQ(list.order().size(), 65535);
    EXPECT_EQ(list.flags().size(), 65535);
}
