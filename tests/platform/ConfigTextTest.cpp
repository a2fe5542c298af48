// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigChanges.h"

#include <gtest/gtest.h>

#include <ctime>
#include <malloc.h>

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

/// \a count headings, each with a group of its own.
QByteArray headings(std::size_t count)
{
    QByteArray text;
    for (std::size_t number = 0; number < count; ++number)
        text += '[' + QByteArray::number(static_cast<qulonglong>(number), 36) + "]\n";
    return text;
}

/// What is allocated; 0 where that is not known, as under the sanitizers.
std::size_t allocated()
{
    const struct mallinfo2 info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
}

constexpr std::size_t MiB = std::size_t(1024) * 1024;

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

TEST(ConfigText, ManySectionsOfOneGroupTakeLinearTime)
{
    QByteArray text;
    for (std::size_t number = 0; number < ConfigText::MaxHeadings; ++number)
        text += "[g]\nk" + QByteArray::number(static_cast<qulonglong>(number)) + "=1\n";
    const std::clock_t start = std::clock();
    const ConfigText config{TextFrame(text)};
    const ConfigText::Entries *entries = config.entries("g");
    ASSERT_NE(entries, nullptr);
    EXPECT_EQ(entries->values.size(), ConfigText::MaxHeadings);
    // A tenth of a second; with one step for each pair of sections it would be a minute and a half.
    EXPECT_LT(std::clock() - start, 15 * CLOCKS_PER_SEC);
}

TEST(ConfigText, RoomIsMadeOnlyForWhatCouldBeAnEntry)
{
    const ConfigText blank{TextFrame("[g]\nk=1\n" + QByteArray(500'000, '\n') + "[h]\n" + QByteArray(100'000, '=') +
                                     "\n" + QByteArray(100'000, 'x'))};
    EXPECT_LE(blank.entries("g")->values.capacity(), 2U);
    EXPECT_LE(blank.entries("h")->values.capacity(), 2U);
    QByteArray text = "[g]\n";
    for (int line = 0; line < 500'000; ++line)
        text += "k=1\n";
    const ConfigText oneKey{TextFrame(text)};
    EXPECT_EQ(oneKey.entries("g")->values.size(), 1U);
    EXPECT_LE(oneKey.entries("g")->values.capacity(), 65'536U);
}

TEST(ConfigText, TheFirstValueAskedForIsTheSameAsTheLater)
{
    const char text[] = "[g]\nk=old\n%6B=1\nother=2\nbad\xff=3\nempty=\n[h]\nk=4\n[g]\nk=5\n";
    for (const char *key : {"k", "other", "empty", "bad", "absent"}) {
        const ConfigText config{TextFrame(text)};
        const auto first = config.value("g", key);
        EXPECT_EQ(config.value("g", key), first) << key;
        EXPECT_EQ(first ? first->toByteArray() : QByteArray("no key"), valueIn(text, "g", key)) << key;
    }
    EXPECT_EQ(ConfigText{TextFrame(text)}.value("none", "k"), std::nullopt);
}

TEST(ConfigText, NumberedValuesAreThoseOfTheCanonicalNumbersUpToTheCount)
{
    const ConfigText config{TextFrame("[g]\n2=b\n%31=a\n02=no\n+1=no\n0=no\n4=d\n2=last\n3=\n5=no\n"
                                      "18446744073709551617=no\n6\xff=no\ncounter=4\n[h]\n1=no\n")};
    const std::vector<QByteArrayView> values = config.numberedValues("g", 4);
    ASSERT_EQ(values.size(), 4U);
    EXPECT_EQ(values[0], QByteArrayView("a"));
    EXPECT_EQ(values[1], QByteArrayView("last"));
    EXPECT_TRUE(values[2].isEmpty());
    EXPECT_FALSE(values[2].isNull());
    EXPECT_EQ(values[3], QByteArrayView("d"));
    EXPECT_TRUE(config.numberedValues("g", 7)[6].isNull());
    EXPECT_TRUE(config.numberedValues("none", 1)[0].isNull());
    EXPECT_TRUE(config.numberedValues("g", 0).empty());
    EXPECT_TRUE(config.numberedValues("g", -1).empty());
}

TEST(ConfigText, AKeyThatIsRespelledTimeAndAgainIsKeptOnce)
{
    QByteArray text = "[g]\n";
    for (int line = 0; line < 1000; ++line)
        text += "=" + QByteArray::number(line) + "\n%6B=1\n";
    const ConfigText config{TextFrame(text)};
    const ConfigText::Entries *entries = config.entries("g");
    EXPECT_EQ(entries->respelled.size(), 2U);
    EXPECT_EQ(entries->value("%"), QByteArrayView("999"));
    EXPECT_EQ(entries->value("k"), QByteArrayView("1"));
}

TEST(ConfigText, HeadingsTakeAFewTimesTheirLength)
{
    const std::size_t before = allocated();
    if (before == 0)
        GTEST_SKIP() << "nobody counts what is allocated";
    const QByteArray text = headings(ConfigText::MaxHeadings);
    const ConfigText config{TextFrame(text)};
    EXPECT_NE(config.entries("zz"), nullptr);
    EXPECT_LT(allocated() - before, 16 * MiB);
}

TEST(ConfigText, HeadingsThatCannotBeUnderstoodTakeNoRoom)
{
    QByteArray text = "[g]\nk=1\n";
    for (std::size_t line = 0; line < 2 * ConfigText::MaxHeadings; ++line)
        text += "[\n";
    text += "k=2\n[h]\nk=3\n";
    EXPECT_EQ(valueIn(text, "g", "k"), "1");
    EXPECT_EQ(valueIn(text, "h", "k"), "3");
}

TEST(ConfigText, TheMostHeadingsAreReadAndOneMoreIsTooMany)
{
    const QByteArray most = "a=1\n" + headings(ConfigText::MaxHeadings - 1) + "[g]\nk=v\n";
    EXPECT_EQ(valueIn(most, "g", "k"), "v");
    EXPECT_EQ(valueIn(most + "[h]\n", "g", "k"), "no group");
    EXPECT_EQ(valueIn(most + "[h]\n", "0", "k"), "no group");
    EXPECT_EQ(valueIn(most + "[g]\n", "g", "k"), "no group") << "a second section is a heading too";
}

TEST(ConfigText, TheMostLinesAreReadAndOneMoreIsTooMany)
{
    const QByteArray most = "[g]\nk=v\n" + QByteArray(ConfigText::MaxLines - 3, '\n') + "#\n";
    EXPECT_EQ(valueIn(most, "g", "k"), "v");
    EXPECT_EQ(valueIn(most + "#", "g", "k"), "no group");
}
