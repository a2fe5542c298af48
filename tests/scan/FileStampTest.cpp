// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/FileStamp.h"

#include "support/Folders.h"

#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using marvola::FileStamp;
using marvola::FileTime;

namespace {

QByteArray pathIn(const Folders &folders, const QString &name)
{
    return QFile::encodeName(folders.root() + u'/' + name);
}

FileStamp stampOf(qint64 modified, qint64 changed)
{
    return {1, {modified, 0}, {changed, 999'999'999}};
}

} // namespace

TEST(FileStamp, IsThatOfTheFileBehindLinks)
{
    const Folders folders;
    folders.addFile(u"a.mp3"_s);
    folders.addLink(u"b.mp3"_s, u"a.mp3"_s);
    struct stat status = {};
    ASSERT_EQ(::stat(pathIn(folders, u"a.mp3"_s).constData(), &status), 0);
    const FileStamp expected{status.st_size,
                             {status.st_mtim.tv_sec, static_cast<quint32>(status.st_mtim.tv_nsec)},
                             {status.st_ctim.tv_sec, static_cast<quint32>(status.st_ctim.tv_nsec)}};
    EXPECT_EQ(FileStamp::of(pathIn(folders, u"a.mp3"_s)), expected);
    EXPECT_EQ(FileStamp::of(pathIn(folders, u"b.mp3"_s)), expected);
}

TEST(FileStamp, OnlyRegularFilesHaveOne)
{
    const Folders folders;
    ASSERT_EQ(::mkfifo(pathIn(folders, u"pipe.mp3"_s).constData(), 0600), 0);
    EXPECT_FALSE(FileStamp::of(pathIn(folders, u"pipe.mp3"_s)));
    EXPECT_FALSE(FileStamp::of(QFile::encodeName(folders.root())));
    EXPECT_FALSE(FileStamp::of(pathIn(folders, u"missing.mp3"_s)));
    EXPECT_FALSE(FileStamp::of("/dev/null"));
    EXPECT_FALSE(FileStamp::of(""));
    folders.addFile(u"a"_s);
    EXPECT_FALSE(FileStamp::of(pathIn(folders, u"a"_s) + QByteArray("\0b", 2)));
}

TEST(FileStamp, DiffersInEachOfItsParts)
{
    const FileStamp stamp{1, {2, 3}, {4, 5}};
    EXPECT_TRUE(stamp == (FileStamp{1, {2, 3}, {4, 5}}));
    EXPECT_FALSE(stamp == (FileStamp{0, {2, 3}, {4, 5}}));
    EXPECT_FALSE(stamp == (FileStamp{1, {0, 3}, {4, 5}}));
    EXPECT_FALSE(stamp == (FileStamp{1, {2, 0}, {4, 5}}));
    EXPECT_FALSE(stamp == (FileStamp{1, {2, 3}, {0, 5}}));
    EXPECT_FALSE(stamp == (FileStamp{1, {2, 3}, {4, 0}}));
}

TEST(FileStamp, IsSettledMoreThanThreeSecondsAfterItsLaterTime)
{
    EXPECT_TRUE(stampOf(96, 96).isSettledAt({100, 0}));
    EXPECT_FALSE(stampOf(97, 96).isSettledAt({100, 999'999'999}));
    EXPECT_FALSE(stampOf(96, 97).isSettledAt({100, 999'999'999}));
    EXPECT_FALSE(stampOf(100, 100).isSettledAt({100, 0}));
    EXPECT_FALSE(stampOf(0, 5000).isSettledAt({100, 0})) << "the future";
}

TEST(FileStamp, NowIsOfTheClockThatStampsFiles)
{
    const FileTime before = FileTime::now();
    const Folders folders;
    folders.addFile(u"a"_s);
    const auto stamp = FileStamp::of(pathIn(folders, u"a"_s));
    ASSERT_TRUE(stamp);
    EXPECT_FALSE(stamp->isSettledAt(before)) << "a file that was made later";
}
