// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/PresetLinks.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::presetLinks;

TEST(PresetLinks, KeepTheirOrder)
{
    EXPECT_EQ(presetLinks({u"c"_s, u"a"_s, u"b"_s}), QStringList({u"c"_s, u"a"_s, u"b"_s}));
}

TEST(PresetLinks, EmptyOnesLeaveNoGap)
{
    EXPECT_EQ(presetLinks({QString(), u"b"_s, u"c"_s}), QStringList({u"b"_s, u"c"_s}));
    EXPECT_EQ(presetLinks({u"a"_s, u""_s, u"c"_s}), QStringList({u"a"_s, u"c"_s}));
    EXPECT_EQ(presetLinks({u"a"_s, u"b"_s, u""_s}), QStringList({u"a"_s, u"b"_s}));
}

TEST(PresetLinks, AllEmptyIsAnEmptyList)
{
    EXPECT_TRUE(presetLinks({}).isEmpty());
}

TEST(PresetLinks, EqualOnesAndBlanksAreKept)
{
    EXPECT_EQ(presetLinks({u"a"_s, u" "_s, u"a"_s}), QStringList({u"a"_s, u" "_s, u"a"_s}));
}
