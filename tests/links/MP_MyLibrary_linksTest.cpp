// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

struct LibraryLinks : testing::Test
{
    TestPhone phone;
    NullEngine engine;
    std::unique_ptr<MP_MyLibrary> library = std::make_unique<MP_MyLibrary>(&engine);

    /// Starts the library anew with other entries in one group of its settings file.
    void restartWith(const QString &group, const QMap<QString, QString> &entries)
    {
        library.reset();
        {
            ConfigFile file(phone.settingsFile(), false);
            for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
                ASSERT_TRUE(file.writeEntry(group, entry.key(), entry.value()));
            ASSERT_TRUE(file.flush());
        }
        library = std::make_unique<MP_MyLibrary>(&engine);
    }
    void limitTo(int bookmarks, int history)
    {
        restartWith(u"MediaLimitationItem"_s, {{u"MaxNumOfMediaFile"_s, u"100"_s},
                                               {u"MaxNumOfBookmark"_s, QString::number(bookmarks)},
                                               {u"MaxNumOfHistory"_s, QString::number(history)}});
    }
};

QString firstDefaultName()
{
    const TestPhone phone;
    NullEngine engine;
    return MP_MyLibrary(&engine).getDefaultBookmarkName();
}

} // namespace

TEST_F(LibraryLinks, StartEmpty)
{
    EXPECT_TRUE(library->getItemListOfBookmark().isEmpty());
    EXPECT_TRUE(library->getItemListOfHistory().isEmpty());
    EXPECT_TRUE(library->getItemListOfPreconfig().isEmpty());
}

TEST_F(LibraryLinks, BookmarksAreAddedRenamedAndRemoved)
{
    EXPECT_EQ(library->addItemToBookmark(u"b"_s, u"http://b"_s), 0);
    EXPECT_EQ(library->addItemToBookmark(u"a"_s, u"http://a"_s), 0);
    EXPECT_EQ(library->addItemToBookmark(u"a"_s, u"http://other"_s), 0);
    EXPECT_EQ(library->getItemListOfBookmark(), QStringList({u"a"_s, u"b"_s}));
    EXPECT_TRUE(library->renameBookmarName(u"a"_s, u"c"_s));
    EXPECT_FALSE(library->renameBookmarName(u"a"_s, u"d"_s));
    EXPECT_FALSE(library->renameBookmarName(u"c"_s, u"b"_s));
    EXPECT_TRUE(library->hasBookmark(u"c"_s));
    EXPECT_FALSE(library->hasBookmark(u"a"_s));
    QStringList names = {u"c"_s, u"missing"_s};
    library->removeItemsFromBookmark(names);
    EXPECT_EQ(names, QStringList({u"c"_s, u"missing"_s}));
    EXPECT_EQ(library->getItemListOfBookmark(), QStringList(u"b"_s));
}

TEST_F(LibraryLinks, BookmarksWithEmptyTextsAreRefused)
{
    EXPECT_EQ(library->addItemToBookmark(u""_s, u"http://a"_s), 3);
    EXPECT_EQ(library->addItemToBookmark(u"a"_s, u""_s), 3);
    EXPECT_TRUE(library->getItemListOfBookmark().isEmpty());
}

TEST_F(LibraryLinks, TwentyBookmarksAndTwentyLinksAreTheLimitWithoutSettings)
{
    for (int number = 0; number < 20; ++number) {
        EXPECT_EQ(library->addItemToBookmark(QString::number(number), u"url"_s), 0);
        library->addItemToHistory(QString::number(number));
    }
    EXPECT_EQ(library->addItemToBookmark(u"20"_s, u"url"_s), 2);
    EXPECT_EQ(library->addItemToBookmark(u"0"_s, u"url"_s), 2);
    EXPECT_EQ(library->getItemListOfBookmark().size(), 20);
    library->addItemToHistory(u"20"_s);
    EXPECT_EQ(library->getItemListOfHistory().size(), 20);
    EXPECT_EQ(library->getItemListOfHistory().last(), u"1"_s);
}

TEST_F(LibraryLinks, LimitsComeFromTheSettingsEachItsOwn)
{
    limitTo(1, 2);
    EXPECT_EQ(library->addItemToBookmark(u"a"_s, u"url"_s), 0);
    EXPECT_EQ(library->addItemToBookmark(u"b"_s, u"url"_s), 2);
    for (const auto *url : {"L1", "L2", "L3"})
        library->addItemToHistory(QString::fromLatin1(url));
    EXPECT_EQ(library->getItemListOfHistory(), QStringList({u"L3"_s, u"L2"_s}));
}

TEST_F(LibraryLinks, BookmarksBeyondALoweredLimitTakeFurtherOnes)
{
    for (const auto *name : {"a", "b"})
        EXPECT_EQ(library->addItemToBookmark(QString::fromLatin1(name), u"url"_s), 0);
    {
        ConfigFile file(phone.settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, 100));
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfBookmark"_s, 1));
    }
    library->restoreConfig();
    EXPECT_EQ(library->addItemToBookmark(u"c"_s, u"url"_s), 0);
}

TEST_F(LibraryLinks, DefaultBookmarkNameIsSharedByAllObjectsAndNeverComesBack)
{
    const QString first = library->getDefaultBookmarkName();
    EXPECT_TRUE(first.startsWith(u"Bookmark"_s));
    EXPECT_EQ(library->getDefaultBookmarkName(), first);
    ASSERT_EQ(library->addItemToBookmark(first, u"url"_s), 0);
    const QString second = library->getDefaultBookmarkName();
    EXPECT_EQ(second.mid(8).toInt(), first.mid(8).toInt() + 1);
    QStringList names = {first};
    library->removeItemsFromBookmark(names);
    EXPECT_EQ(library->getDefaultBookmarkName(), second);
    library = std::make_unique<MP_MyLibrary>(&engine);
    EXPECT_EQ(library->getDefaultBookmarkName(), second);
}

TEST(LibraryLinksDeathTest, FirstDefaultBookmarkNameOfAProcessHasTheNumberZero)
{
    // A process of its own, in which no other test has asked before.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(std::_Exit(firstDefaultName() == u"Bookmark0"_s ? 0 : 1), testing::ExitedWithCode(0), "");
}

TEST_F(LibraryLinks, HistoryKeepsTheLatestFirst)
{
    for (const auto *url : {"L1", "L2", "L3", "L2", ""})
        library->addItemToHistory(QString::fromLatin1(url));
    EXPECT_EQ(library->getItemListOfHistory(), QStringList({u"L2"_s, u"L3"_s, u"L1"_s}));
}

TEST_F(LibraryLinks, PresetsComeFromTheSettingsWithoutGaps)
{
    restartWith(u"MediaControlItem"_s, {{u"preConfigURL2"_s, u"http://2"_s}, {u"PreConfigURL3"_s, u"http://3"_s}});
    EXPECT_EQ(library->getItemListOfPreconfig(), QStringList({u"http://2"_s, u"http://3"_s}));
}

TEST_F(LibraryLinks, SecondPresetIsDeliberatelyReadFromAnotherKeyThanItIsWrittenTo)
{
    restartWith(u"MediaControlItem"_s, {{u"PreConfigURL1"_s, u"http://1"_s}, {u"preConfigURL2"_s, u"http://2"_s}});
    library->storeConfig();
    ASSERT_TRUE(ConfigFile(phone.settingsFile(), false).removeEntry(u"MediaControlItem"_s, u"preConfigURL2"_s));
    restartWith(u"MediaControlItem"_s, {});
    EXPECT_EQ(ConfigFile(phone.settingsFile(), false).readEntry(u"MediaControlItem"_s, u"PreConfigURL2"_s),
              u"http://2"_s);
    EXPECT_EQ(library->getItemListOfPreconfig(), QStringList(u"http://1"_s));
}
