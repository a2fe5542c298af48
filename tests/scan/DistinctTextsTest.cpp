// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/DistinctTexts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::DistinctTexts;

TEST(DistinctTexts, KeepsFirstSeenOrder)
{
    QStringList list;
    DistinctTexts texts(list);
    for (const QString &text : {u"b"_s, u"a"_s, u"b"_s, u"c"_s, u"a"_s})
        texts.add(text);
    EXPECT_EQ(list, QStringList({u"b"_s, u"a"_s, u"c"_s}));
}

TEST(DistinctTexts, KnowsWhatTheListHeldBefore)
{
    QStringList list{u"x"_s, u"x"_s};
    DistinctTexts texts(list);
    texts.add(u"x"_s);
    texts.add(u"y"_s);
    EXPECT_EQ(list, QStringList({u"x"_s, u"x"_s, u"y"_s}));
}

TEST(DistinctTexts, ComparesExactly)
{
    QStringList list;
    DistinctTexts texts(list);
    for (const QString &text : {u"a"_s, u"A"_s, u"a "_s, u"a\u0301"_s, u"\u00e1"_s})
        texts.add(text);
    EXPECT_EQ(list.size(), 5);
}
