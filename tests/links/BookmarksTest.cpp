// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/Bookmarks.h"

#include <gtest/gtest.h>

#include <array>
#include <thread>

using namespace Qt::StringLiterals;
using marvola::Bookmarks;
using marvola::BookmarkStatus;
using marvola::DefaultNameCounter;

namespace {

using Urls = QMap<QString, QString>;

/// "B1" to "Bcount" with "url1" to "urlcount", as they were saved.
Bookmarks restored(int count)
{
    Urls urls;
    for (int number = 1; number <= count; ++number)
        urls.insert(u"B%1"_s.arg(number), u"url%1"_s.arg(number));
    Bookmarks bookmarks;
    bookmarks.setUrls(urls);
    return bookmarks;
}

Bookmarks named(const QStringList &names)
{
    Bookmarks bookmarks;
    for (const QString &name : names)
        EXPECT_EQ(bookmarks.add(name, u"url"_s, 20), BookmarkStatus::Stored);
    return bookmarks;
}

} // namespace

TEST(BookmarksAdd, StatusesAreThePlayersNumbers)
{
    EXPECT_EQ(static_cast<int>(BookmarkStatus::Stored), 0);
    EXPECT_EQ(static_cast<int>(BookmarkStatus::LimitReached), 2);
    EXPECT_EQ(static_cast<int>(BookmarkStatus::EmptyText), 3);
}

TEST(BookmarksAdd, StoresTheUrlUnderTheName)
{
    Bookmarks bookmarks;
    EXPECT_EQ(bookmarks.add(u"a"_s, u"http://a"_s, 20), BookmarkStatus::Stored);
    EXPECT_EQ(bookmarks.urls(), Urls({{u"a"_s, u"http://a"_s}}));
}

TEST(BookmarksAdd, KnownNameGetsTheNewUrl)
{
    Bookmarks bookmarks = restored(2);
    EXPECT_EQ(bookmarks.add(u"B1"_s, u"new"_s, 20), BookmarkStatus::Stored);
    EXPECT_EQ(bookmarks.urls(), Urls({{u"B1"_s, u"new"_s}, {u"B2"_s, u"url2"_s}}));
}

TEST(BookmarksAdd, EmptyNameOrUrlIsRefused)
{
    Bookmarks bookmarks = restored(1);
    EXPECT_EQ(bookmarks.add(QString(), u"url"_s, 20), BookmarkStatus::EmptyText);
    EXPECT_EQ(bookmarks.add(u"B1"_s, u""_s, 20), BookmarkStatus::EmptyText);
    EXPECT_EQ(bookmarks.add(u""_s, u""_s, 20), BookmarkStatus::EmptyText);
    EXPECT_EQ(bookmarks.urls(), restored(1).urls());
}

TEST(BookmarksAdd, EmptyTextIsAskedForBeforeTheLimit)
{
    EXPECT_EQ(restored(20).add(u""_s, u"url"_s, 20), BookmarkStatus::EmptyText);
}

TEST(BookmarksAdd, LastOneBelowTheLimitIsStored)
{
    Bookmarks bookmarks = restored(19);
    EXPECT_EQ(bookmarks.add(u"new"_s, u"url"_s, 20), BookmarkStatus::Stored);
    EXPECT_EQ(bookmarks.urls().size(), 20);
}

TEST(BookmarksAdd, NewNameAtTheLimitIsRefused)
{
    Bookmarks bookmarks = restored(20);
    EXPECT_EQ(bookmarks.add(u"new"_s, u"url"_s, 20), BookmarkStatus::LimitReached);
    EXPECT_EQ(bookmarks.urls(), restored(20).urls());
}

TEST(BookmarksAdd, KnownNameAtTheLimitIsDeliberatelyRefusedToo)
{
    Bookmarks bookmarks = restored(20);
    EXPECT_EQ(bookmarks.add(u"B7"_s, u"new"_s, 20), BookmarkStatus::LimitReached);
    EXPECT_EQ(bookmarks.urls(), restored(20).urls());
}

TEST(BookmarksAdd, MoreThanTheLimitDeliberatelyTakeFurtherOnes)
{
    Bookmarks bookmarks = restored(21);
    EXPECT_EQ(bookmarks.add(u"new"_s, u"url"_s, 20), BookmarkStatus::Stored);
    EXPECT_EQ(bookmarks.urls().size(), 22);
}

TEST(BookmarksAdd, LimitZeroRefusesTheFirst)
{
    Bookmarks bookmarks;
    EXPECT_EQ(bookmarks.add(u"new"_s, u"url"_s, 0), BookmarkStatus::LimitReached);
    EXPECT_TRUE(bookmarks.urls().isEmpty());
}

TEST(BookmarksRename, KeepsTheUrl)
{
    Bookmarks bookmarks = restored(2);
    EXPECT_TRUE(bookmarks.rename(u"B1"_s, u"Z"_s));
    EXPECT_EQ(bookmarks.urls(), Urls({{u"B2"_s, u"url2"_s}, {u"Z"_s, u"url1"_s}}));
}

TEST(BookmarksRename, EmptyNameIsRefused)
{
    Bookmarks bookmarks = restored(1);
    EXPECT_FALSE(bookmarks.rename(u"B1"_s, u""_s));
    EXPECT_FALSE(bookmarks.rename(u""_s, u"new"_s));
    EXPECT_FALSE(bookmarks.rename(u""_s, u""_s)) << "equal names, but empty";
    EXPECT_EQ(bookmarks.urls(), restored(1).urls());
}

TEST(BookmarksRename, EmptyNameThatWasSavedIsRefusedToo)
{
    Bookmarks bookmarks;
    bookmarks.setUrls({{u""_s, u"url"_s}});
    EXPECT_FALSE(bookmarks.rename(u""_s, u"new"_s));
    EXPECT_EQ(bookmarks.urls(), Urls({{u""_s, u"url"_s}}));
}

TEST(BookmarksRename, ToTheSameNameDeliberatelySucceedsWithoutABookmark)
{
    Bookmarks bookmarks = restored(1);
    EXPECT_TRUE(bookmarks.rename(u"A"_s, u"A"_s));
    EXPECT_TRUE(bookmarks.rename(u"B1"_s, u"B1"_s));
    EXPECT_EQ(bookmarks.urls(), restored(1).urls());
}

TEST(BookmarksRename, TakenNameIsRefused)
{
    Bookmarks bookmarks = restored(2);
    EXPECT_FALSE(bookmarks.rename(u"B1"_s, u"B2"_s));
    EXPECT_FALSE(bookmarks.rename(u"missing"_s, u"B2"_s));
    EXPECT_EQ(bookmarks.urls(), restored(2).urls());
}

TEST(BookmarksRename, MissingBookmarkIsRefused)
{
    Bookmarks bookmarks = restored(1);
    EXPECT_FALSE(bookmarks.rename(u"missing"_s, u"new"_s));
    EXPECT_EQ(bookmarks.urls(), restored(1).urls());
}

TEST(BookmarksRename, LetterCaseAloneIsANewName)
{
    Bookmarks bookmarks = restored(1);
    EXPECT_TRUE(bookmarks.rename(u"B1"_s, u"b1"_s));
    EXPECT_EQ(bookmarks.urls(), Urls({{u"b1"_s, u"url1"_s}}));
}

TEST(BookmarksContains, ExactlyThatName)
{
    const Bookmarks bookmarks = restored(1);
    EXPECT_TRUE(bookmarks.contains(u"B1"_s));
    for (const auto *name : {"b1", "B1 ", "B", "", "url1"})
        EXPECT_FALSE(bookmarks.contains(QString::fromLatin1(name))) << name;
}

TEST(BookmarksRemove, RemovesWhatIsThereAndPassesOverTheRest)
{
    Bookmarks bookmarks = restored(3);
    bookmarks.remove({u"B3"_s, u"missing"_s, u"B1"_s, u"B3"_s, u""_s, u"url2"_s});
    EXPECT_EQ(bookmarks.urls(), Urls({{u"B2"_s, u"url2"_s}}));
}

TEST(BookmarksRemove, NoNamesRemoveNothing)
{
    Bookmarks bookmarks = restored(2);
    bookmarks.remove({});
    EXPECT_EQ(bookmarks.urls(), restored(2).urls());
}

TEST(BookmarksNames, AreInTheOrderOfTheirCharactersCodes)
{
    const Bookmarks bookmarks =
        named({u"é"_s, u"bookmark"_s, u"Bookmark2"_s, u"Bookmark10"_s, u"Zebra"_s, u" x"_s, u"书签"_s});
    EXPECT_EQ(bookmarks.names(),
              QStringList({u" x"_s, u"Bookmark10"_s, u"Bookmark2"_s, u"Zebra"_s, u"bookmark"_s, u"é"_s, u"书签"_s}));
}

TEST(BookmarksUrlsOf, NamedOnesInTheOrderOfTheNames)
{
    EXPECT_EQ(restored(3).urlsOf({u"B3"_s, u"missing"_s, u"B1"_s}), QStringList({u"url3"_s, u"url1"_s}));
    EXPECT_TRUE(restored(3).urlsOf({}).isEmpty());
}

TEST(BookmarksUrlsOf, EachUrlOnce)
{
    Bookmarks bookmarks = restored(2);
    EXPECT_EQ(bookmarks.add(u"same"_s, u"url1"_s, 20), BookmarkStatus::Stored);
    EXPECT_EQ(bookmarks.urlsOf({u"same"_s, u"B2"_s, u"B1"_s, u"same"_s}), QStringList({u"url1"_s, u"url2"_s}));
}

TEST(BookmarksUnusedName, CountsPastTheNamesThatAreTaken)
{
    DefaultNameCounter counter(0);
    Bookmarks bookmarks;
    EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark0"_s);
    bookmarks = named({u"Bookmark0"_s, u"Bookmark1"_s});
    EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark2"_s);
    bookmarks = named({u"Bookmark0"_s, u"Bookmark1"_s, u"Bookmark2"_s});
    EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark3"_s);
    EXPECT_EQ(Bookmarks().unusedName(counter), u"Bookmark3"_s) << "a name that was freed does not come back";
}

TEST(BookmarksUnusedName, IsTheSameUntilItIsTaken)
{
    DefaultNameCounter counter(9);
    const Bookmarks bookmarks = named({u"Bookmark9"_s});
    EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark10"_s);
    EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark10"_s);
}

TEST(BookmarksUnusedName, OtherSpellingsTakeNoName)
{
    DefaultNameCounter counter(0);
    const Bookmarks bookmarks = named({u"bookmark0"_s, u"Bookmark00"_s, u"Bookmark 0"_s, u"Bookmark"_s});
    EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark0"_s);
}

TEST(BookmarksUnusedName, SharesItsCounterAmongThreads)
{
    Bookmarks bookmarks;
    Urls urls;
    for (int number = 0; number < 2000; ++number)
        urls.insert(u"Bookmark%1"_s.arg(number), u"url"_s);
    bookmarks.setUrls(urls);
    DefaultNameCounter counter(0);
    std::array<std::thread, 4> threads;
    for (std::thread &thread : threads)
        thread = std::thread([&] { EXPECT_EQ(bookmarks.unusedName(counter), u"Bookmark2000"_s); });
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(counter.load(), 2000U);
}
