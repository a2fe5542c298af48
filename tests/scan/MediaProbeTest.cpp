// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaProbe.h"

#include "support/TableEngine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::MediaDescription;
using marvola::MediaProbe;

namespace {

const QString unknown = u"<Unknown>"_s;

MediaDescription described(const TableEngine::Answer &answer)
{
    TableEngine engine;
    engine.other = answer;
    return MediaProbe(&engine, unknown).describe(u"/x.mp3"_s);
}

QString artistOf(const QString &artist)
{
    return described(TableEngine::audio(artist, u"l"_s, u"g"_s)).artist;
}

TableEngine::Answer ofKind(UINT8 audio, UINT8 video, bool known = true)
{
    TableEngine::Answer answer;
    answer.hasAudio = audio;
    answer.hasVideo = video;
    answer.kindKnown = known;
    return answer;
}

} // namespace

TEST(MediaProbe, VideoWinsOverAudio)
{
    EXPECT_EQ(described(ofKind(0, 0)).type, MP_MEDIA_FILE_TYPE_UNKNOWN);
    EXPECT_EQ(described(ofKind(1, 0)).type, MP_MEDIA_FILE_TYPE_AUDIO);
    EXPECT_EQ(described(ofKind(0, 1)).type, MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(described(ofKind(1, 1)).type, MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(described(ofKind(0xff, 0)).type, MP_MEDIA_FILE_TYPE_AUDIO);
}

TEST(MediaProbe, KindOfAFileThatCannotBeReadIsUnknown)
{
    EXPECT_EQ(described(ofKind(1, 1, false)).type, MP_MEDIA_FILE_TYPE_UNKNOWN);
}

TEST(MediaProbe, BlanksAreSimplified)
{
    EXPECT_EQ(artistOf(u"  The   Band  "_s), u"The Band"_s);
    EXPECT_EQ(artistOf(u"The\t\n\r Band\u00a0\u3000"_s), u"The Band"_s);
}

TEST(MediaProbe, NothingOrOnlyBlanksIsUnknown)
{
    EXPECT_EQ(artistOf(QString()), unknown);
    EXPECT_EQ(artistOf(u""_s), unknown);
    EXPECT_EQ(artistOf(u" \t "_s), unknown);
}

TEST(MediaProbe, TwentyCharactersStayAndTwentyOneAreCut)
{
    EXPECT_EQ(artistOf(u"12345678901234567890"_s), u"12345678901234567890"_s);
    EXPECT_EQ(artistOf(u"123456789012345678901"_s), u"12345678901234567890"_s);
    EXPECT_EQ(artistOf(u"1234567890  123456789 1"_s), u"1234567890 123456789"_s) << "simplified before it is cut";
    EXPECT_EQ(artistOf(u"1234567890123456789 x"_s), u"1234567890123456789 "_s) << "but not after";
}

TEST(MediaProbe, CutMayKeepHalfOfASurrogatePair)
{
    const QString cut = artistOf(u"1234567890123456789\U0001f3b5"_s);
    EXPECT_EQ(cut.size(), 20);
    EXPECT_EQ(cut.back().unicode(), 0xd83c);
}

TEST(MediaProbe, LongUnknownTextStaysWhole)
{
    TableEngine engine;
    const QString longText = u"<12345678901234567890>"_s;
    EXPECT_EQ(MediaProbe(&engine, longText).describe(u"/x"_s).artist, longText);
}

TEST(MediaProbe, ArtistAlbumAndGenreAreTheirOwnFields)
{
    TableEngine::Answer answer;
    answer.info = {u"t"_s, u"a"_s, u"l"_s, u"g"_s, u"c"_s, u"r"_s, 1, 2, 3, 4, 5, 6, u"x"_s};
    const MediaDescription description = described(answer);
    EXPECT_EQ(description.artist, u"a"_s);
    EXPECT_EQ(description.album, u"l"_s);
    EXPECT_EQ(description.genre, u"g"_s);
}

TEST(MediaProbe, TextsOfAFileThatCannotBeReadAreUnknown)
{
    TableEngine::Answer answer = TableEngine::audio(u"a"_s, u"l"_s, u"g"_s);
    answer.infoKnown = false;
    const MediaDescription description = described(answer);
    EXPECT_EQ(description.artist, unknown);
    EXPECT_EQ(description.album, unknown);
    EXPECT_EQ(description.genre, unknown);
    EXPECT_EQ(description.type, MP_MEDIA_FILE_TYPE_AUDIO) << "the kind was told";
}

TEST(MediaProbe, PathsAreAlwaysUtf8)
{
    TableEngine engine;
    QStringList paths;
    engine.hook = [&paths](const QString &call) { paths.append(call); };
    MediaProbe(&engine, unknown).describe(u"/音乐.mp3"_s);
    EXPECT_EQ(paths.mid(2), QStringList({u"kind 音乐.mp3"_s, u"info 音乐.mp3"_s}));
}

TEST(MediaProbe, SettingsAreZeroDuringAScanAndAsBeforeAfterwards)
{
    TableEngine engine;
    MediaProbe probe(&engine, unknown);
    EXPECT_EQ(engine.settingA, 0);
    EXPECT_EQ(engine.settingB, 0);
    probe.end();
    EXPECT_EQ(engine.settingA, 7);
    EXPECT_EQ(engine.settingB, 9);
    EXPECT_EQ(engine.calls(), QStringList({u"A 0"_s, u"B 0"_s, u"A 7"_s, u"B 9"_s, u"finish"_s}));
}

TEST(MediaProbe, WithoutAnEngineNothingCanBeRead)
{
    MediaProbe probe(nullptr, unknown);
    const MediaDescription description = probe.describe(u"/x.mp3"_s);
    EXPECT_EQ(description.type, MP_MEDIA_FILE_TYPE_UNKNOWN);
    EXPECT_EQ(description.artist, unknown);
    probe.end();
}
