// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// What is being played as the player meets it, through the library object.

#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QCoreApplication>

#include <gmock/gmock.h>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Indices = QValueList<unsigned short>;

struct PlayingList : testing::Test
{
    TestPhone phone;
    TableEngine engine;
    std::unique_ptr<MP_MyLibrary> library;

    void SetUp() override { startWith({}); }
    ~PlayingList() override
    {
        if (library)
            library->cancelRefreshMyLibrary();
    }

    /// A new library object, as after a restart of the player, with these limits added to the settings file.
    void startWith(const QMap<QString, int> &limits)
    {
        library.reset();
        {
            ConfigFile file(phone.settingsFile(), false);
            for (auto limit = limits.cbegin(); limit != limits.cend(); ++limit)
                ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, limit.key(), limit.value()));
        }
        library = std::make_unique<MP_MyLibrary>(&engine);
    }
    void restart() { startWith({}); }
    void storeAndRestart()
    {
        library->storeMyLibrary();
        restart();
    }

    QString onPhone(const QString &name, const TableEngine::Answer &answer)
    {
        engine.answers[name] = answer;
        return TestPhone::addFile(phone.phone() + u'/' + name);
    }
    /// The refresh is left to reach its end.
    void refresh() const
    {
        bool isDone = false;
        QObject context;
        QObject::connect(
            library.get(), &MP_MyLibrary::refreshContinue, &context,
            [&isDone](UINT8 percent) { isDone = isDone || percent == 100; }, Qt::QueuedConnection);
        library->refreshMyLibrary();
        while (!isDone)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        library->cancelRefreshMyLibrary();
    }

    bool add(QStringList items) const { return library->addItemsToPlayList(items); }
    bool addAt(Indices indices) const { return library->addItemsToPlayList(indices); }
    bool addBookmarks(QStringList names) const { return library->addBookmarksToPlayList(names); }
    QStringList items() const { return library->getCurrentPlayingList(); }
    /// The items from the active one to the end of the play order; needs repeat off.
    QStringList playedFromHere() const
    {
        QStringList played = {library->getActiveItem()};
        for (QString next = library->getNextItem(); !next.isNull(); next = library->getNextItem())
            played.append(next);
        return played;
    }
    QString stored(const QString &group, const QString &key) const
    {
        return ConfigFile(phone.listFile(), false).readEntry(group, key, u"(absent)"_s);
    }
};

QStringList letters(int count)
{
    QStringList texts;
    for (int number = 0; number < count; ++number)
        texts.append(QString(QChar(u'a' + number)));
    return texts;
}

QStringList sorted(QStringList texts)
{
    texts.sort();
    return texts;
}

} // namespace

TEST_F(PlayingList, StartsEmpty)
{
    EXPECT_THAT(items(), IsEmpty());
    EXPECT_EQ(library->getCurrentPlayingListNumber(), 0U);
    EXPECT_EQ(library->getCurrentPlayingListName(), QString());
    EXPECT_TRUE(library->getActiveItem().isNull());
    EXPECT_TRUE(library->getNextItem().isNull());
    EXPECT_TRUE(library->getPrevItem().isNull());
    EXPECT_FALSE(library->hasNextItem());
    EXPECT_FALSE(library->hasPrevItem());
    EXPECT_FALSE(library->getTemporaryPlaylistState());
    EXPECT_FALSE(library->getCurrentPlaylistChangedState());
}

TEST_F(PlayingList, FlagsOfThePlayerAreKeptForIt)
{
    library->setTemporaryPlaylistState(true);
    EXPECT_TRUE(library->getTemporaryPlaylistState());
    EXPECT_FALSE(library->getCurrentPlaylistChangedState());
    library->setCurrentPlaylistChangedState(true);
    library->setTemporaryPlaylistState(false);
    EXPECT_FALSE(library->getTemporaryPlaylistState());
    EXPECT_TRUE(library->getCurrentPlaylistChangedState());
}

TEST_F(PlayingList, OneItemIsActiveAtOnceAndHasNoListName)
{
    library->setCurrentPlayingListName(u"Rock"_s);
    library->setCurrentPlayingList(u"/a.mp3"_s);
    EXPECT_THAT(items(), ElementsAre(u"/a.mp3"_s));
    EXPECT_EQ(library->getActiveItem(), u"/a.mp3"_s);
    EXPECT_EQ(library->getCurrentPlayingListName(), QString());
    EXPECT_FALSE(library->getCurrentPlaylistChangedState());
}

TEST_F(PlayingList, EmptyItemsKeepListNameAndCursor)
{
    library->setCurrentPlayingList(letters(3));
    library->setCurrentPlayingListName(u"Rock"_s);
    library->setActiveItem(1, false);
    library->setCurrentPlayingList(QString());
    library->setCurrentPlayingList(QStringList());
    library->setCurrentPlayingListName(QString());
    EXPECT_EQ(items(), letters(3));
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
    EXPECT_EQ(library->getActiveItem(), u"b"_s);
}

TEST_F(PlayingList, CursorIsDeliberatelyLeftOverFromTheListBefore)
{
    library->setCurrentPlayingList(letters(3));
    library->setActiveItem(2, false);
    library->setCurrentPlayingList(QStringList{u"x"_s, u"y"_s, u"z"_s});
    EXPECT_EQ(library->getActiveItem(), u"z"_s);
    library->setCurrentPlayingList(QStringList{u"p"_s, u"q"_s});
    EXPECT_TRUE(library->getActiveItem().isNull()) << "place 2 of two items";
    library->setActiveItem(0, false);
    EXPECT_EQ(library->getActiveItem(), u"p"_s);
}

TEST_F(PlayingList, ClearingKeepsTheName)
{
    library->setCurrentPlayingList(letters(2));
    library->setCurrentPlayingListName(u"Rock"_s);
    library->clearCurrentPlayingList();
    EXPECT_EQ(library->getCurrentPlayingListNumber(), 0U);
    EXPECT_TRUE(library->getActiveItem().isNull());
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
}

TEST_F(PlayingList, ReadsAndEditsByIndexAndByText)
{
    library->setCurrentPlayingList(QStringList{u"/a.mp3"_s, u"http://b"_s, u"/c.mp3"_s});
    EXPECT_TRUE(library->hasItem(u"http://b"_s));
    EXPECT_FALSE(library->hasItem(u"http://B"_s));
    EXPECT_EQ(library->getItemIndex(u"/c.mp3"_s), 2);
    EXPECT_EQ(library->getItemIndex(u"/d.mp3"_s), -1);
    EXPECT_EQ(library->getItemContent(1), u"http://b"_s);
    EXPECT_TRUE(library->getItemContent(3).isNull());
    EXPECT_TRUE(library->isClip(0));
    EXPECT_FALSE(library->isClip(1));
    EXPECT_FALSE(library->isClip(3));
    EXPECT_TRUE(library->isLastItem(u"/c.mp3"_s));
    EXPECT_FALSE(library->isLastItem(u"/a.mp3"_s));
    library->editUrl(u"http://b"_s, u"/a.mp3"_s);
    EXPECT_EQ(library->getItemContent(1), u"http://b"_s) << "the new text is in the list already";
    library->editUrl(u"http://b"_s, u"http://new"_s);
    EXPECT_EQ(library->getItemContent(1), u"http://new"_s);
}

TEST_F(PlayingList, EditsTellWhetherThereIsSuchAnItem)
{
    library->setCurrentPlayingList(letters(3));
    library->setCurrentPlaylistChangedState(false);
    EXPECT_TRUE(library->itemUp(2));
    EXPECT_THAT(items(), ElementsAre(u"a"_s, u"c"_s, u"b"_s));
    EXPECT_TRUE(library->itemDown(0));
    EXPECT_THAT(items(), ElementsAre(u"c"_s, u"a"_s, u"b"_s));
    EXPECT_EQ(library->getActiveItem(), u"a"_s);
    EXPECT_TRUE(library->itemUp(0));
    EXPECT_TRUE(library->itemDown(2));
    EXPECT_FALSE(library->itemUp(3));
    EXPECT_FALSE(library->itemDown(3));
    EXPECT_FALSE(library->removeItemFromPlayList(3));
    EXPECT_FALSE(library->getCurrentPlaylistChangedState());
    EXPECT_TRUE(library->removeItemFromPlayList(0));
    EXPECT_THAT(items(), ElementsAre(u"a"_s, u"b"_s));
    EXPECT_TRUE(library->getCurrentPlaylistChangedState());
}

TEST_F(PlayingList, RepeatAndShuffleComeFromTheSettings)
{
    library->setCurrentPlayingList(letters(3));
    library->setActiveItem(2, false);
    EXPECT_FALSE(library->hasNextItem());
    EXPECT_TRUE(library->getNextItem().isNull());
    library->setRepeat(true);
    EXPECT_TRUE(library->hasNextItem());
    EXPECT_EQ(library->getNextItem(), u"a"_s);
    EXPECT_TRUE(library->hasPrevItem());
    EXPECT_EQ(library->getPrevItem(), u"c"_s);
}

TEST_F(PlayingList, ItemFlagOfTwoEqualTextsIsTheFirstOnes)
{
    library->setCurrentPlayingList(letters(3));
    library->storeAllList();
    {
        ConfigFile file(phone.listFile(), false);
        ASSERT_TRUE(file.writeEntry(u"currentplaylist"_s, u"3"_s, u"a"_s));
    }
    restart();
    ASSERT_THAT(items(), ElementsAre(u"a"_s, u"b"_s, u"a"_s));
    library->setItemFlag(u"a"_s, MP_MEDIA_FILE_TYPE_VIDEO);
    library->setItemFlag(u"b"_s, MP_MEDIA_FILE_TYPE_AUDIO);
    library->setItemFlag(u"z"_s, MP_MEDIA_FILE_TYPE_AUDIO);
    EXPECT_EQ(library->getItemFlag(u"a"_s), MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(library->getItemFlag(u"b"_s), MP_MEDIA_FILE_TYPE_AUDIO);
    EXPECT_EQ(library->getItemFlag(u"z"_s), MP_MEDIA_FILE_TYPE_UNKNOWN);
    // The two copies lose one flag together, so the flags of what is behind the first one move.
    ASSERT_TRUE(library->removeItemFromPlayList(2));
    EXPECT_THAT(items(), ElementsAre(u"b"_s));
    EXPECT_EQ(library->getItemFlag(u"b"_s), MP_MEDIA_FILE_TYPE_VIDEO);
}

TEST_F(PlayingList, ItemFlagMovesWithItsItem)
{
    library->setCurrentPlayingList(letters(3));
    library->setItemFlag(u"c"_s, MP_MEDIA_FILE_TYPE_VIDEO);
    ASSERT_TRUE(library->itemUp(2));
    EXPECT_EQ(library->getItemFlag(u"c"_s), MP_MEDIA_FILE_TYPE_VIDEO);
    EXPECT_EQ(library->getItemFlag(u"b"_s), MP_MEDIA_FILE_TYPE_UNKNOWN);
    library->randomizePlayList();
    EXPECT_EQ(library->getItemFlag(u"c"_s), MP_MEDIA_FILE_TYPE_VIDEO);
}

TEST_F(PlayingList, IndexFormTakesPositionsInEachQuerysResult)
{
    const QString jazz = onPhone(u"1.mp3"_s, TableEngine::audio(u"Ann"_s, u"First"_s, u"Jazz"_s));
    const QString rock = onPhone(u"2.mp3"_s, TableEngine::audio(u"Bob"_s, u"Second"_s, u"Rock"_s));
    const QString film = onPhone(u"3.mp4"_s, TableEngine::video(u"Ann"_s));
    refresh();
    library->setCurrentPlayingList(u"/x"_s);
    ASSERT_EQ(library->savePlayList(u"Mine"_s), 0);

    MP_MyLibrary *l = library.get();
    const std::function<QStringList()> queries[] = {
        [l] { return l->getAllMedia(); },
        [l] { return l->getAllAudio(); },
        [l] { return l->getAllVideo(); },
        [l] { return l->getItemListOfArtist(u"Bob"_s); },
        [l] { return l->getItemListOfAlbum(u"First"_s); },
        [l] { return l->getItemListOfGenre(u"Rock"_s); },
        [l] { return l->getAllArtists(); },
        [l] { return l->getAllAlbums(); },
        [l] { return l->getAllGenres(); },
        [l] { return l->getAllPlayLists(); },
        [l] { return l->getItemListOfHistory(); },
        [l] { return l->getItemListFromListFile(u"pl-Mine"_s); },
        [l] { return l->getItemListFromInfoFile(u"media"_s, QString()); },
    };
    library->addItemToHistory(u"http://old"_s);
    library->addItemToHistory(u"http://new"_s);
    for (const auto &query : queries) {
        const QStringList result = query();
        ASSERT_FALSE(result.isEmpty());
        library->clearCurrentPlayingList();
        EXPECT_TRUE(addAt({static_cast<unsigned short>(result.size() - 1), 0}));
        QStringList wanted = {result.last(), result.first()};
        wanted.removeDuplicates();
        EXPECT_EQ(items(), wanted) << qPrintable(result.join(u' '));
    }
    EXPECT_THAT(library->getAllMedia(), ElementsAre(jazz, rock, film));
}

TEST_F(PlayingList, PositionsOutsideTheLastItemListArePassedOver)
{
    EXPECT_TRUE(addAt({0, 65535})) << "before any query there is nothing to take";
    EXPECT_THAT(items(), IsEmpty());
    library->addItemToHistory(u"http://one"_s);
    library->addItemToHistory(u"http://two"_s);
    ASSERT_THAT(library->getItemListOfHistory(), ElementsAre(u"http://two"_s, u"http://one"_s));
    EXPECT_TRUE(addAt({2, 1, 65535, 1, 0}));
    EXPECT_THAT(items(), ElementsAre(u"http://one"_s, u"http://two"_s));
}

TEST_F(PlayingList, NoPositionsAreDeliberatelyAFailureWhileNoItemsAreNone)
{
    library->addItemToHistory(u"http://one"_s);
    library->getItemListOfHistory();
    EXPECT_FALSE(addAt({}));
    EXPECT_TRUE(add({}));
    EXPECT_FALSE(library->getCurrentPlaylistChangedState());
}

TEST_F(PlayingList, LastItemListIsASnapshot)
{
    library->addItemToHistory(u"http://one"_s);
    library->getItemListOfHistory();
    library->addItemToHistory(u"http://two"_s);
    EXPECT_TRUE(addAt({0}));
    EXPECT_THAT(items(), ElementsAre(u"http://one"_s)) << "what the player was shown, not what came later";
}

TEST_F(PlayingList, OperationsOnPlaylistsAndBookmarksKeepTheLastItemList)
{
    library->addItemToHistory(u"http://one"_s);
    library->getItemListOfHistory();
    library->setCurrentPlayingList(letters(2));
    ASSERT_EQ(library->savePlayList(u"Rock"_s), 0);
    library->loadPlayList(u"Rock"_s);
    library->getItemListOfBookmark();
    library->getDefaultPlayListName();
    library->hasPlayList(u"Rock"_s);
    EXPECT_TRUE(addAt({0}));
    EXPECT_THAT(items(), ElementsAre(u"a"_s, u"b"_s, u"http://one"_s));
}

TEST_F(PlayingList, BookmarksAreAddedByNameEachUrlOnce)
{
    library->addItemToBookmark(u"one"_s, u"http://1"_s);
    library->addItemToBookmark(u"two"_s, u"http://2"_s);
    library->addItemToBookmark(u"also one"_s, u"http://1"_s);
    EXPECT_TRUE(addBookmarks({u"two"_s, u"nobody"_s, u"one"_s, u"also one"_s, u"two"_s}));
    EXPECT_THAT(items(), ElementsAre(u"http://2"_s, u"http://1"_s));
    EXPECT_TRUE(library->getCurrentPlaylistChangedState());
    EXPECT_EQ(library->getActiveItem(), u"http://2"_s);
}

TEST_F(PlayingList, NamesThatAreNoBookmarksAddNothing)
{
    EXPECT_TRUE(addBookmarks({}));
    EXPECT_TRUE(addBookmarks({u"nobody"_s}));
    EXPECT_THAT(items(), IsEmpty());
    EXPECT_FALSE(library->getCurrentPlaylistChangedState());
}

TEST_F(PlayingList, LimitOfItemsComesFromTheSettingsForEveryWayToAdd)
{
    startWith(
        {{u"MaxNumOfMediaFile"_s, 100}, {u"MaxNumOfItem"_s, 3}, {u"MaxNumOfBookmark"_s, 9}, {u"MaxNumOfHistory"_s, 9}});
    EXPECT_FALSE(add(letters(5)));
    EXPECT_EQ(items(), letters(3));
    library->setCurrentPlaylistChangedState(false);
    EXPECT_FALSE(add({u"z"_s}));
    EXPECT_TRUE(add({u"a"_s, u"c"_s})) << "already there";
    EXPECT_FALSE(library->getCurrentPlaylistChangedState()) << "nothing was accepted";

    library->setCurrentPlayingList(QStringList{u"p"_s, u"q"_s, u"r"_s, u"s"_s});
    EXPECT_THAT(items(), ElementsAre(u"p"_s, u"q"_s, u"r"_s));
    library->addItemToBookmark(u"one"_s, u"http://1"_s);
    EXPECT_FALSE(addBookmarks({u"one"_s}));
    library->addItemToHistory(u"http://2"_s);
    library->getItemListOfHistory();
    EXPECT_FALSE(addAt({0}));
    EXPECT_EQ(items().size(), 3);
}

TEST_F(PlayingList, FiftyItemsAreTheLimitWithoutSettings)
{
    QStringList many;
    for (int number = 0; number < 51; ++number)
        many.append(QString::number(number));
    EXPECT_FALSE(add(many));
    EXPECT_EQ(items(), many.first(50));
}

TEST_F(PlayingList, AFullListOfTheLongestLengthIsFilledAndSavedInTime)
{
    constexpr int Longest = 65535;
    startWith({{u"MaxNumOfMediaFile"_s, 100}, {u"MaxNumOfItem"_s, Longest}, {u"MaxNumOfList"_s, 9}});
    QStringList many;
    for (int number = 0; number <= Longest; ++number)
        many.append(u"/"_s + QString::number(number));
    EXPECT_FALSE(add(many)) << "one too many";
    EXPECT_TRUE(add(many.first(Longest)));
    EXPECT_EQ(library->getCurrentPlayingListNumber(), static_cast<unsigned int>(Longest));
    library->setActiveItem(65534, false);
    storeAndRestart();
    EXPECT_EQ(items(), many.first(Longest));
    EXPECT_EQ(library->getActiveItem(), u"/65534"_s);
}

TEST_F(PlayingList, TurningShuffleOnPutsTheActiveItemFirst)
{
    library->setCurrentPlayingList(letters(20));
    library->setActiveItem(7, false);
    library->setShuffle(true);
    EXPECT_EQ(library->getActiveItem(), u"h"_s);
    const QStringList played = playedFromHere();
    EXPECT_EQ(sorted(played), letters(20)) << "every item is still to come";
    EXPECT_NE(played, letters(20));
    EXPECT_EQ(items(), letters(20)) << "the list itself stays in order";
    EXPECT_TRUE(library->isLastItem(played.last()));
}

TEST_F(PlayingList, TurningShuffleOffKeepsTheActiveItemAndGoesOnInListOrder)
{
    library->setCurrentPlayingList(letters(20));
    library->setShuffle(true);
    library->setActiveItem(15, false);
    library->setShuffle(false);
    EXPECT_FALSE(library->getShuffle());
    EXPECT_EQ(library->getActiveItem(), u"p"_s);
    EXPECT_EQ(playedFromHere(), letters(20).mid(15));
}

TEST_F(PlayingList, SettingShuffleToWhatItIsKeepsTheOrder)
{
    library->setShuffle(true);
    library->setCurrentPlayingList(letters(20));
    library->setActiveItem(3, true);
    const QStringList order = playedFromHere();
    library->setActiveItem(3, false);
    library->setShuffle(true);
    EXPECT_EQ(playedFromHere(), order);
}

TEST_F(PlayingList, TurningShuffleOnWithoutItemsHasNoActiveItem)
{
    library->setCurrentPlayingList(letters(2));
    library->clearCurrentPlayingList();
    library->setShuffle(true);
    EXPECT_TRUE(library->getActiveItem().isNull());
    EXPECT_TRUE(add({u"x"_s}));
    EXPECT_EQ(library->getActiveItem(), u"x"_s);
}

TEST_F(PlayingList, WithShuffleOnAddedItemsPlayAfterThePresentOnes)
{
    library->setShuffle(true);
    library->setCurrentPlayingList(letters(5));
    library->setActiveItem(0, true);
    const QStringList before = playedFromHere();
    EXPECT_TRUE(add({u"x"_s, u"y"_s, u"z"_s}));
    library->setActiveItem(0, false);
    const QStringList after = playedFromHere();
    EXPECT_EQ(after.first(5), before);
    EXPECT_EQ(sorted(after.mid(5)), (QStringList{u"x"_s, u"y"_s, u"z"_s}));
}

TEST_F(PlayingList, RepeatWithShuffleStartsANewRoundOfEveryItem)
{
    library->setShuffle(true);
    library->setRepeat(true);
    library->setCurrentPlayingList(letters(20));
    library->setActiveItem(0, true);
    QStringList round;
    for (int number = 0; number < 20; ++number)
        round.append(library->getNextItem());
    // The first nineteen end the round that was begun, and the last one begins another.
    QStringList next = {round.last()};
    for (int number = 1; number < 20; ++number)
        next.append(library->getNextItem());
    EXPECT_EQ(sorted(next), letters(20));
}

TEST_F(PlayingList, RandomizedItemsKeepTheActiveOne)
{
    EXPECT_THAT(library->randomizePlayList(), IsEmpty());
    library->setCurrentPlayingList(letters(20));
    library->setActiveItem(4, false);
    const QStringList shuffled = library->randomizePlayList();
    EXPECT_EQ(shuffled, items());
    EXPECT_EQ(sorted(shuffled), letters(20));
    EXPECT_NE(shuffled, letters(20));
    EXPECT_EQ(library->getActiveItem(), u"e"_s);
}

TEST_F(PlayingList, RandomizedIndicesAreTheSameOnes)
{
    QValueList<unsigned int> list = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    library->randomizeList(list);
    EXPECT_THAT(list, testing::UnorderedElementsAre(0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U));
}

TEST_F(PlayingList, NothingIsKeptWithoutStoring)
{
    library->setCurrentPlayingList(letters(2));
    restart();
    EXPECT_THAT(items(), IsEmpty());
}

TEST_F(PlayingList, ComesBackAfterARestart)
{
    library->setCurrentPlayingList(letters(5));
    library->setCurrentPlayingListName(u"Rock"_s);
    library->setActiveItem(3, false);
    library->addItemToBookmark(u"name"_s, u"http://mark"_s);
    library->addItemToHistory(u"http://old"_s);
    library->addItemToHistory(u"http://new"_s);
    storeAndRestart();
    EXPECT_EQ(items(), letters(5));
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
    EXPECT_EQ(library->getActiveItem(), u"d"_s);
    EXPECT_EQ(playedFromHere(), (QStringList{u"d"_s, u"e"_s}));
    EXPECT_THAT(library->getItemListOfBookmark(), ElementsAre(u"name"_s));
    EXPECT_THAT(library->getItemListOfHistory(), ElementsAre(u"http://new"_s, u"http://old"_s));
    EXPECT_EQ(library->getItemFlag(u"a"_s), MP_MEDIA_FILE_TYPE_UNKNOWN) << "flags are not stored";
}

TEST_F(PlayingList, WithShuffleOnTheActiveItemComesBackFirst)
{
    library->setShuffle(true);
    library->setCurrentPlayingList(letters(20));
    library->setActiveItem(3, false);
    storeAndRestart();
    EXPECT_TRUE(library->getShuffle());
    EXPECT_EQ(stored(u"currentplaylist"_s, u"currentitem"_s), u"3"_s);
    EXPECT_EQ(library->getActiveItem(), u"d"_s);
    EXPECT_FALSE(library->hasPrevItem());
    EXPECT_EQ(sorted(playedFromHere()), letters(20));
    EXPECT_EQ(items(), letters(20));
}

TEST_F(PlayingList, StoringDeliberatelyTurnsTheCursorIntoAListPosition)
{
    library->setShuffle(true);
    library->setCurrentPlayingList(letters(20));
    library->setActiveItem(0, true);
    QStringList order = playedFromHere();
    library->setActiveItem(3, false);
    library->storeMyLibrary();
    EXPECT_EQ(library->getActiveItem(), order.at(3)) << "the place now has the number that the index had";
    EXPECT_EQ(items(), letters(20));
}

TEST_F(PlayingList, StoringWithShuffleOffKeepsTheActiveItem)
{
    library->setCurrentPlayingList(letters(5));
    library->setActiveItem(3, false);
    library->storeMyLibrary();
    EXPECT_EQ(library->getActiveItem(), u"d"_s);
}

TEST_F(PlayingList, BookmarkNamedCounterDoesNotSurvive)
{
    library->addItemToBookmark(u"counter"_s, u"http://lost"_s);
    library->addItemToBookmark(u"other"_s, u"http://kept"_s);
    storeAndRestart();
    EXPECT_THAT(library->getItemListOfBookmark(), ElementsAre(u"other"_s));
    EXPECT_EQ(stored(u"bookmark"_s, u"counter"_s), u"2"_s);
}

TEST_F(PlayingList, RestoringIgnoresTheLimits)
{
    library->setCurrentPlayingList(letters(5));
    library->storeMyLibrary();
    startWith({{u"MaxNumOfMediaFile"_s, 100}, {u"MaxNumOfItem"_s, 2}});
    EXPECT_EQ(items(), letters(5));
    EXPECT_FALSE(add({u"z"_s}));
}

TEST_F(PlayingList, RestoringAgainAppends)
{
    library->setCurrentPlayingList(letters(2));
    library->storeAllList();
    library->restoreMyLibrary();
    EXPECT_THAT(items(), ElementsAre(u"a"_s, u"b"_s, u"a"_s, u"b"_s));
}

TEST_F(PlayingList, ShorterListLeavesNothingOfTheLongerOneBehind)
{
    library->setCurrentPlayingList(letters(5));
    library->storeMyLibrary();
    library->setCurrentPlayingList(QStringList{u"x"_s, u"y"_s});
    storeAndRestart();
    EXPECT_THAT(items(), ElementsAre(u"x"_s, u"y"_s));
    EXPECT_EQ(stored(u"currentplaylist"_s, u"3"_s), u"(absent)"_s);
}

TEST_F(PlayingList, LyingListFileGivesWhatItCanAndNeverACrash)
{
    const struct
    {
        QString key;
        QString value;
        qsizetype items;
        bool hasActive;
    } table[] = {
        {u"counter"_s, u"7"_s, 7, true},
        {u"counter"_s, u"-3"_s, 0, false},
        {u"counter"_s, u"many"_s, 0, false},
        {u"counter"_s, u"999999"_s, 65535, true},
        {u"currentitem"_s, u"3"_s, 3, false},
        {u"currentitem"_s, u"-7"_s, 3, false},
        {u"currentitem"_s, u"first"_s, 3, false},
        {u"currentitem"_s, u"2"_s, 3, true},
        {u"currentitem"_s, u"2147483647"_s, 3, false},
    };
    for (const bool shuffle : {false, true}) {
        for (const auto &row : table) {
            library->setShuffle(false);
            library->setCurrentPlayingList(letters(3));
            library->setActiveItem(1, false);
            library->setShuffle(shuffle);
            library->storeMyLibrary();
            {
                ConfigFile file(phone.listFile(), false);
                ASSERT_TRUE(file.writeEntry(u"currentplaylist"_s, row.key, row.value));
            }
            restart();
            SCOPED_TRACE(qPrintable(row.key + u'=' + row.value));
            EXPECT_EQ(items().size(), row.items);
            EXPECT_EQ(!library->getActiveItem().isNull(), row.hasActive);
            // Whatever the cursor is, moving and editing are safe.
            library->getNextItem();
            library->getPrevItem();
            library->isLastItem(u"a"_s);
            library->itemUp(1);
            library->removeItemFromPlayList(0);
            library->randomizePlayList();
            EXPECT_EQ(library->getCurrentPlayingListNumber(), static_cast<unsigned int>(items().size()));
        }
    }
}

TEST_F(PlayingList, WithoutAWorkDirectoryTheListLivesInMemory)
{
    library.reset();
    qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(phone.path(u"nowhere"_s)));
    library = std::make_unique<MP_MyLibrary>(&engine);
    ASSERT_EQ(library->getWorkDirectory(), QString());
    EXPECT_TRUE(add(letters(2)));
    library->storeAllList();
    library->restoreMyLibrary();
    EXPECT_EQ(items(), letters(2));
    EXPECT_THAT(library->getAllMedia(), IsEmpty());
    EXPECT_EQ(library->savePlayList(u"Rock"_s), 1);
}
