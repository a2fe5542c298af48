// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Id3Chunk.h"

#include "MediaBytes.h"

#include <gtest/gtest.h>

using marvola::findId3Chunk;
using marvola::MediaFile;

namespace {

qint64 chunkIn(const QByteArray &bytes, qint64 start = 0)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    return findId3Chunk(file, start).value_or(-1);
}

QByteArray riffSize(quint32 size)
{
    QByteArray bytes = bigEndian(size);
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

} // namespace

TEST(Id3Chunk, IsFoundBehindOthersInEitherByteOrder)
{
    EXPECT_EQ(chunkIn("RIFF1234WAVEdata" + riffSize(4) + "abcdid3 " + riffSize(3) + "ID3"), 32);
    EXPECT_EQ(chunkIn("FORM1234AIFFSSND" + bigEndian(4) + "abcdID3 " + bigEndian(3) + "ID3"), 32);
    EXPECT_EQ(chunkIn("xxRIFF1234WAVEid3 " + riffSize(3) + "ID3", 2), 22);
}

TEST(Id3Chunk, ChunksOfOddLengthArePadded)
{
    EXPECT_EQ(chunkIn("RIFF1234WAVEdata" + riffSize(3) + QByteArray("abc\0", 4) + "id3 " + riffSize(3) + "ID3"), 32);
}

TEST(Id3Chunk, IsNowhereWhereThereIsNone)
{
    EXPECT_EQ(chunkIn("RIFF1234WAVEdata" + riffSize(4) + "abcd"), -1);
    EXPECT_EQ(chunkIn("RIFF1234WAVEdata" + riffSize(0xFFFFFFFF) + "abcd"), -1);
    EXPECT_EQ(chunkIn("RIFF"), -1);
    EXPECT_EQ(chunkIn(""), -1);
}

TEST(Id3Chunk, EmptyChunksWithoutEndEnd)
{
    const FileOf source("RIFF1234WAVE" + ("junk" + riffSize(0)).repeated(100'000) + "id3 " + riffSize(3) + "ID3");
    MediaFile file(source.path(), AmpleBudget);
    EXPECT_FALSE(findId3Chunk(file, 0));
    EXPECT_LT(file.bytesRead(), 50'000);
}
