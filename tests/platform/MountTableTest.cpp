// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/MountTable.h"

#include <QtCore/QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using marvola::MountTable;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum class Noticed { Yes, No, CannotMount };

/// Mounts something at \a point and takes it away again, in a namespace of this process's own, while a table is in use.
Noticed noticesMount(const QString &point)
{
    const QByteArray bytes = point.toUtf8();
    if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return Noticed::CannotMount;
    MountTable table;
    const QString inside = point + u"/x"_s;
    const bool before = table.pointOf(inside) == point;
    if (::mount("none", bytes.constData(), "tmpfs", 0, nullptr) != 0)
        return Noticed::CannotMount;
    const bool during = table.pointOf(inside) == point;
    if (::umount(bytes.constData()) != 0)
        return Noticed::CannotMount;
    const bool after = table.pointOf(inside) == point;
    return !before && during && !after ? Noticed::Yes : Noticed::No;
}

} // namespace

TEST(MountTable, FifthFieldIsTheMountPoint)
{
    EXPECT_THAT(MountTable::parse("21 1 0:20 / /proc rw,nosuid shared:5 - proc proc rw\n"
                                  "36 35 98:0 /sub /mnt/card rw - ext4 /dev/sdb1 rw\n"),
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

TEST(MountTable, NoticesMountsThatComeAndGo)
{
    const QTemporaryDir dir;
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(static_cast<int>(noticesMount(dir.path())));
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), int(Noticed::CannotMount)) << "this machine lets the test mount nothing";
    EXPECT_EQ(WEXITSTATUS(status), int(Noticed::Yes));
}
