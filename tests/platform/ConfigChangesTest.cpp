// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigChanges.h"

#include <gtest/gtest.h>

using namespace marvola;

TEST(ConfigChanges, NothingChangedAtFirst)
{
    const ConfigChanges changes;
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_EQ(changes.find("g"), nullptr);
}

TEST(ConfigChanges, TheLastChangeOfAKeyCounts)
{
    ConfigChanges changes;
    changes.set("g", "k", QByteArray("1"));
    changes.set("g", "other", QByteArray("x"));
    changes.set("g", "k", std::nullopt);
    ASSERT_NE(changes.find("g"), nullptr);
    ASSERT_NE(changes.find("g")->find("k"), nullptr);
    EXPECT_FALSE(changes.find("g")->find("k")->value.has_value());
    changes.set("g", "k", QByteArray("2"));
    EXPECT_EQ(changes.find("g")->find("k")->value, QByteArray("2"));
    EXPECT_EQ(changes.find("g")->changes().size(), 2U);
    EXPECT_EQ(changes.find("g")->find("absent"), nullptr);
}

TEST(ConfigChanges, ValuesThatComeLaterStayApart)
{
    ConfigChanges changes;
    for (const char *key : {"a", "b", "c"})
        changes.set("g", key, QByteArray("first"));
    changes.set("g", "c", QByteArray("later c"));
    changes.set("g", "a", std::nullopt);
    changes.set("g", "a", QByteArray("later a"));
    changes.set("g", "c", QByteArray("last c"));
    EXPECT_EQ(changes.find("g")->find("a")->value, QByteArrayView("later a"));
    EXPECT_EQ(changes.find("g")->find("b")->value, QByteArrayView("first"));
    EXPECT_EQ(changes.find("g")->find("c")->value, QByteArrayView("last c"));
}

TEST(ConfigChanges, ClearingForgetsWhatWasChangedBefore)
{
    ConfigChanges changes;
    changes.set("g", "k", QByteArray("1"));
    changes.set("h", "k", QByteArray("1"));
    changes.clearGroup("g");
    EXPECT_TRUE(changes.find("g")->isCleared);
    EXPECT_EQ(changes.find("g")->find("k"), nullptr);
    EXPECT_FALSE(changes.find("h")->isCleared);
    changes.set("g", "k", QByteArray("2"));
    EXPECT_TRUE(changes.find("g")->isCleared);
    EXPECT_EQ(changes.find("g")->find("k")->value, QByteArray("2"));
}

TEST(ConfigChanges, GroupsAndKeysKeepTheOrderOfWriting)
{
    ConfigChanges changes;
    for (const char *group : {"z", "a", "m"}) {
        for (const char *key : {"9", "1", "5"})
            changes.set(group, key, QByteArray("v"));
    }
    QByteArray order;
    for (const auto &group : changes.groups()) {
        for (const auto &change : group.content.changes())
            order += group.name + change.key.toByteArray() + ' ';
    }
    EXPECT_EQ(order, "z9 z1 z5 a9 a1 a5 m9 m1 m5 ");
}

TEST(ConfigChanges, MakingRoomForAFewAtATimeMovesTheOthersSeldom)
{
    ConfigChanges changes;
    GroupChanges &group = changes.ofGroup("g");
    int moves = 0;
    for (int number = 1; number <= 10'000; ++number) {
        const auto *const before = group.changes().data();
        group.reserve(1);
        group.set(QByteArray::number(number), QByteArray("v"));
        moves += group.changes().data() != before ? 1 : 0;
    }
    EXPECT_LT(moves, 40);
    group.reserve(50'000);
    EXPECT_GE(group.changes().capacity(), 60'000U);
}

TEST(ConfigChanges, DiscardingLeavesNothing)
{
    ConfigChanges changes;
    changes.set("g", "k", QByteArray("1"));
    changes.discard();
    EXPECT_TRUE(changes.isEmpty());
    EXPECT_EQ(changes.find("g"), nullptr);
    changes.set("h", "k", QByteArray("1"));
    EXPECT_EQ(changes.groups().size(), 1U);
}
