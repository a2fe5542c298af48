// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/ListText.h"
#include "playlist/ScriptedDraws.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace marvola;
using namespace Qt::StringLiterals;

TEST(CurrentListNavigate, EmptyListHasNothingAnywhere)
{
    for (const Repeat repeat : {Repeat::Off, Repeat::On}) {
        for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
            CurrentList list;
            EXPECT_TRUE(list.next(repeat, shuffle).isNull());
            EXPECT_TRUE(list.previous(repeat).isNull());
            EXPECT_FALSE(list.hasNext(repeat));
            EXPECT_FALSE(list.hasPrevious(repeat));
            EXPECT_TRUE(list.active().isNull());
            EXPECT_FALSE(list.isLast(u""_s));
            EXPECT_EQ(list.cursor(), -1);
        }
    }
}

TEST(CurrentListNavigate, EmptyListWithALeftoverCursorHasNothingEither)
{
    for (const Repeat repeat : {Repeat::Off, Repeat::On}) {
        CurrentList list;
        list.load(QString(), {}, 3, Shuffle::Off);
        ASSERT_EQ(list.cursor(), 0);
        EXPECT_FALSE(list.hasNext(repeat));
        EXPECT_FALSE(list.hasPrevious(repeat));
        EXPECT_TRUE(list.next(repeat, Shuffle::On).isNull());
        EXPECT_TRUE(list.previous(repeat).isNull());
        EXPECT_TRUE(list.active().isNull());
        EXPECT_FALSE(list.isLast(QString()));
    }
}

TEST(CurrentListNavigate, ActiveItemIsThatOfTheOrderAtTheCursor)
{
    EXPECT_EQ(listPlayedAs("a b c", {2, 0, 1}, 0).active(), u"c"_s);
    EXPECT_EQ(listPlayedAs("a b c", {2, 0, 1}, 2).active(), u"b"_s);
    EXPECT_TRUE(listOf("a b c", -1).active().isNull());
    EXPECT_TRUE(listOf("a b c", 3).active().isNull());
}

TEST(CurrentListNavigate, NextFollowsTheOrder)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::On), u"a"_s);
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::On), u"b"_s);
    EXPECT_TRUE(list.next(Repeat::Off, Shuffle::On).isNull());
    EXPECT_EQ(list.active(), u"b"_s);
}

TEST(CurrentListNavigate, NextAtTheEndWithoutRepeatStays)
{
    CurrentList list = listOf("a b c", 2);
    EXPECT_TRUE(list.next(Repeat::Off, Shuffle::Off).isNull());
    EXPECT_EQ(list.active(), u"c"_s);
    EXPECT_EQ(list.cursor(), 2);
    EXPECT_FALSE(list.hasNext(Repeat::Off));
}

TEST(CurrentListNavigate, NextAtTheEndWithRepeatWraps)
{
    const ScriptedDraws draws({1});
    CurrentList list = listOf("a b c", 2, draws.reseed());
    EXPECT_EQ(list.next(Repeat::On, Shuffle::Off), u"a"_s);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | 0");
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListNavigate, NextAtTheEndWithRepeatAndShuffleMakesANewOrder)
{
    const ScriptedDraws draws({1});
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 2, draws.reseed());
    EXPECT_EQ(list.next(Repeat::On, Shuffle::On), u"a"_s);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 2 1 | 0");
    EXPECT_EQ(draws.reseeds(), 1);
}

TEST(CurrentListNavigate, NextBeforeTheEndKeepsTheOrder)
{
    const ScriptedDraws draws({1});
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0, draws.reseed());
    EXPECT_EQ(list.next(Repeat::On, Shuffle::On), u"a"_s);
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListNavigate, NextOfASingleItemWithRepeatIsItself)
{
    for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
        CurrentList list = listOf("a", 0);
        EXPECT_EQ(list.next(Repeat::On, shuffle), u"a"_s);
        EXPECT_EQ(list.cursor(), 0);
    }
}

TEST(CurrentListNavigate, NextStartsAtTheFirstPlaceAlthoughThereIsNoNextItem)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    list.clear();
    list = listOf("a b c", -1);
    EXPECT_FALSE(list.hasNext(Repeat::On));
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::Off), u"a"_s);
    EXPECT_EQ(list.cursor(), 0);
}

TEST(CurrentListNavigate, NextAfterALeftoverCursorWraps)
{
    CurrentList list = listOf("a b c", 3);
    EXPECT_TRUE(list.hasNext(Repeat::Off));
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::Off), u"b"_s);
    EXPECT_EQ(list.cursor(), 1);
    list = listOf("a b c", 5);
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::Off), u"a"_s);
}

TEST(CurrentListNavigate, PreviousFollowsTheOrder)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 2);
    EXPECT_EQ(list.previous(Repeat::Off), u"a"_s);
    EXPECT_EQ(list.previous(Repeat::Off), u"c"_s);
    EXPECT_TRUE(list.previous(Repeat::Off).isNull());
    EXPECT_EQ(list.cursor(), 0);
}

TEST(CurrentListNavigate, PreviousAtTheFrontWithRepeatWrapsAndKeepsTheOrder)
{
    const ScriptedDraws draws({1});
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0, draws.reseed());
    EXPECT_EQ(list.previous(Repeat::On), u"b"_s);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 2");
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(CurrentListNavigate, PreviousWithoutActiveItemIsNullAndStays)
{
    CurrentList list = listOf("a b c", -1);
    EXPECT_TRUE(list.previous(Repeat::On).isNull());
    EXPECT_EQ(list.cursor(), -1);
}

TEST(CurrentListNavigate, PreviousOfALeftoverCursorStepsBack)
{
    CurrentList list = listOf("a b c", 4);
    EXPECT_TRUE(list.previous(Repeat::Off).isNull());
    EXPECT_EQ(list.cursor(), 3);
    EXPECT_EQ(list.previous(Repeat::Off), u"c"_s);
}

TEST(CurrentListNavigate, EndsAnswerWithTheRepeatMode)
{
    struct Row
    {
        int cursor;
        bool nextOff, nextOn, previousOff, previousOn;
    };
    const Row rows[] = {
        {-1, false, false, false, false},
        {0, true, true, false, true},
        {1, true, true, true, true},
        {2, false, true, true, true},
    };
    for (const Row &row : rows) {
        const CurrentList list = listOf("a b c", row.cursor);
        EXPECT_EQ(list.hasNext(Repeat::Off), row.nextOff) << row.cursor;
        EXPECT_EQ(list.hasNext(Repeat::On), row.nextOn) << row.cursor;
        EXPECT_EQ(list.hasPrevious(Repeat::Off), row.previousOff) << row.cursor;
        EXPECT_EQ(list.hasPrevious(Repeat::On), row.previousOn) << row.cursor;
    }
}

TEST(CurrentListNavigate, LastIsByPlayOrder)
{
    const CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    EXPECT_TRUE(list.isLast(u"b"_s));
    EXPECT_FALSE(list.isLast(u"c"_s));
    EXPECT_FALSE(list.isLast(u"x"_s));
    EXPECT_FALSE(list.isLast(QString()));
}

TEST(CurrentListNavigate, LastItemOfAnOrderLongerThanTheItems)
{
    CurrentList list;
    list.load(QString(), words("a b"), 4, Shuffle::Off);
    EXPECT_TRUE(list.isLast(u"b"_s));
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::Off), u"b"_s);
    EXPECT_TRUE(list.next(Repeat::Off, Shuffle::Off).isNull());
    EXPECT_EQ(list.cursor(), 1);
}

TEST(CurrentListNavigate, MissingItemsOfAShuffledOrderAreNull)
{
    const ScriptedDraws draws({2});
    CurrentList list(draws.reseed());
    list.load(QString(), words("a b"), 3, Shuffle::On);
    ASSERT_EQ(shown(list), "a b | 0 0 | 2 1 0 | 0");
    EXPECT_TRUE(list.active().isNull());
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::On), u"b"_s);
}

TEST(CurrentListNavigate, SetActiveFindsThePlace)
{
    for (const auto &[shuffle, pickFirst] :
         {std::pair(Shuffle::Off, PickFirst::No), {Shuffle::Off, PickFirst::Yes}, {Shuffle::On, PickFirst::No}}) {
        CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
        list.setActive(1, shuffle, pickFirst);
        EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 2");
    }
}

TEST(CurrentListNavigate, SetActiveCanPickTheItemFirst)
{
    CurrentList list = listPlayedAs("a b c d", {2, 0, 3, 1}, 1);
    list.setActive(3, Shuffle::On, PickFirst::Yes);
    EXPECT_EQ(shown(list), "a b c d | 10 11 12 13 | 3 0 2 1 | 0");
    list.setActive(3, Shuffle::On, PickFirst::Yes);
    EXPECT_EQ(shown(list), "a b c d | 10 11 12 13 | 3 0 2 1 | 0");
}

TEST(CurrentListNavigate, SetActivePastTheEndChangesNothing)
{
    for (const int index : {3, 4, 65535, -1}) {
        for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
            CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 1);
            list.setActive(index, shuffle, PickFirst::Yes);
            EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 1") << index;
        }
    }
}

TEST(CurrentListNavigate, SetActiveOfAnIndexWithoutAPlaceLeavesNoneActive)
{
    for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
        CurrentList list = listOf("a b", 0);
        list.restore(QString(), words("c d"), 1, Shuffle::Off); // the order is 0 1 0 1
        list.setActive(3, shuffle, PickFirst::Yes);
        EXPECT_EQ(list.cursor(), -1);
        EXPECT_EQ(shownNumbers(list.order()), "0 1 0 1");
    }
}
