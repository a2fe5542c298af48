// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MediaFile.h"

#include "MediaBytes.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using marvola::FileIdentity;
using marvola::MediaFile;
using marvola::ReadBudget;

namespace {

QByteArray readAll(MediaFile &file, qint64 offset, qint64 count)
{
    QByteArray bytes(count, '\0');
    const qint64 got = file.read(offset, bytes.data(), count);
    return got < 0 ? QByteArray("failed") : bytes.left(got);
}

} // namespace

TEST(MediaFile, ReadsWhatIsThere)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), AmpleBudget);
    ASSERT_TRUE(file.isOpen());
    EXPECT_EQ(file.size(), 10);
    EXPECT_EQ(readAll(file, 3, 4), "3456");
    EXPECT_EQ(readAll(file, 8, 10), "89");
    EXPECT_EQ(readAll(file, 10, 1), "");
    EXPECT_EQ(readAll(file, 1000, 1), "");
    EXPECT_EQ(readAll(file, -1, 1), "failed");
    EXPECT_EQ(file.bytesRead(), 6);
}

TEST(MediaFile, BytesOfOneBlockAreReadOnce)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), AmpleBudget);
    EXPECT_EQ(file.bytes(0, 2), "01");
    EXPECT_EQ(file.bytes(5, 3), "567");
    EXPECT_EQ(file.bytes(8, 100), "89");
    EXPECT_EQ(file.bytesRead(), 10);
    EXPECT_EQ(file.bytes(10, 1), "");
    EXPECT_EQ(file.bytes(-5, 3), "");
    EXPECT_EQ(file.bytes(2, -1), "");
}

TEST(MediaFile, BytesLongerThanABlockAreWhole)
{
    const QByteArray content = QByteArray("abcdefgh").repeated(5000);
    const FileOf source(content);
    MediaFile file(source.path(), AmpleBudget);
    EXPECT_EQ(file.bytes(3, 20000), content.mid(3, 20000));
    EXPECT_EQ(file.bytes(1, 39999), content.mid(1));
}

TEST(MediaFile, OnlyRegularFilesAreOpened)
{
    const QTemporaryDir folder;
    const QByteArray pipe = folder.filePath(QStringLiteral("pipe.mp3")).toUtf8();
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    EXPECT_FALSE(MediaFile(pipe, AmpleBudget).isOpen()) << "and this did not wait for a writer";

    const QByteArray socketPath = folder.filePath(QStringLiteral("socket.mp3")).toUtf8();
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(static_cast<size_t>(socketPath.size()), sizeof address.sun_path);
    std::copy(socketPath.begin(), socketPath.end(), address.sun_path);
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(descriptor, reinterpret_cast<const sockaddr *>(&address), sizeof address), 0);
    EXPECT_FALSE(MediaFile(socketPath, AmpleBudget).isOpen());
    ::close(descriptor);

    EXPECT_FALSE(MediaFile(folder.path().toUtf8(), AmpleBudget).isOpen());
    EXPECT_FALSE(MediaFile("/dev/zero", AmpleBudget).isOpen());
    EXPECT_FALSE(MediaFile("/no/such/file.mp3", AmpleBudget).isOpen());
    EXPECT_FALSE(MediaFile("", AmpleBudget).isOpen());
}

TEST(MediaFile, PathWithANulIsNotThePathBeforeIt)
{
    const FileOf source("0123456789");
    EXPECT_FALSE(MediaFile(source.path() + '\0' + "x", AmpleBudget).isOpen());
    EXPECT_FALSE(FileIdentity::of(source.path() + '\0' + "x"));
}

TEST(MediaFile, ClosedFileReadsNothing)
{
    MediaFile file("/no/such/file.mp3", AmpleBudget);
    EXPECT_EQ(readAll(file, 0, 1), "failed");
    EXPECT_EQ(file.bytes(0, 1), "");
}

TEST(MediaFile, LinksLeadToTheirFile)
{
    const FileOf source("0123456789");
    const QByteArray link = source.path() + ".link";
    ASSERT_EQ(::symlink(source.path().constData(), link.constData()), 0);
    MediaFile file(link, AmpleBudget);
    EXPECT_EQ(file.bytes(0, 3), "012");
}

TEST(MediaFile, BudgetOfBytesEndsReading)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), ReadBudget{4, std::chrono::minutes(5)});
    EXPECT_EQ(readAll(file, 0, 3), "012");
    EXPECT_FALSE(file.isExhausted());
    EXPECT_EQ(readAll(file, 3, 3), "3");
    EXPECT_TRUE(file.isExhausted());
    EXPECT_EQ(readAll(file, 0, 1), "failed");
    EXPECT_EQ(readAll(file, 10, 1), "") << "the end is the end all the same";
    EXPECT_EQ(file.bytesRead(), 4);
}

TEST(MediaFile, BytesWithinABudgetTooSmallAreWhatItAllows)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), ReadBudget{4, std::chrono::minutes(5)});
    EXPECT_EQ(file.bytes(0, 8), "0123");
}

TEST(MediaFile, BudgetOfTimeEndsReading)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), ReadBudget{1000, std::chrono::milliseconds(0)});
    EXPECT_TRUE(file.isExhausted());
    EXPECT_EQ(readAll(file, 0, 1), "failed");
}

TEST(MediaFile, WhatIsAppendedLaterIsNotSeen)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), AmpleBudget);
    ASSERT_TRUE(source.append("abc"));
    EXPECT_EQ(file.size(), 10);
    EXPECT_EQ(readAll(file, 8, 10), "89");
}

TEST(MediaFile, FileThatShrinksEndsEarly)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), AmpleBudget);
    ASSERT_TRUE(source.resize(4));
    EXPECT_EQ(readAll(file, 2, 8), "23");
    EXPECT_EQ(readAll(file, 6, 2), "");
    EXPECT_EQ(file.bytes(0, 10), "0123");
}

TEST(FileIdentity, TellsChangedFilesFromUnchangedOnes)
{
    const FileOf source("0123456789");
    const auto before = FileIdentity::of(source.path());
    ASSERT_TRUE(before);
    EXPECT_TRUE(*before == *FileIdentity::of(source.path()));
    EXPECT_TRUE(*before == MediaFile(source.path(), AmpleBudget).identity());
    ASSERT_TRUE(source.append("a"));
    EXPECT_FALSE(*before == *FileIdentity::of(source.path()));
    ASSERT_TRUE(source.remove());
    EXPECT_FALSE(FileIdentity::of(source.path()));
}

TEST(FileIdentity, EveryPartCounts)
{
    const FileIdentity base = {1, 2, 3, {4, 5}, {6, 7}};
    const FileIdentity others[] = {{9, 2, 3, {4, 5}, {6, 7}}, {1, 9, 3, {4, 5}, {6, 7}}, {1, 2, 9, {4, 5}, {6, 7}},
                                   {1, 2, 3, {9, 5}, {6, 7}}, {1, 2, 3, {4, 9}, {6, 7}}, {1, 2, 3, {4, 5}, {9, 7}},
                                   {1, 2, 3, {4, 5}, {6, 9}}};
    EXPECT_TRUE(base == base);
    for (const FileIdentity &other : others)
        EXPECT_FALSE(base == other);
}

TEST(MediaFile, WhatDependedOnTheMomentIsKnown)
{
    const FileOf source("0123456789");
    MediaFile file(source.path(), AmpleBudget);
    readAll(file, 0, 100);
    readAll(file, -1, 1);
    EXPECT_FALSE(file.isDisturbed());
    EXPECT_EQ(file.read(0, nullptr, 1), -1) << "a read that the system refuses";
    EXPECT_TRUE(file.isDisturbed());

    const MediaFile late(source.path(), {AmpleBudget.bytes, std::chrono::milliseconds(0)});
    EXPECT_TRUE(late.isDisturbed());
    MediaFile poor(source.path(), {1, AmpleBudget.time});
    readAll(poor, 0, 1);
    EXPECT_EQ(readAll(poor, 1, 1), "failed");
    EXPECT_FALSE(poor.isDisturbed()) << "the same bytes would be too many at any time";
}
