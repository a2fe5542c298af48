// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Demuxer.h"

#include "MediaBytes.h"
#include "Signature.h"

#include <gtest/gtest.h>

#include <algorithm>

extern "C" {
#include <libavformat/avformat.h>
}

using marvola::Demuxer;
using marvola::MediaFile;
using marvola::ReadBudget;

namespace {

QByteArray sample(const char *name)
{
    return QByteArray(MARVOLA_SAMPLES "/") + name;
}

QByteArray contentOf(const char *name)
{
    MediaFile file(sample(name), AmpleBudget);
    return file.bytes(0, file.size());
}

} // namespace

TEST(Demuxer, ReadsHeadersFromTheFile)
{
    MediaFile file(sample("card/audio/song.m4a"), AmpleBudget);
    Demuxer demuxer(file, 0);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mov")));
    EXPECT_EQ(demuxer.context().nb_streams, 1U);
}

TEST(Demuxer, StartsWhereItIsTold)
{
    const FileOf source("a tag of some length" + mp3Frames(20));
    MediaFile file(source.path(), AmpleBudget);
    Demuxer demuxer(file, 20);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mp3")));
    EXPECT_EQ(demuxer.context().nb_streams, 1U);
    EXPECT_EQ(avio_size(demuxer.context().pb), 20 * 104);
}

TEST(Demuxer, WrongFormatIsNotOpened)
{
    MediaFile file(sample("card/audio/song.m4a"), AmpleBudget);
    EXPECT_FALSE(Demuxer(file, 0).open(av_find_input_format("ogg")));
}

TEST(Demuxer, OpensNothingElse)
{
    MediaFile file(sample("card/audio/song.m4a"), AmpleBudget);
    Demuxer demuxer(file, 0);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mov")));
    AVFormatContext &context = const_cast<AVFormatContext &>(demuxer.context());
    const QByteArray addresses[] = {sample("card/audio/song.ogg"), "file:" + sample("card/audio/song.ogg"),
                                    "http://127.0.0.1:1/", "pipe:0", "data:,abc"};
    for (const QByteArray &address : addresses) {
        AVIOContext *other = nullptr;
        EXPECT_LT(context.io_open(&context, &other, address.constData(), AVIO_FLAG_READ, nullptr), 0)
            << address.constData();
        EXPECT_EQ(other, nullptr);
    }
    EXPECT_STREQ(context.protocol_whitelist, "");
}

TEST(Demuxer, HiddenTypesAreNotSeenEvenWhereReadsMeet)
{
    const QByteArray movie = contentOf("card/video/silent.mp4");
    const qsizetype header = movie.indexOf("moov") - 4;
    ASSERT_GT(header, 0);
    constexpr qsizetype ReadSize = 16 * 1024;
    for (qsizetype place = ReadSize - 5; place <= ReadSize + 1; ++place) {
        const FileOf source(box("free", QByteArray(place - 12, 'x')) + movie.mid(header));
        MediaFile file(source.path(), AmpleBudget);
        ASSERT_EQ(file.bytes(place, 4), "moov");
        EXPECT_TRUE(Demuxer(file, 0).open(av_find_input_format("mov")));
        Demuxer blind(file, 0);
        blind.hide({place}, file.size());
        EXPECT_FALSE(blind.open(av_find_input_format("mov"))) << place;
    }
}

TEST(Demuxer, ListsOfTextsAreReadUnlessTooLong)
{
    const auto titleOf = [](qint64 listSize, qsizetype padding) {
        const QByteArray format = QByteArray::fromHex("10000000010001004F1F00004F1F000001000800");
        const auto little = [](qint64 value) {
            QByteArray bytes = bigEndian(static_cast<quint32>(value));
            std::reverse(bytes.begin(), bytes.end());
            return bytes;
        };
        const FileOf source("RIFF" + little(1'000'000) + "WAVEfmt " + format + "JUNK" + little(padding) +
                            QByteArray(padding, 'x') + "data" + little(4) + "data" + "LIST" + little(listSize) +
                            "INFOINAM" + little(6) + "title\n");
        MediaFile file(source.path(), AmpleBudget);
        Demuxer demuxer(file, 0);
        const bool isOpen = demuxer.open(av_find_input_format("wav"));
        const AVDictionaryEntry *title =
            isOpen ? av_dict_get(demuxer.context().metadata, "title", nullptr, 0) : nullptr;
        return title ? QByteArray(title->value) : QByteArray();
    };
    // The list's start lies across the end of a read once.
    for (qsizetype padding = 16'300; padding <= 16'340; padding += 2) {
        EXPECT_EQ(titleOf(18, padding).left(5), "title") << padding;
        EXPECT_EQ(titleOf(2 * marvola::MiB, padding), "") << padding;
    }
}

TEST(Demuxer, FileEndsWhereItIsTold)
{
    MediaFile file(sample("card/video/silent.mp4"), AmpleBudget);
    Demuxer demuxer(file, 0);
    demuxer.hide({}, contentOf("card/video/silent.mp4").indexOf("moov") - 4);
    EXPECT_FALSE(demuxer.open(av_find_input_format("mov")));
}

TEST(Demuxer, UsedUpBudgetEndsOpening)
{
    MediaFile file(sample("card/audio/song.m4a"), ReadBudget{100, std::chrono::minutes(5)});
    EXPECT_FALSE(Demuxer(file, 0).open(av_find_input_format("mov")));
    MediaFile late(sample("card/audio/song.m4a"), ReadBudget{1'000'000, std::chrono::milliseconds(0)});
    EXPECT_FALSE(Demuxer(late, 0).open(av_find_input_format("mov")));
}

TEST(Demuxer, FindsStreamsThatHeadersDoNotList)
{
    MediaFile file(sample("card/video/clip.mpg"), AmpleBudget);
    Demuxer demuxer(file, 0);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    EXPECT_EQ(demuxer.context().nb_streams, 0U);
    demuxer.findStreams();
    EXPECT_EQ(demuxer.context().nb_streams, 2U);
}

TEST(Demuxer, SearchForStreamsIsBounded)
{
    const FileOf source(contentOf("card/video/sound only.mpg").repeated(1000));
    MediaFile file(source.path(), AmpleBudget);
    ASSERT_GT(file.size(), 4'000'000);
    Demuxer demuxer(file, 0);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    demuxer.findStreams();
    EXPECT_EQ(demuxer.context().nb_streams, 1U) << "no video, however long one looks";
    EXPECT_LT(file.bytesRead(), 2'000'000);
}

TEST(Demuxer, AnalysisIsBounded)
{
    const FileOf source(contentOf("card/video/clip.mpg").repeated(500));
    MediaFile file(source.path(), AmpleBudget);
    ASSERT_GT(file.size(), 6'000'000);
    Demuxer demuxer(file, 0);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    demuxer.analyse();
    EXPECT_LT(file.bytesRead(), 4'000'000);
}

TEST(Demuxer, AnalysisTellsWhatHeadersDoNot)
{
    MediaFile file(sample("phone/music/no tags.mp3"), AmpleBudget);
    Demuxer demuxer(file, 0);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mp3")));
    EXPECT_EQ(demuxer.context().streams[0]->codecpar->sample_rate, 0);
    demuxer.analyse();
    EXPECT_EQ(demuxer.context().streams[0]->codecpar->sample_rate, 44100);
}
