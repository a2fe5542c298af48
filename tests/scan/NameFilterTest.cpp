// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/NameFilter.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::NameFilter;

namespace {

struct Row
{
    const char *what;
    QString patterns;
    QString name;
    bool matches;
};

} // namespace

TEST(NameFilter, NamesAndPatterns)
{
    const Row rows[] = {
        {"extension", u"*.mp3;"_s, u"a.mp3"_s, true},
        {"last of several", u"*.mp3;*.amr;"_s, u"a.amr"_s, true},
        {"without the last separator", u"*.mp3;*.amr"_s, u"a.amr"_s, true},
        {"upper case name", u"*.mp3;"_s, u"SONG.MP3"_s, true},
        {"upper case pattern", u"*.MP3;"_s, u"song.mp3"_s, true},
        {"other letters ignore case too", u"*.äöü;"_s, u"x.ÄÖÜ"_s, true},
        {"blanks around patterns", u" *.mp3 ;\t*.amr\n;"_s, u"a.amr"_s, true},
        {"several dots in the name", u"*.mp3;"_s, u"a.b.c.mp3"_s, true},
        {"dot in the extension", u"*.tar.gz;"_s, u"a.tar.gz"_s, true},
        {"only the extension", u"*.mp3;"_s, u".mp3"_s, true},
        {"name", u"cover.jpg"_s, u"Cover.JPG"_s, true},
        {"question mark", u"track??.mp3"_s, u"track07.mp3"_s, true},
        {"set", u"*.mp[34]"_s, u"a.mp4"_s, true},
        {"negated set", u"*.mp[!34]"_s, u"a.mp2"_s, true},
        {"star alone", u"*"_s, u"anything"_s, true},
        {"star in the middle", u"a*z.mp3"_s, u"a--z.mp3"_s, true},
        {"line break in the name", u"a*.mp3"_s, u"a\nb.mp3"_s, true},
        {"unclosed set stands for itself", u"a[b"_s, u"A[b"_s, true},

        {"other extension", u"*.mp3;"_s, u"a.mp4"_s, false},
        {"longer extension", u"*.mp3;"_s, u"a.mp3x"_s, false},
        {"something behind the extension", u"*.mp3;"_s, u"a.mp3.txt"_s, false},
        {"no dot", u"*.mp3;"_s, u"mp3"_s, false},
        {"end of the name without dot", u"*.mp3;"_s, u"amp3"_s, false},
        {"extension with a dot, only its end", u"*.tar.gz;"_s, u"a.gz"_s, false},
        {"one character too many", u"track??.mp3"_s, u"track007.mp3"_s, false},
        {"not in the set", u"*.mp[34]"_s, u"a.mp2"_s, false},
        {"a part of the name", u"cover"_s, u"cover.jpg"_s, false},
        {"dots are dots", u"a.mp?"_s, u"aXmp3"_s, false},
        {"other separators do not part", u"*.mp3,*.amr"_s, u"a.amr"_s, false},
    };
    for (const Row &row : rows)
        EXPECT_EQ(NameFilter(row.patterns).matches(row.name), row.matches) << row.what;
}

TEST(NameFilter, WithoutPatternsNothingMatches)
{
    for (const QString &none : {QString(), u""_s, u";"_s, u" ; ;"_s}) {
        EXPECT_FALSE(NameFilter(none).matches(u"a.mp3"_s));
        EXPECT_FALSE(NameFilter(none).matches(u"a"_s));
        EXPECT_FALSE(NameFilter(none).matches(QString()));
    }
}

TEST(NameFilter, EmptyExtensionMatchesADotAtTheEnd)
{
    EXPECT_TRUE(NameFilter(u"*.;"_s).matches(u"a."_s));
    EXPECT_FALSE(NameFilter(u"*.;"_s).matches(u"a"_s));
}

TEST(NameFilter, FilterOfExtensionsKeepsTheirOrderAndEndsWithASeparator)
{
    EXPECT_EQ(NameFilter::filterOf({u"mp3"_s, u"amr"_s}), u"*.mp3;*.amr;"_s);
    EXPECT_EQ(NameFilter::filterOf({}), QString());
}
