// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/ListText.h"

#include <gtest/gtest.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

QStringList numbered(int count)
{
    QStringList items;
    for (int number = 0; number < count; ++number)
        items.append(QString::number(number));
    return items;
}

} // namespace

TEST(CurrentListRemove, OnlyItemLeavesAnEmptyListWithoutCursor)
{
    CurrentList list = listOf("a", 0);
    EXPECT_TRUE(list.remove(0));
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_TRUE(list.isChanged());
}

TEST(CurrentListRemove, IndexPastTheEndIsRefused)
{
    for (const int index : {3, 65535, -1}) {
        CurrentList list = listOf("a b c", 1);
        EXPECT_FALSE(list.remove(index));
        EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | 1");
        EXPECT_FALSE(list.isChanged());
    }
    EXPECT_FALSE(CurrentList().remove(0));
}

TEST(CurrentListRemove, ActiveLastInOrderWrapsToFirst)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 2);
    EXPECT_TRUE(list.remove(1));
    EXPECT_EQ(shown(list), "a c | 10 12 | 1 0 | 0");
}

TEST(CurrentListRemove, EntryBeforeTheActiveOneKeepsTheActiveItem)
{
    CurrentList list = listPlayedAs("a b c d", {2, 0, 3, 1}, 2);
    EXPECT_TRUE(list.remove(2));
    EXPECT_EQ(shown(list), "a b d | 10 11 13 | 0 2 1 | 1");
    EXPECT_EQ(list.active(), u"d"_s);
}

TEST(CurrentListRemove, EntryAfterTheActiveOneKeepsTheCursor)
{
    CurrentList list = listPlayedAs("a b c d", {2, 0, 3, 1}, 1);
    EXPECT_TRUE(list.remove(1));
    EXPECT_EQ(shown(list), "a c d | 10 12 13 | 1 0 2 | 1");
    EXPECT_EQ(list.active(), u"a"_s);
}

TEST(CurrentListRemove, ActiveInTheMiddleIsFollowedByTheNextOne)
{
    CurrentList list = listPlayedAs("a b c d", {2, 0, 3, 1}, 2);
    EXPECT_TRUE(list.remove(3));
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 1");
    EXPECT_EQ(list.next(Repeat::Off, Shuffle::On), u"b"_s);
}

TEST(CurrentListRemove, ActiveInFrontMakesTheNextOneActive)
{
    CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 0);
    EXPECT_TRUE(list.remove(2));
    EXPECT_EQ(shown(list), "a b | 10 11 | 0 1 | 0");
    EXPECT_EQ(list.active(), u"a"_s);
}

TEST(CurrentListRemove, EveryCopyOfTheTextGoesButOneFlagAndOneIndex)
{
    CurrentList list;
    list.restore(QString(), words("a b a c"), 1, Shuffle::Off);
    list.setFlag(u"c"_s, MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_TRUE(list.remove(2));
    EXPECT_EQ(shown(list), "b c | 0 0 2 | 0 1 2 | 1");
    EXPECT_EQ(list.active(), u"c"_s);
    EXPECT_EQ(list.flag(u"c"_s), 0);
}

TEST(CurrentListRemove, EveryIndexOfTheEntryGoesFromTheOrder)
{
    CurrentList list = listOf("a b", 0);
    list.restore(QString(), words("c d"), 3, Shuffle::Off); // the order is 0 1 0 1
    EXPECT_TRUE(list.remove(0));
    EXPECT_EQ(shown(list), "b c d | 11 0 0 | 0 0 | 2");
}

TEST(CurrentListRemove, EntryWithoutAPlaceKeepsTheCursor)
{
    CurrentList list = listOf("a b", 0);
    list.restore(QString(), words("c d"), 1, Shuffle::Off);
    EXPECT_TRUE(list.remove(3));
    EXPECT_EQ(shown(list), "a b c | 10 11 0 | 0 1 0 1 | 1");
}

TEST(CurrentListRemove, FullListIsEmptiedFromTheFrontAndTheBack)
{
    CurrentList list;
    list.restore(QString(), numbered(65535), 300, Shuffle::Off);
    for (int removal = 0; removal < 100; ++removal) {
        ASSERT_TRUE(list.remove(0));
        ASSERT_TRUE(list.remove(list.count() - 1));
    }
    EXPECT_EQ(list.count(), 65335);
    EXPECT_EQ(list.active(), u"300"_s);
    EXPECT_EQ(list.itemAt(65334), u"65434"_s);
}

TEST(CurrentListMove, UpExchangesWithTheOneBefore)
{
    CurrentList list = listOf("a b c d", 0);
    EXPECT_TRUE(list.moveUp(2, Shuffle::Off));
    EXPECT_EQ(shown(list), "a c b d | 10 12 11 13 | 0 1 2 3 | 0");
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListMove, DownExchangesWithTheOneBehind)
{
    CurrentList list = listOf("a b c d", 0);
    EXPECT_TRUE(list.moveDown(1, Shuffle::Off));
    EXPECT_EQ(shown(list), "a c b d | 10 12 11 13 | 0 1 2 3 | 0");
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentListMove, DownIntoTheLastPlaceAppends)
{
    CurrentList list = listOf("a b c", 0);
    EXPECT_TRUE(list.moveDown(1, Shuffle::Off));
    EXPECT_EQ(shown(list), "a c b | 10 12 11 | 0 1 2 | 0");
}

TEST(CurrentListMove, FirstUpAndLastDownSucceedAndChangeNothing)
{
    for (const Shuffle shuffle : {Shuffle::Off, Shuffle::On}) {
        CurrentList list = listPlayedAs("a b c", {2, 0, 1}, 1);
        EXPECT_TRUE(list.moveUp(0, shuffle));
        EXPECT_TRUE(list.moveDown(2, shuffle));
        EXPECT_EQ(shown(list), "a b c | 10 11 12 | 2 0 1 | 1");
    }
}

TEST(CurrentListMove, IndexPastTheEndIsRefused)
{
    for (const int index : {3, 65535, -1}) {
        CurrentList list = listOf("a b c", 1);
        EXPECT_FALSE(list.moveUp(index, Shuffle::Off));
        EXPECT_FALSE(list.moveDown(index, Shuffle::Off));
        EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | 1");
    }
    CurrentList none;
    EXPECT_FALSE(none.moveUp(0, Shuffle::Off));
    EXPECT_FALSE(none.moveDown(0, Shuffle::Off));
}

TEST(CurrentListMove, CursorFollowsTheTextsWithShuffleOff)
{
    struct Row
    {
        int cursor, afterUp, afterDown; ///< moving index 2 up, index 2 down
    };
    for (const Row &row : {Row{-1, -1, -1}, {0, 0, 0}, {1, 2, 1}, {2, 1, 3}, {3, 3, 2}, {4, 4, 4}, {9, 9, 9}}) {
        CurrentList up = listOf("a b c d e", row.cursor);
        const QString active = up.active();
        EXPECT_TRUE(up.moveUp(2, Shuffle::Off));
        EXPECT_EQ(up.cursor(), row.afterUp) << row.cursor;
        EXPECT_EQ(up.active(), active) << row.cursor;
        CurrentList down = listOf("a b c d e", row.cursor);
        EXPECT_TRUE(down.moveDown(2, Shuffle::Off));
        EXPECT_EQ(down.cursor(), row.afterDown) << row.cursor;
        EXPECT_EQ(down.active(), active) << row.cursor;
    }
}

TEST(CurrentListMove, TextsKeepTheirPlayOrderWithShuffleOn)
{
    CurrentList up = listPlayedAs("a b c d", {2, 0, 3, 1}, 3);
    EXPECT_TRUE(up.moveUp(2, Shuffle::On));
    EXPECT_EQ(shown(up), "a c b d | 10 12 11 13 | 1 0 3 2 | 3");
    CurrentList down = listPlayedAs("a b c d", {2, 0, 3, 1}, 3);
    EXPECT_TRUE(down.moveDown(2, Shuffle::On));
    EXPECT_EQ(shown(down), "a b d c | 10 11 13 12 | 3 0 2 1 | 3");
}

TEST(CurrentListMove, EveryCopyOfTheTextGoesAndOneComesBack)
{
    CurrentList list;
    list.restore(QString(), words("a b c a"), 0, Shuffle::Off);
    EXPECT_TRUE(list.moveUp(3, Shuffle::Off)); // b c remain, nothing at 2
    EXPECT_EQ(shown(list), "b c a | 0 0 0 0 | 0 1 2 3 | 0");
    list.clear();
    list.restore(QString(), words("a b a c"), 0, Shuffle::Off);
    EXPECT_TRUE(list.moveDown(0, Shuffle::Off)); // b c remain, c at 1
    EXPECT_EQ(shown(list), "b a c | 0 0 0 0 | 0 1 2 3 | 1");
}

TEST(CurrentListMove, GoesBeforeTheFirstCopyOfTheTextInTheWay)
{
    CurrentList list;
    list.restore(QString(), words("b c b a"), 0, Shuffle::Off);
    EXPECT_TRUE(list.moveUp(3, Shuffle::Off));
    EXPECT_EQ(shown(list.items()), "a b c b");
    list.clear();
    list.restore(QString(), words("b a c b"), 0, Shuffle::Off);
    EXPECT_TRUE(list.moveDown(1, Shuffle::Off));
    EXPECT_EQ(shown(list.items()), "a b c b");
}

TEST(CurrentListMove, OnlyCopiesOfOneText)
{
    CurrentList list;
    list.restore(QString(), words("a a a"), 1, Shuffle::Off);
    EXPECT_TRUE(list.moveDown(0, Shuffle::On));
    EXPECT_EQ(shown(list), "a | 0 0 0 | 1 0 2 | 1");
    EXPECT_TRUE(list.moveUp(0, Shuffle::On));
    EXPECT_EQ(shown(list), "a | 0 0 0 | 1 0 2 | 1");
}

TEST(CurrentListMove, IndexWithoutAPlaceLeavesTheOther)
{
    CurrentList list = listOf("a b", 0);
    list.restore(QString(), words("c d"), 0, Shuffle::Off); // the order is 0 1 0 1
    EXPECT_TRUE(list.moveUp(2, Shuffle::On));
    EXPECT_EQ(shown(list), "a c b d | 10 0 11 0 | 0 2 0 1 | 0");
    EXPECT_TRUE(list.moveDown(2, Shuffle::On));
    EXPECT_EQ(shown(list), "a c d b | 10 0 0 11 | 0 3 0 1 | 0");
}
