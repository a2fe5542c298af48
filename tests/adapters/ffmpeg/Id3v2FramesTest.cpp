// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Id3v2Frames.h"

#include "MediaBytes.h"

#include <gtest/gtest.h>

using marvola::MediaFile;
using marvola::readId3v2;

namespace {

/// The frames of the tag that \a bytes start with, as "id=content".
QByteArrayList framesOf(const QByteArray &bytes)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    const auto tag = readId3v2(file, 0);
    QByteArrayList frames;
    if (!tag)
        return {"no tag"};
    for (const auto &frame : tag->frames)
        frames.append(frame.id + '=' + frame.content);
    return frames;
}

qint64 endOf(const QByteArray &bytes)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    const auto tag = readId3v2(file, 0);
    return tag ? tag->end : -1;
}

const QByteArray Title = QByteArray(1, '\0') + "Title";

} // namespace

TEST(Id3v2Frames, EveryVersionGivesTheFullNames)
{
    EXPECT_EQ(framesOf(id3Tag(2, id3Frame(2, "TT2", Title) + id3Frame(2, "TCR", Title))),
              QByteArrayList({"TIT2=" + Title, "TCOP=" + Title}));
    EXPECT_EQ(framesOf(id3Tag(3, id3Frame(3, "TPE1", Title))), QByteArrayList({"TPE1=" + Title}));
    EXPECT_EQ(framesOf(id3Tag(4, id3Frame(4, "TCON", Title))), QByteArrayList({"TCON=" + Title}));
}

TEST(Id3v2Frames, OnlyTextsOfClipsAreKept)
{
    EXPECT_EQ(framesOf(id3Tag(3, id3Frame(3, "APIC", "picture") + id3Frame(3, "TXXX", "other") +
                                     id3Frame(3, "COMM", "comment"))),
              QByteArrayList({"COMM=comment"}));
}

TEST(Id3v2Frames, WhatIsNoTagGivesNone)
{
    const QByteArray tags[] = {"",
                               "ID3",
                               "ID3\x03",
                               "TAG" + QByteArray(20, '\0'),
                               QByteArray("ID3\xFF\x00\x00\x00\x00\x00\x00", 10),
                               QByteArray("ID3\x03\x00\x00\x80\x00\x00\x00", 10)};
    for (const QByteArray &tag : tags)
        EXPECT_EQ(framesOf(tag), QByteArrayList({"no tag"})) << tag.toHex().constData();
}

TEST(Id3v2Frames, UnknownVersionIsPassedOver)
{
    const QByteArray tag = id3Tag(5, id3Frame(4, "TIT2", Title));
    EXPECT_EQ(framesOf(tag), QByteArrayList());
    EXPECT_EQ(endOf(tag), tag.size());
}

TEST(Id3v2Frames, EndIsBehindPaddingAndFooter)
{
    const QByteArray padded = id3Tag(3, id3Frame(3, "TIT2", Title) + QByteArray(50, '\0'));
    EXPECT_EQ(endOf(padded + mp3Frames(1)), padded.size());
    const QByteArray withFooter = id3Tag(4, id3Frame(4, "TIT2", Title), 0x10) + "3DI1234567";
    EXPECT_EQ(endOf(withFooter + mp3Frames(1)), withFooter.size());
}

TEST(Id3v2Frames, TagThatLiesAboutItsSizeEndsWithItsFrames)
{
    const QByteArray frames = id3Frame(3, "TIT2", Title);
    const QByteArray tag = id3Tag(3, frames, 0, 200'000'000);
    EXPECT_EQ(framesOf(tag + mp3Frames(2)), QByteArrayList({"TIT2=" + Title}));
    EXPECT_EQ(endOf(tag + mp3Frames(2)), tag.size());
}

TEST(Id3v2Frames, CoverArtIsNotRead)
{
    const QByteArray picture(2'000'000, 'x');
    const FileOf source(id3Tag(3, id3Frame(3, "APIC", picture) + id3Frame(3, "TIT2", Title)) + mp3Frames(2));
    MediaFile file(source.path(), AmpleBudget);
    const auto tag = readId3v2(file, 0);
    ASSERT_TRUE(tag);
    ASSERT_EQ(tag->frames.size(), 1);
    EXPECT_EQ(tag->frames.first().content, Title);
    EXPECT_LT(file.bytesRead(), 20'000);
}

TEST(Id3v2Frames, FrameThatLiesAboutItsSizeEndsTheTag)
{
    QByteArray lying = id3Frame(3, "TPE1", Title);
    lying.replace(4, 4, bigEndian(0xFFFFFFFF));
    EXPECT_EQ(framesOf(id3Tag(3, id3Frame(3, "TIT2", Title) + lying)), QByteArrayList({"TIT2=" + Title}));
}

TEST(Id3v2Frames, TextOfAMegabyteIsLeftOutAndTheRestKept)
{
    const QByteArray endless(1'000'000, 'x');
    EXPECT_EQ(framesOf(id3Tag(3, id3Frame(3, "TIT2", endless) + id3Frame(3, "TPE1", Title))),
              QByteArrayList({"TPE1=" + Title}));
}

TEST(Id3v2Frames, ManyLongTextsAreKeptUpToABound)
{
    const QByteArrayList frames = framesOf(id3Tag(3, id3Frame(3, "COMM", QByteArray(60'000, 'x')).repeated(100)));
    EXPECT_EQ(frames.size(), 8);
}

TEST(Id3v2Frames, EndlessEmptyFramesEnd)
{
    const FileOf source(id3Tag(3, id3Frame(3, "APIC", "").repeated(20'000)) + mp3Frames(2));
    MediaFile file(source.path(), AmpleBudget);
    const auto tag = readId3v2(file, 0);
    ASSERT_TRUE(tag);
    EXPECT_EQ(tag->frames.size(), 0);
    EXPECT_LT(file.bytesRead(), 50'000);
}

TEST(Id3v2Frames, ExtendedHeaderIsPassedOver)
{
    const QByteArray three = bigEndian(6) + QByteArray(6, '\0');
    EXPECT_EQ(framesOf(id3Tag(3, three + id3Frame(3, "TIT2", Title), 0x40)), QByteArrayList({"TIT2=" + Title}));
    const QByteArray four = synchsafe(6) + QByteArray("\x01\x00", 2);
    EXPECT_EQ(framesOf(id3Tag(4, four + id3Frame(4, "TIT2", Title), 0x40)), QByteArrayList({"TIT2=" + Title}));
}

TEST(Id3v2Frames, UnsynchronisedTagIsPutRight)
{
    // UTF-16's byte order mark is FF FE; the zero behind FF was put in and is not counted.
    QByteArray frame = id3Frame(3, "TIT2", "\x01\xFF\xFEzz");
    frame.replace("\xFF", QByteArray("\xFF\x00", 2));
    EXPECT_EQ(framesOf(id3Tag(3, frame + id3Frame(3, "TPE1", Title), 0x80)),
              QByteArrayList({"TIT2=\x01\xFF\xFEzz", "TPE1=" + Title}));
}

TEST(Id3v2Frames, UnsynchronisedFrameIsPutRight)
{
    const QByteArray content = synchsafe(5) + QByteArray("\x01\xFF\x00\xFEzz", 6);
    EXPECT_EQ(framesOf(id3Tag(4, id3Frame(4, "TIT2", content, 0x03))), QByteArrayList({"TIT2=\x01\xFF\xFEzz"}));
}

TEST(Id3v2Frames, CompressedAndEncryptedFramesAreLeftOut)
{
    EXPECT_EQ(framesOf(id3Tag(3, id3Frame(3, "TIT2", Title, 0x80) + id3Frame(3, "TPE1", Title, 0x40) +
                                     id3Frame(3, "TALB", Title))),
              QByteArrayList({"TALB=" + Title}));
    EXPECT_EQ(framesOf(id3Tag(4, id3Frame(4, "TIT2", Title, 0x08) + id3Frame(4, "TPE1", Title, 0x04) +
                                     id3Frame(4, "TALB", Title))),
              QByteArrayList({"TALB=" + Title}));
}

TEST(Id3v2Frames, GroupByteIsTakenOff)
{
    EXPECT_EQ(framesOf(id3Tag(3, id3Frame(3, "TIT2", 'g' + Title, 0x20))), QByteArrayList({"TIT2=" + Title}));
    EXPECT_EQ(framesOf(id3Tag(4, id3Frame(4, "TIT2", 'g' + Title, 0x40))), QByteArrayList({"TIT2=" + Title}));
}

TEST(Id3v2Frames, SizesWrittenTheOldWayInVersion4AreUnderstood)
{
    const QByteArray content = QByteArray(1, '\0') + QByteArray(299, 'x');
    QByteArray frame = id3Frame(4, "TIT2", content);
    frame.replace(4, 4, bigEndian(300));
    EXPECT_EQ(framesOf(id3Tag(4, frame + id3Frame(4, "TPE1", Title))),
              QByteArrayList({"TIT2=" + content, "TPE1=" + Title}));
}

TEST(Id3v2Frames, SizesOfVersion4AreSynchsafe)
{
    const QByteArray content = QByteArray(1, '\0') + QByteArray(299, 'x');
    EXPECT_EQ(framesOf(id3Tag(4, id3Frame(4, "TIT2", content) + id3Frame(4, "TPE1", Title))),
              QByteArrayList({"TIT2=" + content, "TPE1=" + Title}));
}

TEST(Id3v2Frames, CutAtEveryByteNeverReadsPastTheEnd)
{
    const QByteArray whole = id3Tag(4, id3Frame(4, "TIT2", Title) + id3Frame(4, "COMM", Title, 0x03), 0x40);
    for (qsizetype size = 0; size <= whole.size(); ++size) {
        const FileOf source(whole.left(size));
        MediaFile file(source.path(), AmpleBudget);
        const auto tag = readId3v2(file, 0);
        EXPECT_EQ(tag.has_value(), size >= 10) << size;
    }
}
