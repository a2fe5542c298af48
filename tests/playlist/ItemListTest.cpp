// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/ItemList.h"

#include <gtest/gtest.h>

#include <functional>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype NoLimit = 65'535;

QStringList numbers(int first, int count)
{
    QStringList texts;
    for (int number = first; number < first + count; ++number)
        texts.append(QString::number(number));
    return texts;
}

} // namespace

TEST(ItemList, ThousandsOfTextsAreAddedInTheirOrderAndFound)
{
    const QStringList texts = numbers(0, 5'000);
    ItemList list;
    EXPECT_EQ(list.add(texts, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.texts(), texts);
    for (int number = 0; number < 5'000; ++number)
        ASSERT_EQ(list.indexOf(QString::number(number)), number);
    EXPECT_EQ(list.indexOf(u"5000"_s), -1);
}

TEST(ItemList, WhatIsThereIsNotAddedAgainFromOneCallOrFromAnother)
{
    ItemList list;
    EXPECT_EQ(list.add({u"a"_s, u"b"_s, u"a"_s}, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.add({u"b"_s, u"c"_s, u"c"_s}, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.texts(), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
}

TEST(ItemList, AddingOneByOneGivesTheSame)
{
    const QStringList texts = numbers(0, 1'000) + numbers(500, 1'000);
    ItemList list;
    for (const QString &text : texts)
        ASSERT_EQ(list.add({text}, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.texts(), numbers(0, 1'500));
}

TEST(ItemList, OnlyATextThatIsNotThereFindsNoRoom)
{
    ItemList list;
    EXPECT_EQ(list.add(numbers(0, 100), 100), ItemList::Room::Enough);
    EXPECT_EQ(list.add(numbers(0, 100), 100), ItemList::Room::Enough);
    EXPECT_EQ(list.add({u"7"_s, u"new"_s, u"8"_s}, 100), ItemList::Room::TooLittle);
    EXPECT_EQ(list.add({u"new"_s}, 5), ItemList::Room::TooLittle);
    EXPECT_EQ(list.texts(), numbers(0, 100));
}

TEST(ItemList, ANullTextIsAnEmptyOne)
{
    ItemList list;
    EXPECT_EQ(list.add({QString(), u""_s}, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.size(), 1);
    EXPECT_EQ(list.indexOf(u""_s), 0);
}

TEST(ItemList, OfEqualTextsTheFirstIsFoundWithAnIndexAndWithout)
{
    ItemList list;
    list.append({u"x"_s, u"twice"_s, u"twice"_s});
    EXPECT_EQ(list.indexOf(u"twice"_s), 1);
    EXPECT_EQ(list.add({u"y"_s}, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.indexOf(u"twice"_s), 1);
    EXPECT_EQ(list.indexOf(u"y"_s), 3);
}

TEST(ItemList, NoEditIsMissedByTheIndex)
{
    const std::function<void(ItemList &)> edits[] = {
        [](ItemList &list) { list.append({u"z"_s}); },
        [](ItemList &list) {
            list.assign({u"c"_s, u"b"_s});
        },
        [](ItemList &list) { list.replace(0, u"z"_s); },
        [](ItemList &list) { list.insert(0, u"z"_s); },
        [](ItemList &list) { list.removeAll(u"a"_s); },
        [](ItemList &list) { list.swap(0, 2); },
        [](ItemList &list) { list.clear(); },
    };
    for (const auto &edit : edits) {
        ItemList list;
        ASSERT_EQ(list.add({u"a"_s, u"b"_s, u"c"_s}, NoLimit), ItemList::Room::Enough);
        edit(list);
        const QStringList expected = list.texts();
        for (const QString &text : {u"a"_s, u"b"_s, u"c"_s, u"z"_s})
            EXPECT_EQ(list.indexOf(text), expected.indexOf(text));
        // The next addition knows the list as it is by now.
        ASSERT_EQ(list.add({u"a"_s, u"b"_s, u"c"_s, u"z"_s}, NoLimit), ItemList::Room::Enough);
        for (const QString &text : {u"a"_s, u"b"_s, u"c"_s, u"z"_s}) {
            EXPECT_EQ(list.texts().count(text), 1);
            EXPECT_EQ(list.indexOf(text), list.texts().indexOf(text));
        }
    }
}

TEST(ItemList, ACopyGoesItsOwnWay)
{
    ItemList list;
    ASSERT_EQ(list.add({u"a"_s}, NoLimit), ItemList::Room::Enough);
    ItemList copy = list;
    ASSERT_EQ(copy.add({u"b"_s}, NoLimit), ItemList::Room::Enough);
    EXPECT_EQ(list.indexOf(u"b"_s), -1);
    EXPECT_EQ(copy.indexOf(u"b"_s), 1);
}
