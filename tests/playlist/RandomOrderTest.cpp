// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/RandomOrder.h"

#include "playlist/ScriptedDraws.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <gmock/gmock.h>
#include <numeric>

using marvola::randomizeList;
using testing::ElementsAre;

namespace {

QList<quint32> numbers(int count)
{
    QList<quint32> list(count);
    std::iota(list.begin(), list.end(), 0U);
    return list;
}

// The passes as they are to be: the C library's own generator, the head exchanged with a drawn position.
QList<quint32> shuffledWithClock(QList<quint32> list, std::time_t second)
{
    std::srand(static_cast<unsigned int>(second));
    const auto count = static_cast<int>(list.size());
    for (int pass = 0; pass < count; ++pass) {
        const int other = std::rand() % count;
        std::swap(list[0], list[other]);
    }
    return list;
}

} // namespace

TEST(RandomOrder, EachPassExchangesTheHeadWithTheDrawnPosition)
{
    const ScriptedDraws draws({1, 2, 3, 2});
    QList<quint32> list = {10, 11, 12, 13};
    randomizeList(list, draws.reseed());
    // 11 10 12 13 / 12 10 11 13 / 13 10 11 12 / 11 10 13 12
    EXPECT_THAT(list, ElementsAre(11, 10, 13, 12));
    EXPECT_EQ(draws.draws(), 4);
    EXPECT_EQ(draws.reseeds(), 1);
}

TEST(RandomOrder, DrawsAreTakenModuloTheLength)
{
    const ScriptedDraws draws({4, 7, 0xFFFFFFFFU});
    QList<quint32> list = {10, 11, 12};
    randomizeList(list, draws.reseed());
    // positions 1, 1, 0
    EXPECT_THAT(list, ElementsAre(10, 11, 12));
    const ScriptedDraws others({5});
    randomizeList(list, others.reseed());
    EXPECT_THAT(list, ElementsAre(12, 11, 10));
}

TEST(RandomOrder, EmptyListDoesNotTouchTheGenerator)
{
    const ScriptedDraws draws({1});
    QList<quint32> list;
    randomizeList(list, draws.reseed());
    EXPECT_TRUE(list.isEmpty());
    EXPECT_EQ(draws.reseeds(), 0);
}

TEST(RandomOrder, EmptyListDoesNotReseedTheClocksGenerator)
{
    std::srand(4711);
    const int first = std::rand();
    std::srand(4711);
    QList<quint32> list;
    randomizeList(list);
    EXPECT_EQ(std::rand(), first);
}

TEST(RandomOrder, OneEntryStays)
{
    const ScriptedDraws draws({7});
    QList<quint32> list = {5};
    randomizeList(list, draws.reseed());
    EXPECT_THAT(list, ElementsAre(5));
    EXPECT_EQ(draws.draws(), 1);
}

TEST(RandomOrder, EachCallReseeds)
{
    const ScriptedDraws draws({2, 1});
    QList<quint32> first = {0, 1, 2};
    QList<quint32> second = {0, 1, 2};
    randomizeList(first, draws.reseed());
    randomizeList(second, draws.reseed());
    EXPECT_EQ(draws.reseeds(), 2);
    EXPECT_EQ(first, second);
    EXPECT_THAT(first, ElementsAre(1, 2, 0));
}

TEST(RandomOrder, ValueThatLeavesTheHeadIsCutTo16Bits)
{
    const ScriptedDraws draws({1});
    QList<quint32> list = {0x12345, 0x56789};
    randomizeList(list, draws.reseed());
    // The second pass draws 0.
    EXPECT_THAT(list, ElementsAre(0x56789, 0x2345));
}

TEST(RandomOrder, DrawOfZeroChangesNothingNotEvenAWideValue)
{
    const ScriptedDraws draws({0, 0, 0});
    QList<quint32> list = {0x12345, 0x56789, 3};
    randomizeList(list, draws.reseed());
    EXPECT_THAT(list, ElementsAre(0x12345, 0x56789, 3));
}

TEST(RandomOrder, LengthIsCountedWith16Bits)
{
    QList<quint32> list = numbers(65536);
    const ScriptedDraws none({1});
    randomizeList(list, none.reseed());
    EXPECT_EQ(none.reseeds(), 0);
    EXPECT_EQ(list, numbers(65536));

    list = numbers(65538);
    const ScriptedDraws two({1});
    randomizeList(list, two.reseed());
    EXPECT_EQ(two.draws(), 2);
    EXPECT_EQ(list.at(0), 1U);
    EXPECT_EQ(list.at(1), 0U);
    EXPECT_EQ(list.at(2), 2U);
}

TEST(RandomOrder, NothingIsAddedOrDropped)
{
    for (const int count : {2, 3, 100, 65535}) {
        QList<quint32> list = numbers(count);
        randomizeList(list);
        std::sort(list.begin(), list.end());
        EXPECT_EQ(list, numbers(count));
    }
}

TEST(RandomOrder, OneSecondsClockGivesOneOrder)
{
    const QList<quint32> start = numbers(500);
    // Between two equal readings of the clock there is one second's seed only.
    std::time_t before = 0;
    QList<quint32> list;
    do {
        before = std::time(nullptr);
        list = start;
        randomizeList(list);
    } while (std::time(nullptr) != before);
    EXPECT_NE(list, start);
    EXPECT_EQ(list, shuffledWithClock(start, before));
}
