// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigSyntax.h"

#include <QtCore/QStringList>

#include <gtest/gtest.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

struct Spelling
{
    const char *what;
    QString text;
    QByteArray raw;
};

QString textOf(char16_t unit)
{
    return QString(QChar(unit));
}

/// Each UTF-16 unit alone, first, last and in the middle, and before a hexadecimal digit.
QStringList placesOf(char16_t unit)
{
    const QString text = textOf(unit);
    return {text, text + u"a"_s, u"x"_s + text, u"x"_s + text + u"y"_s, text + text};
}

bool hasOnlyOneLine(const QByteArray &raw)
{
    return !raw.contains('\n') && !raw.contains('\r') && !raw.contains('\0');
}

} // namespace

TEST(ConfigSyntax, NamesAreSpelledWithPercentEscapes)
{
    const Spelling table[] = {
        {"plain", u"Volume Level_1/.-,x"_s, "Volume Level_1/.-,x"},
        {"empty", QString(), "%"},
        {"percent", u"100%"_s, "100%25"},
        {"lone percent", u"%"_s, "%25"},
        {"separators", u"a=b[c]d:e"_s, "a%3Db%5Bc%5Dd%3Ae"},
        {"comment marks", u"#a;b"_s, "%23a%3Bb"},
        {"backslash and quote", u"a\\b\"c"_s, "a%5Cb%22c"},
        {"controls", u"a\nb\tc\u007F"_s, "a%0Ab%09c%7F"},
        {"blanks at the ends", u" a b "_s, "%20a b%20"},
        {"one blank", u" "_s, "%20"},
        {"wide blanks at the ends", u"\u3000a\u3000b\u00A0"_s,
         "%U3000a\xE3\x80\x80"
         "b%A0"},
        {"other letters", u"\u65E5\u672C \U0001F600"_s, "\xE6\x97\xA5\xE6\x9C\xAC \xF0\x9F\x98\x80"},
        {"high half", textOf(0xD83D) + u"a"_s, "%UD83Da"},
        {"low half", u"a"_s + textOf(0xDE00), "a%UDE00"},
        {"halves the wrong way round", textOf(0xDE00) + textOf(0xD83D), "%UDE00%UD83D"},
        {"byte order mark", u"\uFEFFa"_s, "%UFEFFa"},
        {"looks like an escape", u"%41"_s, "%2541"},
    };
    for (const Spelling &row : table) {
        EXPECT_EQ(escapeName(row.text), row.raw) << row.what;
        EXPECT_EQ(unescapeName(row.raw), row.text) << row.what;
    }
}

TEST(ConfigSyntax, ValuesAreSpelledWithBackslashEscapes)
{
    const Spelling table[] = {
        {"plain", u"http://host:8080/a=b&c#d [e] %20"_s, "http://host:8080/a=b&c#d [e] %20"},
        {"empty", QString(), ""},
        {"backslash and quote", u"C:\\n \"x\""_s, "C:\\\\n \\\"x\\\""},
        {"line breaks and tab", u"a\nb\rc\td"_s, "a\\nb\\rc\\td"},
        {"blanks at the ends", u" x b "_s, "\\x0020x b\\x0020"},
        {"one blank", u" "_s, "\\x0020"},
        {"control", u"a\u0001z"_s, "a\\x0001z"},
        {"control before a hexadecimal digit", u"\u0001fg"_s, "\\x0001\\x0066g"},
        {"semicolon", u"a;z"_s, "a\\x003bz"},
        {"semicolon before hexadecimal digits", u";00"_s, "\\x003b\\x0030\\x0030"},
        {"other letters", u"\u65E5 \U0001F600"_s, "\xE6\x97\xA5 \xF0\x9F\x98\x80"},
        {"high half", textOf(0xD83D), "\\xd83d"},
        {"low half", textOf(0xDE00) + u"x"_s, "\\xde00x"},
        {"byte order mark", u"a\uFEFF"_s, "a\\xfeff"},
        {"looks like an escape", u"\\x0041"_s, "\\\\x0041"},
    };
    for (const Spelling &row : table) {
        EXPECT_EQ(escapeValue(row.text), row.raw) << row.what;
        EXPECT_EQ(unescapeValue(row.raw), row.text) << row.what;
    }
}

TEST(ConfigSyntax, WhatIsNoEscapeIsTakenAsItStands)
{
    const Spelling values[] = {
        {"path", u"C:\\dir"_s, "C:\\dir"},        {"at the end", u"a\\"_s, "a\\"},
        {"too short", u"\\x12"_s, "\\x12"},       {"no digits", u"\\xzzzz"_s, "\\xzzzz"},
        {"upper case", u"\u00ABc"_s, "\\x00ABc"},
    };
    for (const Spelling &row : values)
        EXPECT_EQ(unescapeValue(row.raw), row.text) << row.what;
    const Spelling names[] = {
        {"at the end", u"100%"_s, "100%"},      {"no digits", u"%zz"_s, "%zz"},       {"too short", u"a%4"_s, "a%4"},
        {"too short, wide", u"%U12"_s, "%U12"}, {"lower case", u"\u00ABc"_s, "%abc"},
    };
    for (const Spelling &row : names)
        EXPECT_EQ(unescapeName(row.raw), row.text) << row.what;
}

TEST(ConfigSyntax, EveryUnitComesBackFromNamesAndValuesOnOneLine)
{
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        for (const QString &text : placesOf(static_cast<char16_t>(code))) {
            const QByteArray name = escapeName(text);
            const QByteArray value = escapeValue(text);
            ASSERT_EQ(unescapeName(name), text) << code;
            ASSERT_EQ(unescapeValue(value), text) << code;
            ASSERT_TRUE(hasOnlyOneLine(name) && hasOnlyOneLine(value)) << code;
            // As it comes out of a line.
            const QByteArray entry = name + '=' + value;
            const ConfigLine line = parseLine(entry);
            ASSERT_EQ(line.kind, LineKind::Entry) << code;
            ASSERT_EQ(line.name, name) << code;
            ASSERT_EQ(line.value, value) << code;
            const QByteArray heading = '[' + name + ']';
            ASSERT_EQ(parseLine(heading).kind, LineKind::Group) << code;
            ASSERT_EQ(parseLine(heading).name, name) << code;
            QByteArray storage;
            ASSERT_EQ(canonicalName(name, storage), name) << code;
        }
    }
}

TEST(ConfigSyntax, ReadTextsAreNeverNull)
{
    EXPECT_FALSE(unescapeName("%").isNull());
    EXPECT_FALSE(unescapeName("").isNull());
    EXPECT_FALSE(unescapeValue("").isNull());
    EXPECT_TRUE(unescapeValue("").isEmpty());
}

TEST(ConfigSyntax, NamesSpelledOtherwiseAreRespelled)
{
    const struct
    {
        QByteArray raw, canonical;
    } table[] = {
        {"a:b", "a%3Ab"},   {"%41", "A"},           {"a%2fb", "a/b"},   {"", "%"},
        {"100%", "100%25"}, {"%u3000", "%25u3000"}, {"plain", "plain"}, {"\xE3\x80\x80z", "%U3000z"},
    };
    for (const auto &row : table) {
        QByteArray storage;
        EXPECT_EQ(canonicalName(row.raw, storage), row.canonical) << row.raw.constData();
    }
}

TEST(ConfigSyntax, LinesAreTakenApart)
{
    const struct
    {
        const char *what;
        QByteArray line;
        LineKind kind;
        QByteArray name, value;
    } table[] = {
        {"entry", "k=v", LineKind::Entry, "k", "v"},
        {"blanks around", " \tk \t= \tv \t\r", LineKind::Entry, "k", "v"},
        {"first equals sign", "k=a=b", LineKind::Entry, "k", "a=b"},
        {"no value", "k=", LineKind::Entry, "k", ""},
        {"no name", "=v", LineKind::Entry, "", "v"},
        {"NULs around", QByteArray("\0\0k=v\0\0", 7), LineKind::Entry, "k", "v"},
        {"group", "[g]", LineKind::Group, "g", ""},
        {"group with blanks", " [ g h ] ; note", LineKind::Group, "g h", ""},
        {"group without name", "[]", LineKind::Group, "", ""},
        {"group without end", "[g", LineKind::Unreadable, "", ""},
        {"number sign", "# k=v", LineKind::Comment, "", ""},
        {"semicolon", "\t; k=v", LineKind::Comment, "", ""},
        {"empty", "", LineKind::Blank, "", ""},
        {"blanks", " \t\r", LineKind::Blank, "", ""},
        {"NULs", QByteArray(5, '\0'), LineKind::Blank, "", ""},
        {"no equals sign", "hello", LineKind::Unreadable, "", ""},
    };
    for (const auto &row : table) {
        const ConfigLine line = parseLine(row.line);
        EXPECT_EQ(line.kind, row.kind) << row.what;
        EXPECT_EQ(line.name, row.name) << row.what;
        EXPECT_EQ(line.value, row.value) << row.what;
    }
}

TEST(ConfigSyntax, TextEndsWithTheLastLineThatIsNotBlank)
{
    EXPECT_EQ(endOfText(""), 0);
    EXPECT_EQ(endOfText("\n \r\n"), 0);
    EXPECT_EQ(endOfText("a"), 1);
    EXPECT_EQ(endOfText("a \r\n\n\n"), 4);
    EXPECT_EQ(endOfText(QByteArrayView("a\n\0\0", 4)), 2);
    EXPECT_EQ(endOfText("\na\n\nb\n\n"), 6);
}
