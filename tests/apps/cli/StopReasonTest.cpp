// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "StopReason.h"

#include <QtCore/QSet>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace marvola;

namespace {

/// A refresh that indexed all of five files.
RefreshFacts complete()
{
    RefreshFacts facts;
    facts.isComplete = true;
    facts.examined = {u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s};
    facts.indexed = facts.examined;
    facts.fileLimit = 100;
    return facts;
}

RefreshFacts stopped()
{
    RefreshFacts facts = complete();
    facts.isComplete = false;
    return facts;
}

} // namespace

TEST(StopReason, CompleteRefreshHasNone)
{
    EXPECT_EQ(stopReason(complete()), StopReason::None);
}

TEST(StopReason, LimitReachedWithTheLastFileIsNoReason)
{
    RefreshFacts facts = complete();
    facts.fileLimit = 5;
    EXPECT_EQ(stopReason(facts), StopReason::None);
}

TEST(StopReason, CompleteWithFewerRecordsThanFilesWasNotWritten)
{
    RefreshFacts facts = complete();
    facts.indexed.removeLast();
    EXPECT_EQ(stopReason(facts), StopReason::NotWritten);
}

TEST(StopReason, OlderIndexOfAsManyFilesWasNotWritten)
{
    RefreshFacts facts = complete();
    facts.indexed.last() = u"f"_s;
    EXPECT_EQ(stopReason(facts), StopReason::NotWritten);
}

TEST(StopReason, OlderIndexOfMoreFilesWasNotWritten)
{
    RefreshFacts facts = complete();
    facts.indexed.append(u"f"_s);
    EXPECT_EQ(stopReason(facts), StopReason::NotWritten);
    facts.examined.clear();
    EXPECT_EQ(stopReason(facts), StopReason::NotWritten);
}

TEST(StopReason, StoppedRefreshLeavesOutAtMostTheLastFileExamined)
{
    RefreshFacts facts = stopped();
    facts.isIndexFull = true;
    facts.indexed.removeLast();
    EXPECT_EQ(stopReason(facts), StopReason::IndexFull);
    facts.indexed.removeLast();
    EXPECT_EQ(stopReason(facts), StopReason::NotWritten);
}

TEST(StopReason, OlderIndexOfACancelledRefreshWasNotWritten)
{
    RefreshFacts facts = stopped();
    facts.isCancelled = true;
    facts.indexed.first() = u"f"_s;
    EXPECT_EQ(stopReason(facts), StopReason::NotWritten);
}

TEST(StopReason, CancelExplainsAll)
{
    RefreshFacts facts = stopped();
    facts.isCancelled = true;
    facts.isIndexFull = true;
    EXPECT_EQ(stopReason(facts), StopReason::Cancelled);
}

TEST(StopReason, FileLimitBeforeFullIndex)
{
    RefreshFacts facts = stopped();
    facts.isIndexFull = true;
    EXPECT_EQ(stopReason(facts), StopReason::IndexFull);
    facts.fileLimit = 5;
    EXPECT_EQ(stopReason(facts), StopReason::FileLimit);
}

TEST(StopReason, UnknownPlaceEndsTheOrder)
{
    RefreshFacts facts = stopped();
    facts.meetsUnknown = true;
    EXPECT_EQ(stopReason(facts), StopReason::UnknownPlace);
}

TEST(StopReason, EveryReasonButNoneHasItsOwnWord)
{
    QSet<QString> words;
    for (const StopReason reason : {StopReason::Cancelled, StopReason::FileLimit, StopReason::IndexFull,
                                    StopReason::UnknownPlace, StopReason::NotWritten})
        words.insert(reasonWord(reason));
    EXPECT_EQ(words.size(), 5);
    EXPECT_FALSE(words.contains(QString()));
    EXPECT_TRUE(reasonWord(StopReason::None).isEmpty());
}
