// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/MountTable.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::MountTable;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(MountTable, FifthFieldIsTheMountPoint)
{
    EXPECT_THAT(MountTable::parse("21 1 0:20 / /proc rw,nosuid shared:5 - proc proc rw\n"
                                  "36 35 98:0 /root /mnt/card rw - ext4 /dev/sdb1 rw\n"),
                ElementsAre(u"/mnt/card"_s, u"/proc"_s));
}

TEST(MountTable, RootIsTheEmptyText)
{
    EXPECT_THAT(MountTable::parse("1 0 0:2 / / rw - rootfs rootfs rw\n"), ElementsAre(QString()));
}

TEST(MountTable, OctalEscapesAreCharacters)
{
    EXPECT_THAT(MountTable::parse(R"(1 0 0:2 / /a\040b\011c\012d\134e\043 rw - x x rw)"),
                ElementsAre(u"/a b\tc\nd\\e#"_s));
}

TEST(MountTable, BackslashesWithoutThreeOctalDigitsStay)
{
    EXPECT_THAT(MountTable::parse(R"(1 0 0:2 / /a\04 rw - x x rw)"), ElementsAre(uR"(/a\04)"_s));
    EXPECT_THAT(MountTable::parse(R"(1 0 0:2 / /a\089\777\ rw - x x rw)"), ElementsAre(uR"(/a\089\777\)"_s));
}

TEST(MountTable, PointsMountedOverOneAnotherCountOnce)
{
    EXPECT_THAT(MountTable::parse("1 0 0:2 / /a rw\n2 0 0:3 / /a rw\n"), ElementsAre(u"/a"_s));
}

TEST(MountTable, LinesThatAreNoMountsAreSkipped)
{
    EXPECT_THAT(MountTable::parse(""), IsEmpty());
    EXPECT_THAT(MountTable::parse("\n\n1 2 3 4\nx\n1 0 0:2 / relative rw\n"), IsEmpty());
    EXPECT_THAT(MountTable::parse("x\n1 0 0:2 / /last"), ElementsAre(u"/last"_s));
}

TEST(MountTable, LongestPointAboveIsFound)
{
    MountTable table;
    EXPECT_EQ(table.pointOf(u"/proc/self/x"), u"/proc");
    EXPECT_EQ(table.pointOf(u"/proc/"), u"/proc");
    EXPECT_EQ(table.pointOf(u"/"), u"");
    EXPECT_FALSE(table.pointOf(u"relative").has_value());
}
