// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigChanges.h"

#include <gtest/gtest.h>

using namespace marvola;

namespace {

QByteArray valueIn(const QByteArray &text, const QByteArray &group, const QByteArray &key)
{
    const ConfigText config{TextFrame(text)};
    const ConfigText::Entries *entries = config.entries(group);
    if (!entries)
        return "no group";
    const auto found = entries->value(key);
    return found ? found->toByteArray() : QByteArray("no key");
}

} // namespace

TEST(ConfigText, FindsValuesByGroupAndKey)
{
    const QByteArray text = "[a]\nk=1\nl=2\n[b]\nk=3\n";
    EXPECT_EQ(valueIn(text, "a", "k"), "1");
    EXPECT_EQ(valueIn(text, "a", "l"), "2");
    EXPECT_EQ(valueIn(text, "b", "k"), "3");
    EXPECT_EQ(valueIn(text, "b", "l"), "no key");
    EXPECT_EQ(valueIn(text, "c", "k"), "no group");
}

TEST(ConfigText, NamesAreCaseSensitive)
{
    const QByteArray text = "[a]\nPreURL=1\npreURL=2\n[A]\nx=3\n";
    EXPECT_EQ(valueIn(text, "a", "PreURL"), "1");
    EXPECT_EQ(valueIn(text, "a", "preURL"), "2");
    EXPECT_EQ(valueIn(text, "a", "x"), "no key");
    EXPECT_EQ(valueIn(text, "A", "x"), "3");
}

TEST(ConfigText, HandEditedVariantsAreUnderstood)
{
    const struct
    {
        const char *what;
        QByteArray text;
    } table[] = {
        {"byte order mark", "\xEF\xBB\xBF[g]\nk=v\n"},
        {"line ends of another system", "[g]\r\nk=v\r\n"},
        {"blanks", "  [ g ]\t\n\t k \t=  v  \n"},
        {"comments", "# one\n; two\n[g]\n#k=w\n;k=w\nk=v\n# k=w\n"},
        {"no line end at the end", "[g]\nk=v"},
        {"a group given twice", "[g]\nx=1\n[h]\nk=w\n[g]\nk=v\n"},
        {"the last of duplicates", "[g]\nk=w\nk=v\n"},
        {"the last of duplicates, in two sections", "[g]\nk=w\n[h]\n[g]\nk=v\n"},
        {"names with needless escapes", "[%67]\n%6B=v\n"},
        {"junk lines", "junk\n[g]\njunk\nk=v\nmore junk\n"},
        {"NULs", QByteArray("\0\0\n[g]\0\nk=v\0\0\n\0\0\0", 17)},
        {"a seal that does not hold", "#marvola=1 0000000003 00000000 00000000\n[g]\nk=v\n"},
        {"a seal of a later version", "#marvola=2 something else\n[g]\nk=v\n"},
    };
    for (const auto &row : table)
        EXPECT_EQ(valueIn(row.text, "g", "k"), "v") << row.what;
}

TEST(ConfigText, WhatCannotBeUnderstoodIsAbsent)
{
    EXPECT_EQ(valueIn("k=v\n[g]\n", "g", "k"), "no key") << "before the first group";
    EXPECT_EQ(valueIn("[g]\nk=\xFF\n", "g", "k"), "no key") << "value that is not UTF-8";
    EXPECT_EQ(valueIn("[g]\n\xC3=1\nk=v\n", "g", "k"), "v") << "beside a name that is not UTF-8";
    EXPECT_EQ(valueIn("[g]\nk=w\nk=\xED\xA0\x80\n", "g", "k"), "w") << "half of a pair in UTF-8";
    EXPECT_EQ(valueIn("[g]\nx=1\n[\xFF]\nk=v\n", "g", "k"), "no key") << "below a heading that is not UTF-8";
    EXPECT_EQ(valueIn("[g]\nx=1\n[h\nk=v\n", "g", "k"), "no key") << "below a heading without end";
}

TEST(ConfigText, KeysThatAreNotSpelledCanonicallyAreFound)
{
    const QByteArray text = "[g]\na:b=1\nc d=2\n%65=3\n100%=4\n=5\n";
    EXPECT_EQ(valueIn(text, "g", "a%3Ab"), "1");
    EXPECT_EQ(valueIn(text, "g", "c d"), "2");
    EXPECT_EQ(valueIn(text, "g", "e"), "3");
    EXPECT_EQ(valueIn(text, "g", "100%25"), "4");
    EXPECT_EQ(valueIn(text, "g", "%"), "5");
}
