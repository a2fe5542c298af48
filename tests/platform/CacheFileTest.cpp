// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/CacheFile.h"

#include "Folder.h"

#include "platform/DirectoryLock.h"
#include "support/OnMedium.h"

#include <gtest/gtest.h>

#include <future>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using marvola::CacheFile;

namespace {

const QByteArray content("\0answers\xff", 9);
const QString name = u"cache"_s;

/// A file with \a content, as it stands on disk.
QByteArray writtenBytes()
{
    const Folder folder;
    EXPECT_TRUE(CacheFile(folder.path(name)).write(content));
    return folder.bytes(name);
}

QByteArray readOf(const QByteArray &bytes)
{
    const Folder folder;
    folder.put(name, bytes);
    return CacheFile(folder.path(name)).read();
}

/// Whether \a bytes are replaced by a new cache.
bool isReplaced(const QByteArray &bytes)
{
    const Folder folder;
    folder.put(name, bytes);
    const CacheFile file(folder.path(name));
    const bool written = file.write(content);
    EXPECT_EQ(written ? file.read() : folder.bytes(name), written ? content : bytes);
    return written;
}

} // namespace

TEST(CacheFile, GivesWhatWasWrittenAndLeavesNothingElse)
{
    const Folder folder;
    const CacheFile file(folder.path(name));
    EXPECT_EQ(file.read(), QByteArray());
    EXPECT_TRUE(file.write(content));
    EXPECT_EQ(file.read(), content);
    EXPECT_TRUE(file.write("x"));
    EXPECT_EQ(file.read(), QByteArray("x"));
    EXPECT_TRUE(file.write({}));
    EXPECT_EQ(file.read(), QByteArray());
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(CacheFile, StandsAsTheFormatSays)
{
    EXPECT_EQ(writtenBytes().toHex(), QByteArray("Marvola answers\n").toHex() + "00000001" // version
                                          + "9518be34"                                     // check
                                          + "0000000000000009" + content.toHex());
}

TEST(CacheFile, EveryCutReadsAsNothing)
{
    const QByteArray bytes = writtenBytes();
    for (qsizetype size = 0; size < bytes.size(); ++size)
        EXPECT_EQ(readOf(bytes.first(size)), QByteArray()) << size;
    EXPECT_EQ(readOf(bytes + "x"), QByteArray()) << "longer than it says";
    EXPECT_EQ(readOf(bytes), content);
}

TEST(CacheFile, EveryChangedBitReadsAsNothing)
{
    const QByteArray bytes = writtenBytes();
    for (qsizetype bit = 0; bit < bytes.size() * 8; ++bit) {
        QByteArray changed = bytes;
        changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << (bit % 8)));
        EXPECT_EQ(readOf(changed), QByteArray()) << bit;
    }
}

TEST(CacheFile, ReplacesWhatIsDamagedOrBlank)
{
    const QByteArray bytes = writtenBytes();
    EXPECT_TRUE(isReplaced(bytes.chopped(1)));
    EXPECT_TRUE(isReplaced(bytes.first(CacheFile::Mark.size())));
    EXPECT_TRUE(isReplaced({}));
    EXPECT_TRUE(isReplaced(QByteArray(100, '\0'))) << "what a power cut may leave";
}

TEST(CacheFile, LeavesFilesOfOthersAlone)
{
    EXPECT_FALSE(isReplaced("My diary\n"));
    EXPECT_FALSE(isReplaced("Marvola answer"));
    EXPECT_FALSE(isReplaced(QByteArray(99, '\0') + "x"));
}

TEST(CacheFile, NeitherReadsNorReplacesLinksPipesAndFolders)
{
    const Folder folder;
    folder.put(u"target"_s, writtenBytes());
    ASSERT_EQ(::symlink("target", folder.encodedPath(u"link"_s).constData()), 0);
    ASSERT_EQ(::mkfifo(folder.encodedPath(u"pipe"_s).constData(), 0600), 0);
    ASSERT_TRUE(QDir(folder.path({})).mkdir(u"folder"_s));
    const QStringList names = folder.names();
    for (const QString &other : {u"link"_s, u"pipe"_s, u"folder"_s}) {
        const CacheFile file(folder.path(other));
        EXPECT_EQ(file.read(), QByteArray()) << qPrintable(other);
        EXPECT_FALSE(file.write("new")) << qPrintable(other);
    }
    EXPECT_EQ(folder.names(), names);
    EXPECT_EQ(CacheFile(folder.path(u"target"_s)).read(), content);
    struct stat status = {};
    ASSERT_EQ(::lstat(folder.encodedPath(u"pipe"_s).constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode));
}

TEST(CacheFile, WhereThereIsNoFolderOrNoNameThereIsNoFile)
{
    const Folder folder;
    for (const QString &path : {QString(), folder.path(u"missing/cache"_s), folder.path(u"a\0b"_s)}) {
        EXPECT_FALSE(CacheFile(path).write(content)) << qPrintable(path);
        EXPECT_EQ(CacheFile(path).read(), QByteArray()) << qPrintable(path);
    }
    EXPECT_EQ(folder.names(), QStringList());
}

TEST(CacheFile, TooMuchIsNotWritten)
{
    const Folder folder;
    const CacheFile file(folder.path(name));
    EXPECT_FALSE(file.write(QByteArray(CacheFile::MaxSize - CacheFile::HeaderSize + 1, 'x')));
    EXPECT_TRUE(file.write(QByteArray(CacheFile::MaxSize - CacheFile::HeaderSize, 'x')));
    EXPECT_EQ(file.read().size(), CacheFile::MaxSize - CacheFile::HeaderSize) << "what is written can be read";
}

TEST(CacheFile, WhatADeadProcessLeftIsNoObstacle)
{
    const Folder folder;
    folder.put(name + u".new"_s, "half");
    EXPECT_TRUE(CacheFile(folder.path(name)).write(content));
    EXPECT_EQ(folder.names(), QStringList(name));
}

TEST(CacheFile, StaysAsItWasOnAFullMedium)
{
    const Folder folder;
    EXPECT_TRUE(holdsOnMedium(folder.path({}), "size=64k", [&folder] {
        const CacheFile file(folder.path(name));
        return file.write(content) && !file.write(QByteArray(100'000, 'x')) && file.read() == content &&
               folder.names() == QStringList(name) && file.write("small");
    }));
}

TEST(CacheFile, WritesNothingWhileAnotherWrites)
{
    const Folder folder;
    const CacheFile file(folder.path(name));
    ASSERT_TRUE(file.write("theirs"));
    {
        using marvola::DirectoryLock;
        const DirectoryLock lock(folder.encodedPath({}), DirectoryLock::Patience::DoNotWait);
        ASSERT_TRUE(lock.isHeld());
        EXPECT_FALSE(std::async(std::launch::async, [&file] { return file.write("ours"); }).get());
        EXPECT_EQ(file.read(), QByteArray("theirs")) << "but reading needs no lock";
    }
    EXPECT_TRUE(file.write("ours"));
    EXPECT_EQ(file.read(), QByteArray("ours"));
}
