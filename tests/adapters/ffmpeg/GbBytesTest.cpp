// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "GbBytes.h"

#include <QtCore/QByteArray>

#include <gtest/gtest.h>

using marvola::isGbInUtf8;
using marvola::isLatinInGb;

TEST(GbBytes, WesternWordsAreLatin)
{
    const char *const words[] = {
        "Bj\xF6rk",
        "Mot\xF6rhead",
        "na\xEFve",
        "M\xF6tley Cr\xFC\x65",
        "BJ\xD6RK",
        "A\xE7\xE3o",
        "CORA\xC7\xC3O",
        "Gr\xF6\xDF\x65",
        "STRA\xDF\x45",
        "\xC9\x64ith Piaf",
        "El Ni\xF1o 2004",
        "Don\x92t",
        ("O\x92"
         "Brien"),
        "L\x92\x45t\xE9 indien",
    };
    for (const char *word : words)
        EXPECT_TRUE(isLatinInGb(QByteArray(word))) << word;
}

TEST(GbBytes, HanziAreNotLatin)
{
    const char *const texts[] = {
        "\xF6\xCE",                 // one hanzi of the second level
        "\xC4\xE3\xBA\xC3",         // everyday hanzi
        "DJ\xC4\xE3\xBA\xC3",       // next to letters
        "A\xBC\xC6\xBB\xAE",        // "A" and a word
        "\xD6\xEC\xE9\x46\xBB\xF9", // a hanzi whose second byte is a letter
        "\xEF\x4C",                 // a traditional one alone
        "\xEF\x77\xF4\x7E",         // two, all of whose letters are second bytes
        "K\xB8\xE8",                // a letter and one hanzi
        "S.H.E \xE5\xFB",           // a rare one after a name
        "cr\xE9\xE9",               // two at a word's end: a hanzi here
        "eB\xF6y",                  // a word that changes its case
        "25\xB0\x43",               // a sign, no letter
        "A \x92\x74",               // no apostrophe without a letter before it
    };
    for (const char *text : texts)
        EXPECT_FALSE(isLatinInGb(QByteArray(text))) << QByteArray(text).toHex().constData();
}

TEST(GbBytes, EverydayHanziThatFormUtf8AreHanzi)
{
    EXPECT_TRUE(isGbInUtf8("\xC4\xA3"));
    EXPECT_TRUE(isGbInUtf8("\xC4\xA3 1"));
    EXPECT_TRUE(isGbInUtf8("\xC4\xA3\xCA\xBD"));
    EXPECT_TRUE(isGbInUtf8("\xC4\xA3\xCA\xBD\xD6\xAE"));
}

TEST(GbBytes, Utf8StaysUtf8)
{
    const char *const texts[] = {
        "Caf\xC3\xA9",                      // an accent in a word
        "\xC3\xA9t\xC3\xA9",                // the same at its start
        "\xE6\xA8\xA1",                     // three bytes
        "\xC4\x80",                         // no pair of GB2312
        "\xD0\xBD\xD0\xB8\xD0\xBA\xD0\xB0", // a word of Cyrillic letters
        "\xCE\xBB\xCE\xBF\xCE\xB3\xCE\xBF", // of Greek ones
        "\xC4\xA3\xE6\xA8\xA1",             // a mixture
        "plain",
    };
    for (const char *text : texts)
        EXPECT_FALSE(isGbInUtf8(QByteArray(text))) << text;
}
