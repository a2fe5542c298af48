// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MediaBoxes.h"

#include "MediaBytes.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <gtest/gtest.h>

using marvola::MediaBoxes;
using marvola::MediaFile;
using marvola::TextDecoder;

namespace {

QByteArray asset(const QByteArray &type, const QByteArray &text)
{
    return box(type, QByteArray("\0\0\0\0\x55\xC4", 6) + text);
}

QByteArray movie(const QByteArray &userData)
{
    return box("ftyp", "3gp4") + box("mdat", "data") + box("moov", box("mvhd", "head") + box("udta", userData));
}

ClipInfo textsOf(const QByteArray &bytes, ClipInfo info = {})
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    MediaBoxes(file, 0).addTexts(info, TextDecoder());
    return info;
}

} // namespace

TEST(MediaBoxes, EveryAssetHasItsField)
{
    const ClipInfo info = textsOf(movie(asset("titl", QByteArray("title\0", 6)) + asset("perf", "performer") +
                                        asset("auth", "author") + asset("albm", QByteArray("album\0\x03", 7)) +
                                        asset("gnre", "genre") + asset("cprt", "copyright")));
    EXPECT_EQ(info.title, QStringLiteral("title"));
    EXPECT_EQ(info.artist, QStringLiteral("performer"));
    EXPECT_EQ(info.composer, QStringLiteral("author"));
    EXPECT_EQ(info.album, QStringLiteral("album")) << "a track number follows it";
    EXPECT_EQ(info.genre, QStringLiteral("genre"));
    EXPECT_EQ(info.copyright, QStringLiteral("copyright"));
}

TEST(MediaBoxes, AuthorIsTheArtistWhereNoPerformerIsNamed)
{
    EXPECT_EQ(textsOf(movie(asset("auth", "author"))).artist, QStringLiteral("author"));
}

TEST(MediaBoxes, TextsAreUtf8OrUtf16OrWhateverPhonesWrote)
{
    EXPECT_EQ(textsOf(movie(asset("titl", "\xE4\xBD\xA0"))).title, QStringLiteral("你"));
    EXPECT_EQ(textsOf(movie(asset("titl", QByteArray("\xFE\xFF\x4F\x60\x00\x00", 6)))).title, QStringLiteral("你"));
    EXPECT_EQ(textsOf(movie(asset("titl", QByteArray("\xFF\xFE\x60\x4F\x00\x00", 6)))).title, QStringLiteral("你"));
    EXPECT_EQ(textsOf(movie(asset("titl", "\xC4\xE3\xBA\xC3"))).title, QStringLiteral("你好"));
    EXPECT_EQ(textsOf(movie(asset("titl", "\xC4\xA3"))).title, QStringLiteral("ģ")) << "valid UTF-8 is UTF-8 here";
}

TEST(MediaBoxes, TextsThatAreKnownAreKept)
{
    ClipInfo info;
    info.title = QStringLiteral("known");
    EXPECT_EQ(textsOf(movie(asset("titl", "other")), info).title, QStringLiteral("known"));
}

TEST(MediaBoxes, LongSizesAndSizesToTheEndAreUnderstood)
{
    const QByteArray header = box("udta", asset("titl", "title"));
    EXPECT_EQ(textsOf(box("ftyp", "3gp4") + bigEndian(0) + "moov" + header).title, QStringLiteral("title"));
    EXPECT_EQ(
        textsOf(bigEndian(1) + "moov" + bigEndian(0) + bigEndian(static_cast<quint32>(16 + header.size())) + header)
            .title,
        QStringLiteral("title"));
}

TEST(MediaBoxes, BoxesThatDoNotFitGiveNothing)
{
    const QByteArray files[] = {
        "",
        "moov",
        bigEndian(1000) + "moov" + box("udta", asset("titl", "title")),
        bigEndian(7) + "ftypabcd",
        bigEndian(1) + "moov" + QByteArray(8, '\xFF') + box("udta", asset("titl", "title")),
        bigEndian(1) + "moov" + QByteArray(8, '\0') + box("udta", asset("titl", "title")),
        movie(box("titl", "")),
        movie(box("titl", QByteArray("\0\0\0\0\x55\xC4", 6))),
        box("moov", box("udta", bigEndian(100) + "titl" + QByteArray(10, 'x'))),
        box("free", box("moov", box("udta", asset("titl", "inside another")))),
    };
    for (const QByteArray &bytes : files)
        EXPECT_EQ(textsOf(bytes).title, QString()) << bytes.toHex().constData();
}

TEST(MediaBoxes, EmptyBoxesWithoutEndEnd)
{
    const FileOf source(box("free", "").repeated(200'000) + movie(asset("titl", "title")));
    MediaFile file(source.path(), AmpleBudget);
    ClipInfo info;
    MediaBoxes(file, 0).addTexts(info, TextDecoder());
    EXPECT_EQ(info.title, QString());
    EXPECT_LT(file.bytesRead(), 50'000);
}

TEST(MediaBoxes, CompressedHeaderIsNoticed)
{
    const auto isCompressed = [](const QByteArray &bytes) {
        const FileOf source(bytes);
        MediaFile file(source.path(), AmpleBudget);
        return MediaBoxes(file, 0).hasCompressedHeader();
    };
    EXPECT_TRUE(isCompressed(box("moov", box("cmov", "abcdefgh"))));
    EXPECT_FALSE(isCompressed(box("moov", box("mvhd", "abcdefgh"))));
    EXPECT_FALSE(isCompressed(box("cmov", "abcdefgh")));
}
