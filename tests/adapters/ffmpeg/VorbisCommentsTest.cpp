// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "VorbisComments.h"

#include "CommentBytes.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <gtest/gtest.h>

using marvola::VorbisComments;

namespace {

VorbisComments listOf(const QByteArray &bytes)
{
    return {[&bytes](qint64 at, qint64 count) { return bytes.mid(at, count); }, bytes.size()};
}

ClipInfo textsIn(const QByteArray &bytes)
{
    ClipInfo info;
    listOf(bytes).addTexts(info, marvola::TextDecoder());
    return info;
}

} // namespace

TEST(VorbisComments, TextsAreFoundByName)
{
    const ClipInfo info = textsIn(commentList(
        {"title=A", "Artist=B", "ALBUM=C", "genre=17", "composer=E", "copyright=F", "comment=G", "encoder=H"}));
    EXPECT_EQ(info.title, QStringLiteral("A"));
    EXPECT_EQ(info.artist, QStringLiteral("B"));
    EXPECT_EQ(info.album, QStringLiteral("C"));
    EXPECT_EQ(info.genre, QStringLiteral("Rock"));
    EXPECT_EQ(info.composer, QStringLiteral("E"));
    EXPECT_EQ(info.copyright, QStringLiteral("F"));
    EXPECT_EQ(info.comment, QStringLiteral("G"));
}

TEST(VorbisComments, SeveralValuesAreOneText)
{
    EXPECT_EQ(textsIn(commentList({"artist=A", "title=T", "ARTIST=B"})).artist, QStringLiteral("A;B"));
    EXPECT_EQ(textsIn(commentList({"author=A"})).artist, QStringLiteral("A"));
    EXPECT_EQ(textsIn(commentList({"description=A"})).comment, QStringLiteral("A"));
}

TEST(VorbisComments, WhatIsThereIsKept)
{
    ClipInfo info;
    info.title = QStringLiteral("mine");
    listOf(commentList({"title=theirs", "album=theirs"})).addTexts(info, marvola::TextDecoder());
    EXPECT_EQ(info.title, QStringLiteral("mine"));
    EXPECT_EQ(info.album, QStringLiteral("theirs"));
}

TEST(VorbisComments, PlaceOfTheNumberIsAfterTheProgram)
{
    EXPECT_EQ(listOf(commentList({"a=b"})).countOffset(), 4 + 7);
    EXPECT_EQ(listOf(littleEndian(100) + "short").countOffset(), -1);
    EXPECT_EQ(listOf(littleEndian(0xFFFFFFFF) + QByteArray(100, 'x')).countOffset(), -1);
    EXPECT_EQ(listOf("abc").countOffset(), -1);
    EXPECT_EQ(listOf("").countOffset(), -1);
}

TEST(VorbisComments, ModestListsHaveAThousandComments)
{
    const auto many = [](int count) { return commentList(QByteArrayList(count, "a=b")); };
    EXPECT_TRUE(listOf(many(0)).isModest());
    EXPECT_TRUE(listOf(many(1000)).isModest());
    EXPECT_EQ(listOf(many(1000)).count(), 1000);
    EXPECT_FALSE(listOf(many(1001)).isModest());
    EXPECT_EQ(listOf(many(100'000)).count(), 1001) << "the rest is not counted";
}

TEST(VorbisComments, ModestListsHaveAQuarterOfAMebibyte)
{
    const QByteArray empty = commentList({"a="});
    EXPECT_TRUE(listOf(commentList({"a=" + QByteArray(256 * 1024 - empty.size(), 'x')})).isModest());
    EXPECT_FALSE(listOf(commentList({"a=" + QByteArray(256 * 1024 - empty.size() + 1, 'x')})).isModest());
}

TEST(VorbisComments, TextsBehindALargePictureAreFound)
{
    const QByteArray picture = "METADATA_BLOCK_PICTURE=" + QByteArray(5'000'000, 'A');
    const QByteArray list = commentList({picture, "title=Behind"});
    qint64 most = 0;
    const VorbisComments comments(
        [&](qint64 at, qint64 count) {
            most = std::max(most, count);
            return list.mid(at, count);
        },
        list.size());
    ClipInfo info;
    comments.addTexts(info, marvola::TextDecoder());
    EXPECT_EQ(info.title, QStringLiteral("Behind"));
    EXPECT_LE(most, 16 * 1024) << "and it is not read itself";
}

TEST(VorbisComments, LyingNumbersAreNoHarm)
{
    EXPECT_EQ(textsIn(littleEndian(0) + littleEndian(0xFFFFFFFF) + littleEndian(7) + "title=A").title,
              QStringLiteral("A"));
    EXPECT_EQ(textsIn(littleEndian(0) + littleEndian(1) + littleEndian(0xFFFFFFFF) + "title=A").title, QString());
    EXPECT_EQ(textsIn(littleEndian(0) + littleEndian(1) + littleEndian(8) + "title=A").title, QString());
    EXPECT_EQ(textsIn(commentList({"title", "=x", "", "title=A"})).title, QStringLiteral("A"));
}

TEST(VorbisComments, TextsAreNotEndless)
{
    EXPECT_EQ(textsIn(commentList({"title=" + QByteArray(100'000, 'x')})).title.size(), 4096);
    EXPECT_LE(textsIn(commentList(QByteArrayList(900, "title=xxxxxxxxxx"))).title.size(), 4096);
}
