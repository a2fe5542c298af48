// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Demuxer.h"

#include "FileView.h"
#include "MediaBytes.h"

#include <gtest/gtest.h>

extern "C" {
#include <libavformat/avformat.h>
}

using marvola::Demuxer;
using marvola::FileView;
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
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mov")));
    EXPECT_EQ(demuxer.context().nb_streams, 1U);
}

TEST(Demuxer, StartsWhereItIsTold)
{
    const FileOf source("a tag of some length" + mp3Frames(20));
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 20);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mp3")));
    EXPECT_EQ(demuxer.context().nb_streams, 1U);
    EXPECT_EQ(avio_size(demuxer.context().pb), 20 * 104);
}

TEST(Demuxer, WrongFormatIsNotOpened)
{
    MediaFile file(sample("card/audio/song.m4a"), AmpleBudget);
    FileView view(file, 0);
    EXPECT_FALSE(Demuxer(view).open(av_find_input_format("ogg")));
}

TEST(Demuxer, OpensNothingElse)
{
    MediaFile file(sample("card/audio/song.m4a"), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
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

TEST(Demuxer, SeesWhatTheViewShows)
{
    const QByteArray movie = contentOf("card/video/silent.mp4");
    const qsizetype header = movie.indexOf("moov");
    ASSERT_GT(header, 0);
    MediaFile file(sample("card/video/silent.mp4"), AmpleBudget);
    FileView blind(file, 0);
    blind.replace(header, "skip");
    EXPECT_FALSE(Demuxer(blind).open(av_find_input_format("mov")));
    FileView brief(file, 0);
    brief.endAt(header - 4);
    EXPECT_FALSE(Demuxer(brief).open(av_find_input_format("mov")));
}

TEST(Demuxer, FileEndsWhereThingsGrowBeyondMeasure)
{
    // Markers of a WAV file are chapters, and each is compared with all before it.
    const auto fileWith = [](quint32 chapters) {
        const QByteArray format = QByteArray::fromHex("10000000010001004F1F00004F1F000001000800");
        QByteArray cues = littleEndian(chapters);
        for (quint32 number = chapters; number > 0; --number)
            cues += littleEndian(number) + QByteArray(20, '\0');
        return "RIFF" + littleEndian(20'000'000) + "WAVEfmt " + format + "data" + littleEndian(4) + "data" + "cue " +
               littleEndian(static_cast<quint32>(cues.size())) + cues;
    };
    const auto chaptersOf = [&fileWith](quint32 chapters) {
        const FileOf source(fileWith(chapters));
        MediaFile file(source.path(), AmpleBudget);
        FileView view(file, 0);
        Demuxer demuxer(view);
        return demuxer.open(av_find_input_format("wav")) ? static_cast<int>(demuxer.context().nb_chapters) : -1;
    };
    EXPECT_EQ(chaptersOf(1000), 1000);
    EXPECT_EQ(chaptersOf(100'000), -1);
}

TEST(Demuxer, UsedUpBudgetEndsOpening)
{
    MediaFile file(sample("card/audio/song.m4a"), ReadBudget{100, std::chrono::minutes(5)});
    FileView view(file, 0);
    EXPECT_FALSE(Demuxer(view).open(av_find_input_format("mov")));
    MediaFile late(sample("card/audio/song.m4a"), ReadBudget{1'000'000, std::chrono::milliseconds(0)});
    FileView lateView(late, 0);
    EXPECT_FALSE(Demuxer(lateView).open(av_find_input_format("mov")));
}

TEST(Demuxer, FindsStreamsThatHeadersDoNotList)
{
    MediaFile file(sample("card/video/clip.mpg"), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
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
    FileView view(file, 0);
    Demuxer demuxer(view);
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
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    demuxer.findStreams();
    demuxer.analyse();
    EXPECT_LT(file.bytesRead(), 4'000'000);
}

TEST(Demuxer, AnalysisTellsWhatHeadersDoNot)
{
    MediaFile file(sample("phone/music/no tags.mp3"), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mp3")));
    EXPECT_EQ(demuxer.context().streams[0]->codecpar->sample_rate, 0);
    demuxer.analyse();
    EXPECT_EQ(demuxer.context().streams[0]->codecpar->sample_rate, 44100);
}

TEST(Demuxer, SearchForStreamsGoesBackToTheStart)
{
    MediaFile file(sample("card/video/clip.mpg"), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    const int64_t start = avio_tell(demuxer.context().pb);
    demuxer.findStreams();
    EXPECT_EQ(avio_tell(demuxer.context().pb), start);
}

TEST(Demuxer, AnalysisLooksAtOneStreamOfEachKind)
{
    MediaFile file(sample("card/audio/song with cover.m4a"), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mov")));
    ASSERT_EQ(demuxer.context().nb_streams, 2U) << "sound and a cover";
    demuxer.analyse();
    EXPECT_EQ(demuxer.context().streams[0]->codecpar->codec_type, AVMEDIA_TYPE_AUDIO);
    EXPECT_EQ(demuxer.context().streams[1]->codecpar->codec_type, AVMEDIA_TYPE_DATA);
}

TEST(Demuxer, AnalysisFindsNoMoreStreams)
{
    MediaFile file(sample("card/video/clip.mpg"), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    ASSERT_EQ(demuxer.context().nb_streams, 0U);
    demuxer.analyse();
    EXPECT_EQ(demuxer.context().nb_streams, 0U);
}

TEST(Demuxer, AnalysisReadsNoMoreThanItsShareOfAStreamWithoutEnd)
{
    // One frame whose end never comes.
    const QByteArray movie = contentOf("card/video/clip.mpg");
    QByteArray packet = QByteArray::fromHex("000001BA44000400040100000303F8000001E0") +
                        QByteArray("\x07\xF6\x80\0\0", 5) + QByteArray(2035, 'x');
    const FileOf source(movie + packet.repeated(20'000));
    MediaFile file(source.path(), AmpleBudget);
    FileView view(file, 0);
    Demuxer demuxer(view);
    ASSERT_TRUE(demuxer.open(av_find_input_format("mpeg")));
    demuxer.findStreams();
    ASSERT_EQ(demuxer.context().nb_streams, 2U);
    demuxer.analyse();
    EXPECT_LT(file.bytesRead(), 20'000'000);
}
