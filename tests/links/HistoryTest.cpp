// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/History.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::History;

namespace {

/// "L1" to "Lcount", as they were saved: the latest first.
History restored(int count)
{
    History history;
    for (int number = count; number >= 1; --number)
        history.append(u"L%1"_s.arg(number));
    return history;
}

} // namespace

TEST(History, LatestComesFirst)
{
    History history;
    for (const auto *url : {"L1", "L2", "L3"})
        history.add(QString::fromLatin1(url), 20);
    EXPECT_EQ(history.entries(), QStringList({u"L3"_s, u"L2"_s, u"L1"_s}));
    history.add(u"L2"_s, 20);
    EXPECT_EQ(history.entries(), QStringList({u"L2"_s, u"L3"_s, u"L1"_s}));
}

TEST(History, FirstOneAddedAgainChangesNothing)
{
    History history = restored(3);
    history.add(u"L3"_s, 20);
    EXPECT_EQ(history.entries(), restored(3).entries());
}

TEST(History, EmptyLinkIsPassedOver)
{
    History history = restored(2);
    history.add(QString(), 2);
    history.add(u""_s, 2);
    EXPECT_EQ(history.entries(), restored(2).entries());
}

TEST(History, ComparesExactly)
{
    History history;
    for (const auto *url : {"http://a", "HTTP://A", "http://a/", " http://a"})
        history.add(QString::fromLatin1(url), 20);
    EXPECT_EQ(history.entries().size(), 4);
}

TEST(History, NewLinkAtTheLimitDropsTheOldest)
{
    History history = restored(20);
    history.add(u"new"_s, 20);
    EXPECT_EQ(history.entries().size(), 20);
    EXPECT_EQ(history.entries().first(), u"new"_s);
    EXPECT_EQ(history.entries().last(), u"L2"_s);
}

TEST(History, OneBelowTheLimitDropsNothing)
{
    History history = restored(19);
    history.add(u"new"_s, 20);
    EXPECT_EQ(history.entries().size(), 20);
    EXPECT_EQ(history.entries().last(), u"L1"_s);
}

TEST(History, KnownLinkAtTheLimitDropsNothing)
{
    History history = restored(20);
    history.add(u"L1"_s, 20);
    EXPECT_EQ(history.entries().size(), 20);
    EXPECT_EQ(history.entries().first(), u"L1"_s);
    EXPECT_EQ(history.entries().last(), u"L2"_s);
}

TEST(History, LongerThanTheLimitIsDeliberatelyNotTrimmedAndGrows)
{
    History history = restored(21);
    history.add(u"new"_s, 20);
    EXPECT_EQ(history.entries().size(), 22);
    EXPECT_EQ(history.entries().last(), u"L1"_s);
}

TEST(History, LimitZeroDropsNothingThatIsNotThere)
{
    History history;
    history.add(u"L1"_s, 0);
    history.add(u"L2"_s, 0);
    EXPECT_EQ(history.entries(), QStringList({u"L2"_s, u"L1"_s}));
}

TEST(History, LimitOneKeepsTheLatest)
{
    History history;
    history.add(u"L1"_s, 1);
    history.add(u"L2"_s, 1);
    EXPECT_EQ(history.entries(), QStringList(u"L2"_s));
}

TEST(History, TakesWhatWasSavedAsItIs)
{
    History history;
    for (const auto *url : {"a", "", "a"})
        history.append(QString::fromLatin1(url));
    EXPECT_EQ(history.entries(), QStringList({u"a"_s, u""_s, u"a"_s}));
}

TEST(History, LinkThatWasSavedTwiceMovesOneOfThem)
{
    History history;
    for (const auto *url : {"b", "a", "c", "a"})
        history.append(QString::fromLatin1(url));
    history.add(u"a"_s, 4);
    EXPECT_EQ(history.entries(), QStringList({u"a"_s, u"b"_s, u"c"_s, u"a"_s}));
}

TEST(History, AddsAnEntryOfItsOwn)
{
    History history = restored(3);
    history.add(history.entries().last(), 3);
    EXPECT_EQ(history.entries(), QStringList({u"L1"_s, u"L3"_s, u"L2"_s}));
}

TEST(History, CopiesAreApart)
{
    History history = restored(2);
    const QStringList before = history.entries();
    history.add(u"L1"_s, 20);
    EXPECT_EQ(before, restored(2).entries());
}

TEST(History, IsFullAtTheLargestLimitToo)
{
    constexpr quint16 Largest = 65535;
    History history = restored(Largest);
    history.add(u"new"_s, Largest);
    EXPECT_EQ(history.entries().size(), Largest);
    EXPECT_EQ(history.entries().last(), u"L2"_s);
}
