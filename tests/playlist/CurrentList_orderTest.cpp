// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/ListText.h"
#include "playlist/ScriptedDraws.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace marvola;
using namespace Qt::StringLiterals;

TEST(CurrentListOrder, ShuffleThatDoesNotChangeDoesNothing)
{
    const ScriptedDraws draws({1, 2});
    for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
        CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 1, draws.reseed());
        list.setShuffle(shuffle, shuffle);
        EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 1");
    }
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListOrder, ShuffleOffPlaysInListOrderFromTheActiveItem)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    list.setShuffle(Shuffle::On, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | 2");
    EXPECT_EQ(list.active(), u"c"_s);
}

TEST(CurrentListOrder, ShuffleOffWithoutActiveItem)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    list.load(QString(), {}, 0, Shuffle::On);
    list.setShuffle(Shuffle::On, Shuffle::Off);
    EXPECT_EQ(shown(list), " |  |  | -1");

    const ScriptedDraws draws({1, 2});
    list = listOf("a b c", -1, draws.reseed());
    list.setShuffle(Shuffle::Off, Shuffle::On);
    list.setShuffle(Shuffle::On, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | -1");
}

TEST(CurrentListOrder, ShuffleOffWithALeftoverCursorLeavesNoneActive)
{
    CurrentList list = listOf("a b c", 3);
    list.setShuffle(Shuffle::On, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | -1");
}

TEST(CurrentListOrder, ShuffleOffMakesTheOrderAsLongAsTheItems)
{
    CurrentList list;
    list.load(QString(), words("a b"), 4, Shuffle::Off);
    list.setShuffle(Shuffle::On, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b | 0 0 | 0 1 | 0");
}

TEST(CurrentListOrder, ShuffleOnPutsTheActiveItemFirst)
{
    const ScriptedDraws draws({1, 2, 3});
    CurrentList list = listOf("a b c d e", 1, draws.reseed());
    list.setShuffle(Shuffle::Off, Shuffle::On);
    // Shuffled: 3 0 1 2 4
    EXPECT_EQ(shown(list), "a b c d e | 10 11 12 13 14 | 1 0 3 2 4 | 0");
    EXPECT_EQ(list.active(), u"b"_s);
}

TEST(CurrentListOrder, ShuffleOnWithoutActiveItemPutsNoneFirst)
{
    for (const int cursor : {-1, 3}) {
        const ScriptedDraws draws({1, 2});
        CurrentList list = listOf("a b c", cursor, draws.reseed());
        list.setShuffle(Shuffle::Off, Shuffle::On);
        EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | -1");
    }
}

TEST(CurrentListOrder, ShuffleOnOfAnEmptyListDropsTheCursor)
{
    const ScriptedDraws draws({1});
    CurrentList list(draws.reseed());
    list.restore(QString(), {}, 4, Shuffle::Off);
    ASSERT_EQ(list.cursor(), 4);
    list.setShuffle(Shuffle::Off, Shuffle::On);
    EXPECT_EQ(list.cursor(), -1);
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListRandomize, MovesItemsAndFlagsAndKeepsTheActiveItem)
{
    const ScriptedDraws draws({1, 2});
    CurrentList list = listPlayedAs("a b c", {2, 1, 0}, 1, draws.reseed());
    EXPECT_EQ(shown(list.randomizeItems()), "c a b");
    EXPECT_EQ(shown(list), "c a b | 12 10 11 | 2 1 0 | 0");
    EXPECT_EQ(list.active(), u"b"_s);
    EXPECT_EQ(draws.draws(), 3);
    EXPECT_EQ(draws.reseeds(), 1);
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListRandomize, EmptyListStaysWithoutDraw)
{
    const ScriptedDraws draws({1});
    CurrentList list(draws.reseed());
    EXPECT_TRUE(list.randomizeItems().isEmpty());
    EXPECT_EQ(list.cursor(), -1);
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListRandomize, WithTheClockTheSameItemStaysActive)
{
    for (int count = 1; count < 60; ++count) {
        QStringList items;
        for (int number = 0; number < count; ++number)
            items.append(QString::number(number));
        CurrentList list;
        list.restore(QString(), items, count / 2, Shuffle::On);
        QStringList shuffled = list.randomizeItems();
        EXPECT_EQ(list.active(), QString::number(count / 2));
        std::sort(shuffled.begin(), shuffled.end());
        std::sort(items.begin(), items.end());
        EXPECT_EQ(shuffled, items);
    }
}

TEST(CurrentListRandomize, OfEqualTextsTheFirstBecomesActive)
{
    const ScriptedDraws draws({0});
    CurrentList list(draws.reseed());
    list.restore(QString(), words("a b a"), 2, Shuffle::Off);
    EXPECT_EQ(shown(list.randomizeItems()), "a b a");
    EXPECT_EQ(list.cursor(), 0);
}

TEST(CurrentListRandomize, WithoutActiveItemTheCursorStays)
{
    for (const int cursor : {-1, 3}) {
        const ScriptedDraws draws({1});
        CurrentList list = listOf("a b c", cursor, draws.reseed());
        EXPECT_EQ(shown(list.randomizeItems()), "b a c");
        EXPECT_EQ(list.cursor(), cursor);
    }
}

TEST(CurrentListRandomize, ActiveTextWithoutAPlaceLeavesNoneActive)
{
    const ScriptedDraws draws({2});
    CurrentList list = listOf("a b", 0, draws.reseed());
    list.restore(QString(), words("c d"), 0, Shuffle::Off); // the order is 0 1 0 1
    EXPECT_EQ(shown(list.randomizeItems()), "c b a d");
    EXPECT_EQ(list.cursor(), -1);
}

TEST(CurrentListOrder, CursorTurnsIntoTheIndexThatItStandsFor)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 2);
    EXPECT_EQ(list.turnCursorIntoIndex(), 1);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 1");
}

TEST(CurrentListOrder, CursorThatStandsForNothingTurnsIntoNone)
{
    for (const int cursor : {-1, 3, 2147483647}) {
        CurrentList list = listOf("a b c", cursor);
        EXPECT_EQ(list.turnCursorIntoIndex(), -1);
        EXPECT_EQ(list.cursor(), -1);
    }
}
