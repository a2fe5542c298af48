// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// As an exit status: the program could not be given mounts of its own.
constexpr int NoOwnMounts = 99;

/// Has the system list no mounts, as it does for what lies outside a changed root directory. In a child process only.
bool emptyTableOfMounts()
{
    if (::unshare(CLONE_NEWNS) != 0 || ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("none", "/proc", "tmpfs", 0, nullptr) != 0 || ::mkdir("/proc/self", 0755) != 0)
        return false;
    return ::creat("/proc/self/mounts", 0644) >= 0 && ::creat("/proc/self/mountinfo", 0644) >= 0;
}

class StatusCommand : public CliTest
{
};

} // namespace

TEST_F(StatusCommand, TellsWhereEverythingIs)
{
    write(u"phone/a.wav"_s, waveFile());
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const QJsonObject status = run({u"--card2"_s, path(u"out"_s), u"status"_s, u"--json"_s}).object();
    EXPECT_EQ(status[u"workDirectory"_s].toString(), path(u"work"_s));
    EXPECT_EQ(status[u"settingsFile"_s].toString(), settingsFile());
    const QJsonArray places = status[u"places"_s].toArray();
    ASSERT_EQ(places.size(), 3);
    EXPECT_EQ(places.at(0).toObject()[u"path"_s].toString(), path(u"phone"_s));
    EXPECT_TRUE(places.at(0).toObject()[u"exists"_s].toBool());
    EXPECT_GT(places.at(0).toObject()[u"freeBytes"_s].toDouble(), 0);
    EXPECT_FALSE(places.at(2).toObject()[u"exists"_s].toBool(true));
    const QJsonObject index = status[u"index"_s].toObject();
    EXPECT_EQ(index[u"records"_s].toInt(-1), 1);
    EXPECT_EQ(index[u"bytesReserved"_s].toInt(-1), 150000);
    // Count, number, type, and four texts with their lengths: the path and three times "<Unknown>".
    EXPECT_EQ(index[u"bytesUsed"_s].toInt(-1), 2 + 2 + 1 + 4 * 4 + 2 * (path(u"phone/a.wav"_s).size() + 3 * 9));
    EXPECT_EQ(status[u"limits"_s].toObject()[u"media-files"_s].toInt(-1), 10000);
    EXPECT_EQ(status[u"codec"_s].toObject()[u"name"_s].toString(), u"GBK"_s);
}

TEST_F(StatusCommand, FreeSpaceIsToldWhereTheTableOfMountsLacksTheDirectory)
{
#ifdef MARVOLA_SANITIZED
    GTEST_SKIP() << "the address sanitizer itself needs what is hidden here";
#endif
    const std::unique_ptr<QProcess> program = process(places() + QStringList{u"status"_s, u"--json"_s});
    program->setChildProcessModifier([] {
        if (!emptyTableOfMounts())
            ::_exit(NoOwnMounts);
    });
    program->start();
    const CliResult result = finish(*program);
    if (result.status == NoOwnMounts)
        GTEST_SKIP() << "this machine lets the test change no mounts";
    EXPECT_EQ(result.status, 0) << result.errors.constData();
    const QJsonObject phone = result.object()[u"places"_s].toArray().at(0).toObject();
    EXPECT_GT(phone[u"freeBytes"_s].toDouble(), 0);
}

TEST_F(StatusCommand, LinesForPeople)
{
    const CliResult result = run({u"status"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.isEmpty()) << result.errors.constData();
    EXPECT_TRUE(result.output.contains("  index           0 files; 2 of 150000 bytes used\n"))
        << result.output.constData();
    EXPECT_TRUE(result.output.contains("  search order    phone,card\n")) << result.output.constData();
}

TEST_F(StatusCommand, CodecThatDoesNotExistIsTold)
{
    ConfigFile(settingsFile(), false).writeEntry(u"MediaControlItem"_s, u"CodecName"_s, u"NoSuchCodec"_s);
    const QJsonObject codec = run({u"status"_s, u"--json"_s}).object()[u"codec"_s].toObject();
    EXPECT_EQ(codec[u"name"_s].toString(), u"NoSuchCodec"_s);
    EXPECT_FALSE(codec[u"available"_s].toBool(true));
}
