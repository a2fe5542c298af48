// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ClipTexts.h"

#include <gtest/gtest.h>

using marvola::fillText;
using marvola::genreName;
using marvola::genreText;

TEST(ClipTexts, GenreNumbersHaveNames)
{
    EXPECT_EQ(genreName(0), QStringLiteral("Blues"));
    EXPECT_EQ(genreName(13), QStringLiteral("Pop"));
    EXPECT_EQ(genreName(80), QStringLiteral("Folk"));
    EXPECT_EQ(genreName(255), QString());
    EXPECT_EQ(genreName(-1), QString());
}

TEST(ClipTexts, GenresByNumberBecomeNames)
{
    const struct
    {
        const char *written;
        const char *shown;
    } rows[] = {
        {"Pop", "Pop"},
        {"13", "Pop"},
        {"(13)", "Pop"},
        {"(13)Pop", "Pop"},
        {"(4)Eurodisco", "Eurodisco"},
        {"(4)(9)", "Disco;Metal"},
        {"(4)(9)Eurodisco", "Eurodisco"},
        {"", ""},
        {"999", "999"},
        {"(999)", "(999)"},
        {"(255)", "(255)"},
        {"(-1)", "(-1)"},
        {"(13", "(13"},
        {"()", "()"},
        {"(live)", "(live)"},
        {"2000s", "2000s"},
        {"99999999999999999999", "99999999999999999999"},
    };
    for (const auto &row : rows)
        EXPECT_EQ(genreText(QString::fromLatin1(row.written)), QString::fromLatin1(row.shown)) << row.written;
}

TEST(ClipTexts, FilledFieldKeepsItsText)
{
    QString field = QStringLiteral("first");
    fillText(field, QStringLiteral("second"));
    EXPECT_EQ(field, QStringLiteral("first"));
}

TEST(ClipTexts, TextEndsAtANulAndHasNoBlanksAround)
{
    QString field;
    fillText(field, QStringLiteral("  a  b \0 rest"));
    EXPECT_EQ(field, QStringLiteral("a  b"));
}

TEST(ClipTexts, BlankTextLeavesRoomForTheNextSource)
{
    QString field;
    fillText(field, QStringLiteral("   "));
    fillText(field, QStringLiteral("next"));
    EXPECT_EQ(field, QStringLiteral("next"));
}

TEST(ClipTexts, EndlessTextIsCutBetweenCharacters)
{
    QString field;
    fillText(field, QString(100'000, QChar(u'x')));
    EXPECT_EQ(field.size(), 4096);
    QString pairs;
    fillText(pairs, QStringLiteral("x") + QStringLiteral("😀").repeated(5000));
    EXPECT_EQ(pairs.size(), 4095);
    EXPECT_TRUE(pairs.back().isLowSurrogate());
}
