// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Id3Texts.h"

#include "Id3v2Frames.h"
#include "MediaBytes.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <gtest/gtest.h>

using marvola::Id3v2Tag;
using marvola::MediaFile;
using marvola::TextDecoder;

namespace {

const QByteArray Nul(1, '\0');

ClipInfo textsOf(const QList<marvola::Id3v2Frame> &frames)
{
    ClipInfo info;
    marvola::addId3v2Texts(info, Id3v2Tag{frames, 0}, TextDecoder());
    return info;
}

ClipInfo trailingTextsOf(const QByteArray &bytes)
{
    const FileOf source(bytes);
    MediaFile file(source.path(), AmpleBudget);
    ClipInfo info;
    marvola::addTrailingTexts(info, file, TextDecoder());
    return info;
}

QByteArray id3v1(const QByteArray &title, const QByteArray &artist, const QByteArray &comment, quint8 genre)
{
    return "TAG" + title.leftJustified(30, '\0', true) + artist.leftJustified(30, '\0', true) + QByteArray(34, '\0') +
           comment.leftJustified(30, '\0', true) + QByteArray(1, static_cast<char>(genre));
}

QByteArray littleEndian(qsizetype value)
{
    QByteArray bytes = bigEndian(static_cast<quint32>(value));
    std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

QByteArray apeTag(const QByteArrayList &names, const QByteArrayList &values)
{
    QByteArray items;
    for (qsizetype index = 0; index < names.size(); ++index)
        items += littleEndian(values.at(index).size()) + QByteArray(4, '\0') + names.at(index) + Nul + values.at(index);
    return items + "APETAGEX" + littleEndian(2000) + littleEndian(items.size() + 32) + littleEndian(names.size()) +
           QByteArray(12, '\0');
}

} // namespace

TEST(Id3v2Texts, EveryFrameHasItsField)
{
    const ClipInfo info = textsOf({{"TIT2", Nul + "title"},
                                   {"TPE1", Nul + "artist"},
                                   {"TALB", Nul + "album"},
                                   {"TCON", Nul + "genre"},
                                   {"TCOM", Nul + "composer"},
                                   {"TCOP", Nul + "copyright"},
                                   {"COMM", Nul + "eng" + Nul + "comment"}});
    const QStringList texts = {info.title,    info.artist,    info.album,  info.genre,
                               info.composer, info.copyright, info.comment};
    EXPECT_EQ(texts, QStringLiteral("title artist album genre composer copyright comment").split(QChar(u' ')));
}

TEST(Id3v2Texts, Latin1FramesAreDecodedByTheRule)
{
    EXPECT_EQ(textsOf({{"TIT2", Nul + "\xC4\xE3\xBA\xC3"}}).title, QStringLiteral("你好"));
    EXPECT_EQ(textsOf({{"TIT2", Nul + "Bj\xF6rk"}}).title, QStringLiteral("Björk"));
    EXPECT_EQ(textsOf({{"TIT2", Nul + "\xE4\xBD\xA0"}}).title, QStringLiteral("你"));
    EXPECT_EQ(textsOf({{"COMM", Nul + "eng" + Nul + "\xC4\xE3\xBA\xC3"}}).comment, QStringLiteral("你好"));
}

TEST(Id3v2Texts, FramesInAnEncodingThatDoesNotExistAreDecodedByTheSameRule)
{
    for (const char encoding : {'\x04', '\x7F', '\xFC'}) {
        EXPECT_EQ(textsOf({{"TIT2", encoding + QByteArray("\xC4\xE3\xBA\xC3")}}).title, QStringLiteral("你好"));
        EXPECT_EQ(textsOf({{"COMM", encoding + QByteArray("eng\0plain", 9)}}).comment, QStringLiteral("plain"));
    }
}

TEST(Id3v2Texts, UnicodeFramesAreLeftAlone)
{
    // U+00C4 U+00E3: as bytes of a Latin-1 frame they would be a hanzi.
    EXPECT_EQ(textsOf({{"TIT2", QByteArray("\x01\xFF\xFE\xC4\x00\xE3\x00", 7)}}).title, QStringLiteral("Äã"));
    EXPECT_EQ(textsOf({{"TIT2", QByteArray("\x01\xFE\xFF\x00\xC4\x00\xE3", 7)}}).title, QStringLiteral("Äã"));
    EXPECT_EQ(textsOf({{"TIT2", QByteArray("\x02\x00\xC4\x00\xE3", 5)}}).title, QStringLiteral("Äã"));
    EXPECT_EQ(textsOf({{"TIT2", QByteArray("\x03\xC4\xA3")}}).title, QStringLiteral("ģ"));
}

TEST(Id3v2Texts, CharactersBeyondTheFirstPlaneAreWhole)
{
    EXPECT_EQ(textsOf({{"TIT2", QByteArray("\x03\xF0\x9F\x98\x80")}}).title, QStringLiteral("😀"));
    EXPECT_EQ(textsOf({{"TIT2", QByteArray("\x01\xFF\xFE\x3D\xD8\x00\xDE", 7)}}).title, QStringLiteral("😀"));
}

TEST(Id3v2Texts, SeveralValuesAreOneText)
{
    EXPECT_EQ(textsOf({{"TPE1", Nul + "Ann" + Nul + "Bob" + Nul + "Ann"}}).artist, QStringLiteral("Ann;Bob"));
    EXPECT_EQ(textsOf({{"TCON", Nul + "17" + Nul + "Blues" + Nul + "(17)"}}).genre, QStringLiteral("Rock;Blues"));
}

TEST(Id3v2Texts, GenreNumbersAreNames)
{
    EXPECT_EQ(textsOf({{"TCON", Nul + "(13)"}}).genre, QStringLiteral("Pop"));
    EXPECT_EQ(textsOf({{"TCON", Nul + "13"}}).genre, QStringLiteral("Pop"));
    EXPECT_EQ(textsOf({{"TCON", Nul + "(4)Eurodisco"}}).genre, QStringLiteral("Eurodisco"));
    EXPECT_EQ(textsOf({{"TIT2", Nul + "13"}}).title, QStringLiteral("13")) << "titles are no genres";
}

TEST(Id3v2Texts, CommentsWithADescriptionAreNotForPeople)
{
    EXPECT_EQ(textsOf({{"COMM", Nul + "eng" + "iTunNORM" + Nul + "0001"}, {"COMM", Nul + "eng" + Nul + "for people"}})
                  .comment,
              QStringLiteral("for people"));
}

TEST(Id3v2Texts, FirstOfTwoFramesWins)
{
    EXPECT_EQ(textsOf({{"TIT2", Nul + "first"}, {"TIT2", Nul + "second"}}).title, QStringLiteral("first"));
    EXPECT_EQ(textsOf({{"TIT2", Nul}, {"TIT2", Nul + "second"}}).title, QStringLiteral("second"));
}

TEST(Id3v2Texts, DamagedFramesGiveNoTextAndNoHarm)
{
    const QByteArray contents[] = {"\x01", "\x01\xFF", "\x01\xFF\xFE", "\x02z", "\x03\xFF\xFE", "\x09text", Nul};
    for (const QByteArray &content : contents) {
        EXPECT_LE(textsOf({{"TIT2", content}}).title.size(), content.size()) << content.toHex().constData();
        EXPECT_LE(textsOf({{"COMM", content}}).comment.size(), content.size()) << content.toHex().constData();
    }
}

TEST(Id3v1Texts, FieldsAreRead)
{
    const ClipInfo info = trailingTextsOf(mp3Frames(3) + id3v1("title", "artist", "comment", 13));
    EXPECT_EQ(info.title, QStringLiteral("title"));
    EXPECT_EQ(info.artist, QStringLiteral("artist"));
    EXPECT_EQ(info.comment, QStringLiteral("comment"));
    EXPECT_EQ(info.genre, QStringLiteral("Pop"));
}

TEST(Id3v1Texts, TrackNumberIsNotPartOfTheComment)
{
    const QByteArray comment = QByteArray(28, 'c') + QByteArray("\0\x07", 2);
    EXPECT_EQ(trailingTextsOf(id3v1("t", "a", comment, 255)).comment, QString(28, QChar(u'c')));
    EXPECT_EQ(trailingTextsOf(id3v1("t", "a", QByteArray(30, 'c'), 255)).comment, QString(30, QChar(u'c')));
}

TEST(Id3v1Texts, UnknownGenreIsEmpty)
{
    EXPECT_EQ(trailingTextsOf(id3v1("t", "a", "", 255)).genre, QString());
    EXPECT_EQ(trailingTextsOf(id3v1("t", "a", "", 254)).genre, QString());
}

TEST(Id3v1Texts, HanziCutAtTheEndOfAFieldIsLeftOff)
{
    const QByteArray title = '1' + QByteArray("\xC4\xE3").repeated(15);
    EXPECT_EQ(trailingTextsOf(id3v1(title, "", "", 255)).title,
              QStringLiteral("1") + QStringLiteral("你").repeated(14));
}

TEST(Id3v1Texts, FileShorterThanATagHasNone)
{
    EXPECT_EQ(trailingTextsOf("TAGabc").title, QString());
    EXPECT_EQ(trailingTextsOf(id3v1("title", "", "", 0).mid(1)).title, QString());
}

TEST(ApeTexts, FieldsAreReadInAnyCase)
{
    const QByteArray tag = apeTag({"Title", "ARTIST", "album"}, {"\xE4\xBD\xA0", "Ann" + Nul + "Bob", "Album"});
    const ClipInfo info = trailingTextsOf(mp3Frames(3) + tag);
    EXPECT_EQ(info.title, QStringLiteral("你"));
    EXPECT_EQ(info.artist, QStringLiteral("Ann;Bob"));
    EXPECT_EQ(info.album, QStringLiteral("Album"));
}

TEST(ApeTexts, GoBeforeId3v1)
{
    const ClipInfo info = trailingTextsOf(mp3Frames(3) + apeTag({"Title"}, {"ape"}) + id3v1("old", "artist", "", 255));
    EXPECT_EQ(info.title, QStringLiteral("ape"));
    EXPECT_EQ(info.artist, QStringLiteral("artist"));
}

TEST(ApeTexts, TagThatLiesAboutItsSizeIsLeftAlone)
{
    for (const qsizetype size : {0, 31, 100'000, 0x7FFFFFFF}) {
        QByteArray tag = mp3Frames(3) + apeTag({"Title"}, {"ape"});
        tag.replace(tag.size() - 20, 4, littleEndian(size));
        EXPECT_EQ(trailingTextsOf(tag).title, QString()) << size;
    }
}
