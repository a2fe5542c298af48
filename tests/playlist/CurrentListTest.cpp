// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/ListText.h"

#include <gtest/gtest.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

constexpr quint16 Plenty = 50;

} // namespace

TEST(CurrentList, StartsEmptyUnnamedWithoutActiveItem)
{
    const CurrentList list;
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_EQ(list.count(), 0);
    EXPECT_TRUE(list.storedName().isNull());
    EXPECT_TRUE(list.name().isEmpty());
    EXPECT_FALSE(list.isChanged());
    EXPECT_FALSE(list.isTemporary());
}

TEST(CurrentList, NameIsStoredWithItsPrefix)
{
    CurrentList list;
    list.setName(u"Rock"_s);
    EXPECT_EQ(list.storedName(), u"pl-Rock"_s);
    EXPECT_EQ(list.name(), u"Rock"_s);
}

TEST(CurrentList, NullNameKeepsTheOldName)
{
    CurrentList list;
    list.setName(u"Rock"_s);
    list.setName(QString());
    EXPECT_EQ(list.name(), u"Rock"_s);
}

TEST(CurrentList, EmptyNameIsAName)
{
    CurrentList list;
    list.setName(u"Rock"_s);
    list.setName(u""_s);
    EXPECT_EQ(list.storedName(), u"pl-"_s);
    EXPECT_TRUE(list.name().isEmpty());
}

TEST(CurrentList, NameDropsThreeCharactersWhateverTheyAre)
{
    const std::pair<QString, QString> rows[] = {
        {u"abcdef"_s, u"def"_s}, {u"pl-pl-x"_s, u"pl-x"_s}, {u"abc"_s, u""_s}, {u"ab"_s, u""_s}, {QString(), u""_s}};
    for (const auto &[stored, name] : rows) {
        CurrentList list;
        list.setStoredName(stored);
        EXPECT_EQ(list.name(), name) << stored.toStdString();
    }
}

TEST(CurrentList, SetItemMakesItTheOnlyAndActiveOne)
{
    CurrentList list = listOf("a b c", 2);
    list.setName(u"Rock"_s);
    list.setItem(u"rtsp://x"_s);
    EXPECT_EQ(shown(list), "rtsp://x | 0 | 0 | 0");
    EXPECT_EQ(list.active(), u"rtsp://x"_s);
    EXPECT_TRUE(list.storedName().isNull());
    EXPECT_TRUE(list.name().isEmpty());
}

TEST(CurrentList, SetItemLeavesTheChangedState)
{
    CurrentList list;
    list.setItem(u"a"_s);
    EXPECT_FALSE(list.isChanged());
    list.setChanged(true);
    list.setItem(u"b"_s);
    EXPECT_TRUE(list.isChanged());
}

TEST(CurrentList, SettingAnEmptyItemKeepsListNameAndCursor)
{
    CurrentList list = listOf("a b c", 2);
    list.setName(u"Rock"_s);
    list.setItem(u""_s);
    list.setItem(QString());
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | 2");
    EXPECT_EQ(list.name(), u"Rock"_s);
}

TEST(CurrentList, SettingNoItemsKeepsListNameAndCursor)
{
    CurrentList list = listOf("a b c", 2);
    list.setName(u"Rock"_s);
    list.setItems({}, Plenty, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b c | 10 11 12 | 0 1 2 | 2");
    EXPECT_EQ(list.name(), u"Rock"_s);
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentList, SetItemsReplacesListAndName)
{
    CurrentList list;
    list.setName(u"Rock"_s);
    list.setItems(words("a b a c"), Plenty, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b c | 0 0 0 | 0 1 2 | 0");
    EXPECT_TRUE(list.storedName().isNull());
    EXPECT_TRUE(list.isChanged());
}

TEST(CurrentList, SetItemsStopsAtTheLimit)
{
    CurrentList list = listOf("x y z", 0);
    list.setItems(words("a b c d"), 2, Shuffle::Off);
    EXPECT_EQ(shown(list), "a b | 0 0 | 0 1 | 0");
}

TEST(CurrentList, SetItemsLeavesTheCursorFromThePreviousList)
{
    CurrentList list = listOf("a b c d e", 3);
    list.setItems(words("x y"), Plenty, Shuffle::Off);
    EXPECT_EQ(shown(list), "x y | 0 0 | 0 1 | 3");
    EXPECT_TRUE(list.active().isNull());
    list.setActive(1, Shuffle::Off, PickFirst::No);
    EXPECT_EQ(list.active(), u"y"_s);
}

TEST(CurrentList, SetItemsWithALimitOfZeroEmptiesTheListUnchanged)
{
    CurrentList list = listOf("a b", 1);
    list.setItems(words("x"), 0, Shuffle::Off);
    EXPECT_EQ(shown(list), " |  |  | 1");
    EXPECT_FALSE(list.isChanged());
    EXPECT_TRUE(list.active().isNull());
}

TEST(CurrentList, SetItemsTakesAtMost65535)
{
    QStringList items;
    for (int number = 0; number < 70000; ++number)
        items.append(QString::number(number));
    CurrentList list;
    list.setItems(items, 65535, Shuffle::Off);
    EXPECT_EQ(list.count(), 65535);
    EXPECT_EQ(list.order().size(), 65535);
    EXPECT_EQ(list.flags().size(), 65535);
    EXPECT_EQ(list.itemAt(65534), u"65534"_s);
}

TEST(CurrentList, CopiesOfTheItemsAreTheCallers)
{
    CurrentList list = listOf("a b", 0);
    QStringList copy = list.items();
    copy[0] = u"x"_s;
    EXPECT_EQ(list.itemAt(0), u"a"_s);
    list.setItems(list.items(), Plenty, Shuffle::Off);
    EXPECT_EQ(shown(list.items()), "a b");
}

TEST(CurrentList, ItemsComeInListOrderNotInPlayOrder)
{
    EXPECT_EQ(shown(listPlayedAs("a b c", {2, 0, 1}, 0).items()), "a b c");
}

TEST(CurrentList, ClearKeepsTheName)
{
    CurrentList list = listOf("a b", 1);
    list.setName(u"Rock"_s);
    list.clear();
    EXPECT_EQ(shown(list), " |  |  | -1");
    EXPECT_EQ(list.name(), u"Rock"_s);
}

TEST(CurrentList, ContainsComparesExactly)
{
    const CurrentList list = listOf("a /Music/B.mp3", 0);
    EXPECT_TRUE(list.contains(u"/Music/B.mp3"_s));
    EXPECT_FALSE(list.contains(u"/music/B.mp3"_s));
    EXPECT_FALSE(list.contains(u"A"_s));
    EXPECT_FALSE(list.contains(u"/Music/B"_s));
    EXPECT_FALSE(list.contains(u""_s));
}

TEST(CurrentList, IndexIsThatOfTheFirstCopy)
{
    const CurrentList list = listOf("a b c b", 0);
    EXPECT_EQ(list.indexOf(u"b"_s), 1);
    EXPECT_EQ(list.indexOf(u"c"_s), 2);
    EXPECT_EQ(list.indexOf(u"x"_s), -1);
}

TEST(CurrentList, ItemPastTheEndIsNull)
{
    const CurrentList list = listOf("a b", 0);
    EXPECT_EQ(list.itemAt(0), u"a"_s);
    EXPECT_EQ(list.itemAt(1), u"b"_s);
    EXPECT_TRUE(list.itemAt(2).isNull());
    EXPECT_TRUE(list.itemAt(65535).isNull());
    EXPECT_TRUE(list.itemAt(-1).isNull());
    EXPECT_TRUE(CurrentList().itemAt(0).isNull());
}

TEST(CurrentList, ClipsAreAbsolutePaths)
{
    CurrentList list;
    list.restore(QString(), {u"/a.mp3"_s, u"rtsp://a/b"_s, u""_s, u"a/b"_s, u"/"_s}, 0, Shuffle::Off);
    EXPECT_TRUE(list.isClip(0));
    EXPECT_FALSE(list.isClip(1));
    EXPECT_FALSE(list.isClip(2));
    EXPECT_FALSE(list.isClip(3));
    EXPECT_TRUE(list.isClip(4));
    EXPECT_FALSE(list.isClip(5));
}

TEST(CurrentList, EditUrlReplacesTheFirstInPlace)
{
    CurrentList list = listOf("a b a", 1);
    list.editUrl(u"a"_s, u"x"_s);
    EXPECT_EQ(shown(list), "x b a | 12 11 0 | 0 1 2 | 1");
    EXPECT_FALSE(list.isChanged());
}

TEST(CurrentList, EditUrlChangesNothing)
{
    struct Row
    {
        const char *name;
        QString oldUrl;
        QString newUrl;
    };
    const Row rows[] = {
        {"new one is in the list", u"a"_s, u"b"_s},
        {"old one is not in the list", u"x"_s, u"y"_s},
        {"empty old one", u""_s, u"y"_s},
        {"empty new one", u"a"_s, u""_s},
        {"null new one", u"a"_s, QString()},
        {"equal", u"a"_s, u"a"_s},
        {"equal and not in the list", u"x"_s, u"x"_s},
    };
    for (const Row &row : rows) {
        CurrentList list = listOf("a b", 1);
        list.editUrl(row.oldUrl, row.newUrl);
        EXPECT_EQ(shown(list), "a b | 10 11 | 0 1 | 1") << row.name;
    }
}

TEST(CurrentList, EditUrlNeverTouchesAnEmptyItem)
{
    CurrentList list;
    list.restore(QString(), {u""_s, u"b"_s}, 0, Shuffle::Off);
    list.editUrl(u""_s, u"c"_s);
    EXPECT_TRUE(list.itemAt(0).isEmpty());
}

TEST(CurrentList, FlagsAreKeptAsGiven)
{
    CurrentList list = listOf("a b", 0);
    list.setFlag(u"b"_s, MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(list.flag(u"b"_s), MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(list.flag(u"a"_s), 10);
    list.setFlag(u"a"_s, static_cast<MP_MEDIA_FILE_TYPE_T>(-77777));
    EXPECT_EQ(list.flag(u"a"_s), -77777);
}

TEST(CurrentList, FlagOfATextThatIsNotInTheListIsUnknown)
{
    CurrentList list = listOf("a b", 0);
    EXPECT_EQ(list.flag(u"x"_s), MP_MEDIA_FILE_TYPE_UNKNOWN);
    list.setFlag(u"x"_s, MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(shown(list), "a b | 10 11 | 0 1 | 0");
}

TEST(CurrentList, CopiesOfATextShareTheFirstFlag)
{
    CurrentList list;
    list.restore(QString(), words("a b a"), 0, Shuffle::Off);
    list.setFlag(u"a"_s, MP_MEDIA_FILE_TYPE_AUDIO);
    EXPECT_EQ(shown(list), "a b a | 1 0 0 | 0 1 2 | 0");
    EXPECT_EQ(list.flag(u"a"_s), MP_MEDIA_FILE_TYPE_AUDIO);
}

TEST(CurrentList, PlayersStatesAreKept)
{
    CurrentList list;
    list.setTemporary(true);
    list.setChanged(true);
    EXPECT_TRUE(list.isTemporary());
    EXPECT_TRUE(list.isChanged());
    list.clear();
    EXPECT_TRUE(list.isTemporary());
    EXPECT_TRUE(list.isChanged());
    list.setTemporary(false);
    list.setChanged(false);
    EXPECT_FALSE(list.isTemporary());
    EXPECT_FALSE(list.isChanged());
}
