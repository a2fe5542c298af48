// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/KeyIndex.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QHash>

#include <gtest/gtest.h>

#include <random>

using namespace marvola;

namespace {

/// Puts \a keys, each another one, into \a index, and expects each to get the next number and to keep it. They must
/// stay as long as the index is used.
void expectNumberedInTurn(KeyIndex &index, const QByteArrayList &keys)
{
    for (qsizetype number = 0; number < keys.size(); ++number)
        ASSERT_EQ(index.insert(keys[number]), static_cast<KeyIndex::Number>(number)) << keys[number].toStdString();
    for (qsizetype number = keys.size() - 1; number >= 0; --number) {
        ASSERT_EQ(index.find(keys[number]), static_cast<KeyIndex::Number>(number)) << keys[number].toStdString();
        ASSERT_EQ(index.insert(keys[number]), static_cast<KeyIndex::Number>(number)) << keys[number].toStdString();
    }
    EXPECT_EQ(index.size(), static_cast<std::size_t>(keys.size()));
}

} // namespace

TEST(KeyIndex, NumbersKeysInTheOrderInWhichTheyCome)
{
    KeyIndex index;
    EXPECT_EQ(index.find("a"), KeyIndex::None);
    EXPECT_EQ(index.insert("b"), 0U);
    EXPECT_EQ(index.insert("a"), 1U);
    EXPECT_EQ(index.insert("b"), 0U);
    EXPECT_EQ(index.insert(""), 2U);
    EXPECT_EQ(index.find("a"), 1U);
    EXPECT_EQ(index.find(""), 2U);
    EXPECT_EQ(index.find("c"), KeyIndex::None);
    EXPECT_EQ(index.key(1), "a");
    EXPECT_EQ(index.size(), 3U);
}

TEST(KeyIndex, KeysThatDifferInOneByteOrInLengthDiffer)
{
    QByteArrayList keys;
    for (qsizetype length = 0; length < 40; ++length) {
        keys.append(QByteArray(length, 'x'));
        for (qsizetype at = 0; at < length; ++at) {
            keys.append(QByteArray(length, 'x'));
            keys.last()[at] = 'y';
            keys.append(QByteArray(length, 'x'));
            keys.last()[at] = '\0';
        }
    }
    KeyIndex index;
    expectNumberedInTurn(index, keys);
}

TEST(KeyIndex, KeysThatCountAreKnownWhateverComesBetween)
{
    const QByteArrayList keys{"counter", "3", "1", "2", "4",  "x",  "5",  "01",
                              "0",       "7", "6", "8", "-1", "+2", "1 ", "65536"};
    KeyIndex index;
    expectNumberedInTurn(index, keys);
    for (const char *other : {"9", "10", "02", "", "18446744073709551617", "4294967297"})
        EXPECT_EQ(index.find(other), KeyIndex::None) << other;
}

TEST(KeyIndex, AKeyThatCameBeforeItsTurnKeepsItsNumber)
{
    const QByteArrayList keys{"3", "2", "1"};
    KeyIndex index;
    expectNumberedInTurn(index, keys);
    EXPECT_EQ(index.insert("4"), 3U);
}

TEST(KeyIndex, KeysThatCountGoOnBehindAnotherKey)
{
    const QByteArrayList keys{"1", "2", "x", "3", "4", "y", "5"};
    KeyIndex index;
    expectNumberedInTurn(index, keys);
}

TEST(KeyIndex, AgreesWithAGeneralHashWhateverTheOrder)
{
    const auto seed = std::random_device()();
    std::mt19937 random(seed);
    QByteArrayList keys;
    for (int number = 0; number < 3000; ++number)
        keys.append(QByteArray::number(number));
    KeyIndex index;
    QHash<QByteArray, KeyIndex::Number> expected;
    for (int step = 0; step < 100'000; ++step) {
        // Mostly some key, at times the next one of those that count.
        const bool isNext = random() % 8 == 0 && expected.size() < 2999;
        const QByteArray &key = keys[isNext ? expected.size() + 1 : static_cast<qsizetype>(random() % 3000)];
        if (random() % 20 == 0) {
            if (!expected.contains(key))
                expected.insert(key, static_cast<KeyIndex::Number>(expected.size()));
            ASSERT_EQ(index.insert(key), expected.value(key)) << "seed " << seed;
        }
        ASSERT_EQ(index.find(key), expected.value(key, KeyIndex::None)) << "seed " << seed;
        if (step == 50'000)
            index.reserve(10'000);
    }
    EXPECT_EQ(index.size(), static_cast<std::size_t>(expected.size()));
}
