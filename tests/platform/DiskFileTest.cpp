// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/DiskFile.h"

#include "Folder.h"
#include "platform/FileDescriptor.h"

#include <sys/stat.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype MaxSize = 1000;

mode_t modeOf(const QByteArray &path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(path.constData(), &status), 0);
    return status.st_mode & 07777;
}

} // namespace

TEST(DiskFile, ReadsRegularFilesUpToALimit)
{
    const Folder folder;
    folder.put(u"full"_s, QByteArray(MaxSize, 'x'));
    folder.put(u"empty"_s, "");
    folder.put(u"long"_s, QByteArray(MaxSize + 1, 'x'));
    EXPECT_EQ(readDiskFile(folder.encodedPath(u"full"_s), MaxSize).bytes, QByteArray(MaxSize, 'x'));
    EXPECT_EQ(readDiskFile(folder.encodedPath(u"empty"_s), MaxSize).outcome, DiskFile::Outcome::Read);
    EXPECT_EQ(readDiskFile(folder.encodedPath(u"long"_s), MaxSize).outcome, DiskFile::Outcome::Refused);
    EXPECT_EQ(readDiskFile(folder.encodedPath(u"absent"_s), MaxSize).outcome, DiskFile::Outcome::Missing);
    EXPECT_EQ(readDiskFile(folder.encodedPath(u"full/below"_s), MaxSize).outcome, DiskFile::Outcome::Missing);
}

TEST(DiskFile, WhatIsNoRegularFileIsRefusedWithoutWaiting)
{
    const Folder folder;
    ASSERT_EQ(::mkfifo(folder.encodedPath(u"pipe"_s).constData(), 0600), 0);
    ASSERT_TRUE(QDir(folder.path(QString())).mkdir(u"directory"_s));
    ASSERT_TRUE(QFile::link(u"loop"_s, folder.path(u"loop"_s)));
    for (const QString &name : {u"pipe"_s, u"directory"_s, u"loop"_s}) {
        EXPECT_EQ(readDiskFile(folder.encodedPath(name), MaxSize).outcome, DiskFile::Outcome::Refused)
            << qPrintable(name);
        EXPECT_FALSE(isDiskWritable(folder.encodedPath(name), MaxSize)) << qPrintable(name);
    }
}

TEST(DiskFile, WritableIsWhatIsAFileOrCouldBeMade)
{
    const Folder folder;
    folder.put(u"file"_s, "x");
    folder.put(u"long"_s, QByteArray(MaxSize + 1, 'x'));
    EXPECT_TRUE(isDiskWritable(folder.encodedPath(u"file"_s), MaxSize));
    EXPECT_TRUE(isDiskWritable(folder.encodedPath(u"new"_s), MaxSize));
    EXPECT_TRUE(isDiskWritable(folder.encodedPath(u"a/b/c/new"_s), MaxSize));
    EXPECT_FALSE(isDiskWritable(folder.encodedPath(u"file/new"_s), MaxSize));
    EXPECT_FALSE(isDiskWritable(folder.encodedPath(u"long"_s), MaxSize));
    EXPECT_EQ(folder.names(), QStringList({u"file"_s, u"long"_s})) << "asking makes nothing";
}

TEST(DiskFile, LinksAreResolvedToWhereTheFileIsOrWouldBe)
{
    const Folder folder;
    ASSERT_TRUE(QDir(folder.path(QString())).mkpath(u"d"_s));
    ASSERT_TRUE(QFile::link(u"d/target"_s, folder.path(u"relative"_s)));
    ASSERT_TRUE(QFile::link(folder.path(u"relative"_s), folder.path(u"chain"_s)));
    ASSERT_TRUE(QFile::link(u"../plain"_s, folder.path(u"d/up"_s)));
    EXPECT_EQ(resolvedPath(folder.encodedPath(u"plain"_s)), folder.encodedPath(u"plain"_s));
    EXPECT_EQ(resolvedPath(folder.encodedPath(u"relative"_s)), folder.encodedPath(u"d/target"_s));
    EXPECT_EQ(resolvedPath(folder.encodedPath(u"chain"_s)), folder.encodedPath(u"d/target"_s));
    EXPECT_EQ(resolvedPath(folder.encodedPath(u"d/up"_s)), folder.encodedPath(u"d/../plain"_s));
}

TEST(DiskFile, DirectoryOfAPath)
{
    const struct
    {
        const char *path, *directory;
    } table[] = {
        {"/a/b", "/a"}, {"/a", "/"},  {"/", "/"},      {"a", "."},   {"a/b", "a"},
        {"a//b", "a"},  {"//a", "/"}, {"/a/b/", "/a"}, {"./a", "."}, {"a/", "."},
    };
    for (const auto &row : table)
        EXPECT_EQ(directoryOf(row.path), row.directory) << row.path;
}

TEST(DiskFile, MissingDirectoriesAreMade)
{
    const Folder folder;
    const QByteArray path = folder.encodedPath(u"a/b/c"_s);
    EXPECT_TRUE(makeDirectories(path));
    EXPECT_TRUE(makeDirectories(path)) << "they exist";
    EXPECT_TRUE(QDir(folder.path(u"a/b/c"_s)).exists());
    folder.put(u"file"_s, "x");
    EXPECT_FALSE(makeDirectories(folder.encodedPath(u"file"_s)));
    EXPECT_FALSE(makeDirectories(folder.encodedPath(u"file/a"_s)));
}

TEST(DiskFile, ANewFileTakesAfterItsModelAndNeverOverwrites)
{
    const Folder folder;
    folder.put(u"model"_s, "x");
    ASSERT_EQ(::chmod(folder.encodedPath(u"model"_s).constData(), 0640), 0);
    EXPECT_EQ(createDiskFile(folder.encodedPath(u"new"_s), "bytes", folder.encodedPath(u"model"_s)), 0);
    EXPECT_EQ(folder.bytes(u"new"_s), "bytes");
    EXPECT_EQ(modeOf(folder.encodedPath(u"new"_s)), 0640U);
    EXPECT_EQ(createDiskFile(folder.encodedPath(u"new"_s), "other", folder.encodedPath(u"model"_s)), EEXIST);
    EXPECT_EQ(folder.bytes(u"new"_s), "bytes");
    ASSERT_TRUE(QFile::link(u"elsewhere"_s, folder.path(u"link"_s)));
    EXPECT_NE(createDiskFile(folder.encodedPath(u"link"_s), "other", folder.encodedPath(u"model"_s)), 0);
    EXPECT_FALSE(QFile::exists(folder.path(u"elsewhere"_s)));
}

TEST(DiskFile, AFileGrowsWithLineEndsAndNeverShrinks)
{
    const Folder folder;
    folder.put(u"file"_s, "abc");
    const FileDescriptor file = FileDescriptor::open(folder.encodedPath(u"file"_s).constData(), O_RDWR);
    EXPECT_TRUE(growDiskFile(file.get(), 8));
    EXPECT_EQ(folder.bytes(u"file"_s), "abc\n\n\n\n\n");
    EXPECT_TRUE(growDiskFile(file.get(), 2));
    EXPECT_EQ(folder.bytes(u"file"_s).size(), 8);
}

TEST(DiskFile, RenamesAreFragileWhereTheFilesystemCannotBeTold)
{
    const Folder folder;
    EXPECT_TRUE(hasFragileRenames(folder.encodedPath(u"absent"_s)));
}
