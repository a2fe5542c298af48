// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FileInspection.h"

#include "MediaBytes.h"
#include "Samples.h"
#include "TextDecoder.h"

#include <gtest/gtest.h>

#include <random>

using marvola::Depth;
using marvola::FileFacts;
using marvola::inspectFile;
using marvola::MediaFile;
using marvola::TextDecoder;

namespace {

const QByteArray Nul(1, '\0');

std::optional<FileFacts> factsOf(const QByteArray &bytes, Depth depth = Depth::Headers)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    return inspectFile(file, depth, TextDecoder());
}

QByteArray titleTag(const QByteArray &title)
{
    return id3Tag(3, id3Frame(3, "TIT2", Nul + title));
}

qint64 bytesReadFor(const QString &name, Depth depth)
{
    MediaFile file(samplePath(name), AmpleBudget);
    EXPECT_TRUE(inspectFile(file, depth, TextDecoder())) << qPrintable(name);
    return file.bytesRead();
}

} // namespace

TEST(FileInspection, LaterOfTwoTagsFillsTheGapsOfTheFirst)
{
    const QByteArray second = id3Tag(3, id3Frame(3, "TIT2", Nul + "second") + id3Frame(3, "TPE1", Nul + "artist"));
    const auto facts = factsOf(titleTag("first") + second + mp3Frames(5));
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->info.title, QStringLiteral("first"));
    EXPECT_EQ(facts->info.artist, QStringLiteral("artist"));
    EXPECT_TRUE(facts->hasAudio);
}

TEST(FileInspection, TagsWithoutEndEnd)
{
    const FileOf source(titleTag("").repeated(100'000) + mp3Frames(5));
    MediaFile file(source.path(), AmpleBudget);
    EXPECT_FALSE(inspectFile(file, Depth::Headers, TextDecoder()));
    EXPECT_LT(file.bytesRead(), 200'000);
}

TEST(FileInspection, FramesBehindJunkAreFound)
{
    const auto facts = factsOf(titleTag("late") + QByteArray(900, '\0') + mp3Frames(50));
    ASSERT_TRUE(facts);
    EXPECT_TRUE(facts->hasAudio);
    EXPECT_EQ(facts->info.title, QStringLiteral("late"));
}

TEST(FileInspection, TagBeforeAnyContainerIsPassedOver)
{
    const auto facts = factsOf(titleTag("the tag's") + sampleBytes(QStringLiteral("card/audio/song.ogg")));
    ASSERT_TRUE(facts);
    EXPECT_TRUE(facts->hasAudio);
    EXPECT_EQ(facts->info.title, QStringLiteral("Grüße")) << "the container's own text goes before the tag's";
}

TEST(FileInspection, TagWithoutMediaIsNoMedia)
{
    EXPECT_FALSE(factsOf(titleTag("alone")));
    EXPECT_FALSE(factsOf(id3Tag(3, id3Frame(3, "TIT2", Nul + "alone"), 0, 0x0FFFFFFF)));
}

TEST(FileInspection, TagInAChunkGoesBeforeTheContainersTexts)
{
    const auto facts = factsOf(sampleBytes(QStringLiteral("card/audio/note with ID3.wav")));
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->info.title, QStringLiteral("鸟鸣"));
}

TEST(FileInspection, CompressedHeaderIsNotUnpacked)
{
    const QByteArray packed = qCompress(QByteArray(64 * marvola::MiB, '\0'));
    const QByteArray compressed =
        box("cmov", box("dcom", "zlib") + box("cmvd", bigEndian(64 * 1024 * 1024) + packed.mid(4)));
    EXPECT_FALSE(factsOf(box("ftyp", "qt  ") + box("moov", compressed)));
}

TEST(FileInspection, DeeplyNestedBoxesAreNoHarm)
{
    QByteArray nested;
    for (int depth = 0; depth < 10'000; ++depth)
        nested = box("trak", nested);
    const auto facts = factsOf(box("ftyp", "isom") + box("moov", nested));
    EXPECT_TRUE(!facts || (!facts->hasAudio && !facts->hasVideo));
}

TEST(FileInspection, ManyStreamsAreNoHarm)
{
    const QByteArray media = box("mdia", box("hdlr", QByteArray(8, '\0') + "soun" + QByteArray(13, '\0')));
    const auto facts = factsOf(box("ftyp", "isom") + box("moov", box("trak", media).repeated(5000)));
    EXPECT_TRUE(!facts || !facts->hasVideo);
}

TEST(FileInspection, HeadersAreAllThatAScanReads)
{
    // Each is far longer than its headers once its media is repeated; what is read must not grow with the media.
    const struct
    {
        const char *name;
        qint64 most;
    } rows[] = {
        {"phone/music/v2.3.mp3", 60'000}, {"card/audio/song.ogg", 250'000},  {"card/audio/song.flac", 60'000},
        {"card/audio/note.amr", 60'000},  {"card/audio/stream.aac", 60'000}, {"card/video/clip.avi", 120'000},
        {"card/video/clip.mkv", 120'000},
    };
    for (const auto &row : rows) {
        const QByteArray bytes = sampleBytes(QString::fromLatin1(row.name));
        const FileOf source(bytes + bytes.right(2000).repeated(4000));
        MediaFile file(source.path(), AmpleBudget);
        ASSERT_TRUE(inspectFile(file, Depth::Headers, TextDecoder())) << row.name;
        EXPECT_LT(file.bytesRead(), row.most) << row.name;
    }
}

TEST(FileInspection, OnlyDepthAnalysesTheUsualContainers)
{
    const char *const names[] = {"phone/music/v2.3.mp3", "card/audio/song.m4a", "card/audio/song.ogg",
                                 "card/audio/song.flac", "card/video/clip.mp4", "card/video/clip.mkv"};
    for (const char *name : names) {
        const QString sample = QString::fromLatin1(name);
        MediaFile shallow(samplePath(sample), AmpleBudget);
        const auto headers = inspectFile(shallow, Depth::Headers, TextDecoder());
        const auto streams = factsOf(sampleBytes(sample), Depth::Streams);
        ASSERT_TRUE(headers && streams) << name;
        EXPECT_EQ(headers->hasAudio, streams->hasAudio) << name;
        EXPECT_EQ(headers->hasVideo, streams->hasVideo) << name;
        EXPECT_EQ(textsOf(headers->info), textsOf(streams->info)) << name;
    }
}

TEST(FileInspection, LargeCoverArtOfAnMp3IsNotRead)
{
    EXPECT_GT(sampleBytes(QStringLiteral("phone/music/v2.4 with a large cover.mp3")).size(), 300'000);
    EXPECT_LT(bytesReadFor(QStringLiteral("phone/music/v2.4 with a large cover.mp3"), Depth::Headers), 60'000);
}

TEST(FileInspection, DepthFillsInWhatHeadersDoNotTell)
{
    const auto shallow = factsOf(sampleBytes(QStringLiteral("card/audio/note.amr")));
    const auto deep = factsOf(sampleBytes(QStringLiteral("card/audio/note.amr")), Depth::Streams);
    ASSERT_TRUE(shallow && deep);
    EXPECT_EQ(shallow->info.durationMs, 0);
    EXPECT_EQ(deep->info.durationMs, 500);
    EXPECT_EQ(deep->info.sampleRate, 8000);
    EXPECT_EQ(deep->info.channels, 1);
}

TEST(FileInspection, NumbersOfAVideo)
{
    const auto facts = factsOf(sampleBytes(QStringLiteral("card/video/clip.mp4")));
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->info.width, 64);
    EXPECT_EQ(facts->info.height, 48);
    EXPECT_EQ(facts->info.sampleRate, 44100);
    EXPECT_NEAR(static_cast<double>(facts->info.durationMs), 500, 40);
    EXPECT_GT(facts->info.bitrate, 10'000);
}

TEST(FileInspection, UsedUpBudgetGivesNothingOrWhatIsKnown)
{
    for (const Sample &sample : allSamples()) {
        for (const qint64 bytes : {0, 1, 100, 4096, 20'000}) {
            MediaFile file(sample.path, {bytes, std::chrono::minutes(5)});
            const auto facts = inspectFile(file, Depth::Streams, TextDecoder());
            EXPECT_LE(file.bytesRead(), bytes) << qPrintable(sample.name);
            EXPECT_TRUE(bytes > 0 || !facts) << qPrintable(sample.name);
        }
        MediaFile late(sample.path, {AmpleBudget.bytes, std::chrono::milliseconds(0)});
        EXPECT_FALSE(inspectFile(late, Depth::Streams, TextDecoder())) << qPrintable(sample.name);
    }
}

TEST(FileInspection, CutFilesAreNoHarm)
{
    for (const Sample &sample : allSamples()) {
        const QByteArray whole = sampleBytes(sample.name).left(20'000);
        const FileOf source(whole);
        for (qsizetype size = whole.size(); size > 0; size = size * 4 / 5) {
            ASSERT_TRUE(source.resize(size));
            MediaFile file(source.path(), AmpleBudget);
            const auto facts = inspectFile(file, Depth::Headers, TextDecoder());
            for (const QString &text : facts ? textsOf(facts->info) : QStringList())
                EXPECT_LE(text.size(), 4096) << qPrintable(sample.name) << " cut to " << size;
        }
    }
}

TEST(FileInspection, FlippedBytesAreNoHarm)
{
    const unsigned int seed = std::random_device()();
    std::mt19937 random(seed);
    for (const Sample &sample : allSamples()) {
        const QByteArray whole = sampleBytes(sample.name).left(100'000);
        for (int round = 0; round < 12 && !whole.isEmpty(); ++round) {
            QByteArray damaged = whole;
            for (int flip = 0; flip < 1 + round * 2; ++flip)
                damaged[static_cast<qsizetype>(random() % std::min<size_t>(static_cast<size_t>(whole.size()), 3000))] =
                    static_cast<char>(random());
            const FileOf source(damaged);
            MediaFile file(source.path(), AmpleBudget);
            const auto facts = inspectFile(file, round % 2 ? Depth::Streams : Depth::Headers, TextDecoder());
            for (const QString &text : facts ? textsOf(facts->info) : QStringList())
                EXPECT_LE(text.size(), 4096) << qPrintable(sample.name) << " seed " << seed;
            EXPECT_LT(file.bytesRead(), 8'000'000) << qPrintable(sample.name) << " seed " << seed;
        }
    }
}
