// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "TextDecoder.h"

#include <QtCore/QByteArray>

#include <gtest/gtest.h>

#include <ostream>

using marvola::TextDecoder;

namespace {

struct Row
{
    const char *name;
    const char *codec;
    QByteArray bytes;
    const char16_t *text;
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << row.name;
}

class TextDecoderGives : public testing::TestWithParam<Row>
{
};

const Row Rows[] = {
    {"Ascii", "GBK", "Plain text", u"Plain text"},
    {"Empty", "GBK", "", u""},
    {"Chinese", "GBK", "\xC4\xE3\xBA\xC3", u"你好"},
    {"ChineseWithAscii", "GBK", "S.H.E \xD6\xD0\xB9\xFA\xBB\xB0", u"S.H.E 中国话"},
    {"ChineseWithSigns", "GBK", "\xA1\xB6\xBA\xF3\xC0\xB4\xA1\xB7", u"《后来》"},
    {"LoneRareHanzi", "GBK", "\xF6\xCE", u"鑫"},
    {"HanziBeyondGb2312", "GBK", "\xD6\xEC\xE9\x46\xBB\xF9", u"朱镕基"},
    {"TraditionalHanzi", "GBK", "\xEF\x4C\xEB\x85", u"風雲"},
    {"ShortChineseThatFormsUtf8", "GBK", "\xC4\xA3", u"模"},
    {"ShortChineseThatFormsUtf8InGb18030", "gb18030", "\xC4\xA3", u"模"},
    {"FourBytesOfGb18030", "GB18030", "\x81\x39\xEE\x39", u"㐀"},
    {"Utf8Chinese", "GBK", "\xE4\xBD\xA0\xE5\xA5\xBD", u"你好"},
    {"Utf8Accent", "GBK", "Beyonc\xC3\xA9", u"Beyoncé"},
    {"Utf8Cyrillic", "GBK", "\xD0\xBD\xD0\xB8\xD0\xBA\xD0\xB0", u"ника"},
    {"LatinInside", "GBK", "Bj\xF6rk", u"Björk"},
    {"LatinInsideInGb18030", "GB18030", "Bj\xF6rk", u"Björk"},
    {"LatinTwoInARow", "GBK", "A\xE7\xE3o", u"Ação"},
    {"LatinCapitals", "GBK", "CORA\xC7\xC3O", u"CORAÇÃO"},
    {"LatinAtTheEnd", "GBK", "Beyonc\xE9", u"Beyoncé"},
    {"LatinBeforeABlank", "GBK", "Caf\xE9 del Mar", u"Café del Mar"},
    {"WindowsApostrophe", "GBK", "Don\x92t", u"Don’t"},
    {"NotOfTheCodec", "GBK", "\xFF\xFF", u"\u00FF\u00FF"},
    {"OnlyOfThePrivateZone", "GBK", "\xAA\xA1", u"\u00AA\u00A1"},
    {"CutOffInTheMiddle", "GBK", "\xC4\xE3\xBA", u"\u00C4\u00E3\u00BA"},
    {"OtherMultiByteCodec", "Big5", "\xA7\x41\xA6\x6E", u"你好"},
    {"OtherSingleByteCodec", "windows-1251", "\xCA\xE8\xED\xEE", u"Кино"},
    {"OtherCodecThatDoesNotFit", "Big5", "Caf\xE9", u"Café"},
    {"OtherCodecLeavesShortUtf8Alone", "windows-1251", "\xC4\xA3", u"ģ"},
    {"Utf8AsTheCodec", "utf8", "\xC4\xE3\xBA\xC3", u"ÄãºÃ"},
    {"UnknownCodec", "no such codec", "\xC4\xE3\xBA\xC3", u"ÄãºÃ"},
    {"UnknownCodecLeavesUtf8", "no such codec", "\xE4\xBD\xA0", u"你"},
    {"UnknownCodecLeavesShortUtf8", "no such codec", "\xC4\xA3", u"ģ"},
};

} // namespace

TEST_P(TextDecoderGives, Text)
{
    const Row &row = GetParam();
    TextDecoder decoder;
    decoder.setCodec(QString::fromLatin1(row.codec));
    EXPECT_EQ(decoder.decode(row.bytes), QStringView(row.text).toString());
}

INSTANTIATE_TEST_SUITE_P(Bytes, TextDecoderGives, testing::ValuesIn(Rows),
                         [](const testing::TestParamInfo<Row> &row) { return std::string(row.param.name); });

TEST(TextDecoder, CodecIsGbkAtTheStart)
{
    const TextDecoder decoder;
    EXPECT_EQ(decoder.codec(), QStringLiteral("GBK"));
    EXPECT_TRUE(decoder.isCodecAvailable());
}

TEST(TextDecoder, TellsWhetherThereIsSuchACodec)
{
    TextDecoder decoder;
    EXPECT_FALSE(decoder.setCodec(QStringLiteral("no such codec")));
    EXPECT_FALSE(decoder.isCodecAvailable());
    EXPECT_EQ(decoder.codec(), QStringLiteral("no such codec"));
    EXPECT_FALSE(decoder.setCodec(QString()));
    EXPECT_FALSE(decoder.isCodecAvailable());
    EXPECT_TRUE(decoder.setCodec(QStringLiteral("Big5")));
    EXPECT_TRUE(decoder.isCodecAvailable());
    EXPECT_EQ(decoder.codec(), QStringLiteral("Big5"));
}

TEST(TextDecoder, CharacterCutThroughAtTheEndOfAFieldIsLeftOff)
{
    const TextDecoder decoder;
    const auto cut = TextDecoder::Ending::MayBeCut;
    EXPECT_EQ(decoder.decode("\xC4\xE3\xBA", cut), QStringLiteral("你"));
    EXPECT_EQ(decoder.decode("\xE4\xBD\xA0\xE5\xA5", cut), QStringLiteral("你"));
    EXPECT_EQ(decoder.decode("\xE4\xBD\xA0\xF0\x9F\x98", cut), QStringLiteral("你"));
    EXPECT_EQ(decoder.decodeUtf8("\xE4\xBD\xA0\xE5\xA5", cut), QStringLiteral("你"));
}

TEST(TextDecoder, LatinLetterAtTheEndOfAFieldStays)
{
    const TextDecoder decoder;
    EXPECT_EQ(decoder.decode("Beyonc\xE9", TextDecoder::Ending::MayBeCut), QStringLiteral("Beyoncé"));
    EXPECT_EQ(decoder.decode("Caf\xE9 Caf\xE9", TextDecoder::Ending::MayBeCut), QStringLiteral("Café Café"));
    EXPECT_EQ(decoder.decode("\xE9", TextDecoder::Ending::MayBeCut), QStringLiteral("é"));
}

TEST(TextDecoder, WholeFieldsAreWholeEvenIfTheyMayBeCut)
{
    const TextDecoder decoder;
    EXPECT_EQ(decoder.decode("\xC4\xE3\xBA\xC3", TextDecoder::Ending::MayBeCut), QStringLiteral("你好"));
}

TEST(TextDecoder, DeclaredUtf8IsNeverGuessedAt)
{
    const TextDecoder decoder;
    EXPECT_EQ(decoder.decodeUtf8("\xC4\xA3"), QStringLiteral("ģ"));
    EXPECT_EQ(decoder.decodeUtf8("plain"), QStringLiteral("plain"));
}

TEST(TextDecoder, DeclaredUtf8ThatIsNoneIsDecodedLikeTheRest)
{
    const TextDecoder decoder;
    EXPECT_EQ(decoder.decodeUtf8("\xC4\xE3\xBA\xC3"), QStringLiteral("你好"));
    EXPECT_EQ(decoder.decodeUtf8("Bj\xF6rk"), QStringLiteral("Björk"));
}
