// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Text.h"

#include <gtest/gtest.h>

#include <clocale>

using namespace Qt::StringLiterals;
using marvola::displayWidth;
using marvola::padded;
using marvola::printable;
using marvola::wellFormed;

namespace {

const QString HighHalf = QString(QChar(0xd83d));
const QString LowHalf = QString(QChar(0xde00));

struct Row
{
    const char *name;
    QString text;
    QString printed;
};

class PrintableText : public testing::TestWithParam<Row>
{
};

} // namespace

TEST_P(PrintableText, IsAsExpected)
{
    EXPECT_EQ(printable(GetParam().text), GetParam().printed);
}

TEST_P(PrintableText, StaysWhenPrintedAgain)
{
    EXPECT_EQ(printable(printable(GetParam().text)), GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    Table, PrintableText,
    testing::Values(Row{"Empty", u""_s, u""_s}, Row{"Plain", u"Ada's \"Song\""_s, u"Ada's \"Song\""_s},
                    Row{"Chinese", u"手机"_s, u"手机"_s}, Row{"Emoji", u"\U0001f600"_s, u"\U0001f600"_s},
                    Row{"JoinedEmoji", u"\U0001f468\u200d\U0001f469"_s, u"\U0001f468\u200d\U0001f469"_s},
                    Row{"Escape", u"\x1b[31m"_s, u"\\x1b[31m"_s}, Row{"LineBreak", u"a\nb\r"_s, u"a\\nb\\r"_s},
                    Row{"Tab", u"a\tb"_s, u"a\\tb"_s}, Row{"Nul", QString(1, QChar(0)), u"\\x00"_s},
                    Row{"Delete", u"\x7f"_s, u"\\x7f"_s},
                    Row{"EightBitControl", QString(QChar(0x9b)) + u"2J"_s, u"\\x9b2J"_s},
                    Row{"Direction", u"\u202egpj"_s, u"\\u202egpj"_s}, Row{"LineSeparator", u"\u2028"_s, u"\\u2028"_s},
                    Row{"HighHalf", HighHalf + u"x"_s, u"\\ud83dx"_s}, Row{"LowHalf", LowHalf, u"\\ude00"_s},
                    Row{"HalvesSwapped", LowHalf + HighHalf, u"\\ude00\\ud83d"_s},
                    Row{"TagCharacter", u"\U000e0041"_s, u"\\U000e0041"_s}),
    [](const auto &row) { return row.param.name; });

TEST(WellFormedText, HalvesOfPairsAreReplacedAndPairsStay)
{
    const QString pair = HighHalf + LowHalf;
    EXPECT_EQ(wellFormed(u"a"_s + HighHalf), u"a\ufffd"_s);
    EXPECT_EQ(wellFormed(LowHalf + pair + HighHalf), u"\ufffd"_s + pair + u"\ufffd"_s);
    EXPECT_EQ(wellFormed(pair), pair);
}

TEST(DisplayWidth, WideCharactersCountInALocaleThatIsNotUtf8)
{
    ASSERT_NE(std::setlocale(LC_CTYPE, "C"), nullptr);
    marvola::useWideCharacters();
    EXPECT_EQ(displayWidth(u"手机"_s), 4);
}

TEST(DisplayWidth, WideCharactersTakeTwoColumns)
{
    ASSERT_NE(std::setlocale(LC_CTYPE, "C.UTF-8"), nullptr);
    EXPECT_EQ(displayWidth(u"abc"_s), 3);
    EXPECT_EQ(displayWidth(u"手机"_s), 4);
    EXPECT_EQ(padded(u"手机"_s, 6), u"手机  "_s);
    EXPECT_EQ(padded(u"abcdef"_s, 3), u"abcdef"_s);
}
