// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Named playlists as the player meets them, through the library object.

#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <memory>

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

enum Status : UINT8 { Done = 0, Failed = 1, LimitReached = 2, EmptyName = 3 };

constexpr quint16 Lists = 4;
constexpr quint16 Items = 3;

struct Playlists : testing::Test
{
    TestPhone phone;
    TableEngine engine;
    std::unique_ptr<MP_MyLibrary> library;

    void SetUp() override { startWith(Lists, Items); }
    ~Playlists() override
    {
        if (library)
            library->cancelRefreshMyLibrary();
    }

    void startWith(int lists, int items)
    {
        library.reset();
        setLimits(lists, items);
        library = std::make_unique<MP_MyLibrary>(&engine);
    }
    void setLimits(int lists, int items) const
    {
        ConfigFile file(phone.settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, 100));
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfList"_s, lists));
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfItem"_s, items));
    }
    void play(const QStringList &items) const
    {
        library->clearCurrentPlayingList();
        library->setCurrentPlayingList(items);
    }
    UINT8 save(const QString &name, const QStringList &items) const
    {
        play(items);
        return library->savePlayList(name);
    }
    QStringList itemsOf(const QString &name) const { return library->getItemListFromListFile(u"pl-"_s + name); }
    QString stored(const QString &group, const QString &key) const
    {
        return ConfigFile(phone.listFile(), false).readEntry(group, key, u"(absent)"_s);
    }
    /// The list file cannot be written any more: what is there now has another kind.
    void breakListFile() const
    {
        ASSERT_TRUE(QFile::remove(phone.listFile()));
        ASSERT_TRUE(QDir().mkdir(phone.listFile()));
    }
};

const QStringList Two = {u"/a.mp3"_s, u"http://b"_s};

} // namespace

TEST_F(Playlists, SavedOneIsListedNamedAndLoaded)
{
    EXPECT_FALSE(library->hasPlayList(u"Rock"_s));
    EXPECT_EQ(save(u"Rock"_s, Two), Done);
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
    EXPECT_TRUE(library->hasPlayList(u"Rock"_s));
    EXPECT_FALSE(library->hasPlayList(u"rock"_s));
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Rock"_s));
    play({u"/x.mp3"_s});
    EXPECT_EQ(library->loadPlayList(u"Rock"_s), Two);
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
    EXPECT_EQ(library->getActiveItem(), u"/a.mp3"_s);
}

TEST_F(Playlists, AnotherLibraryObjectHasThemAtOnce)
{
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    MP_MyLibrary other(&engine);
    EXPECT_THAT(other.getAllPlayLists(), ElementsAre(u"Rock"_s));
    EXPECT_EQ(other.loadPlayList(u"Rock"_s), Two);
}

TEST_F(Playlists, LoadingAnUnknownNameChangesNothing)
{
    play(Two);
    library->setCurrentPlayingListName(u"Mine"_s);
    EXPECT_THAT(library->loadPlayList(u"Rock"_s), IsEmpty());
    EXPECT_THAT(library->loadPlayList(QString()), IsEmpty());
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Mine"_s);
}

TEST_F(Playlists, LoadedWithShuffleOnTheyPlayInAnotherOrder)
{
    startWith(Lists, 100);
    QStringList many;
    for (int number = 0; number < 30; ++number)
        many.append(QString::number(number));
    ASSERT_EQ(save(u"Many"_s, many), Done);
    library->setShuffle(true);
    EXPECT_EQ(library->loadPlayList(u"Many"_s), many);
    QStringList played = {library->getActiveItem()};
    while (library->hasNextItem())
        played.append(library->getNextItem());
    EXPECT_NE(played, many);
    EXPECT_THAT(played, testing::UnorderedElementsAreArray(many));
    EXPECT_EQ(library->getCurrentPlayingList(), many);
}

TEST_F(Playlists, EmptyNameHasItsOwnStatus)
{
    EXPECT_EQ(save(QString(), Two), EmptyName);
    EXPECT_EQ(save(u""_s, Two), EmptyName);
    EXPECT_THAT(library->getAllPlayLists(), IsEmpty());
}

TEST_F(Playlists, CatalogueLimitComesFromTheSettings)
{
    for (const QString &name : {u"1"_s, u"2"_s, u"3"_s, u"4"_s})
        EXPECT_EQ(save(name, Two), Done);
    EXPECT_EQ(save(u"5"_s, Two), LimitReached);
    EXPECT_EQ(library->getCurrentPlayingListName(), QString());
    EXPECT_FALSE(library->hasPlayList(u"5"_s));
    EXPECT_EQ(save(u"2"_s, {u"/new.mp3"_s}), Done) << "a known name is not a further playlist";
    EXPECT_EQ(library->newPlayList(), LimitReached);
    EXPECT_EQ(library->getCurrentPlayingListNumber(), 1U) << "the list stays";
}

TEST_F(Playlists, NewIsDeliberatelyRefusedAtTheLimitOnlyNotBeyondIt)
{
    for (const QString &name : {u"1"_s, u"2"_s, u"3"_s})
        ASSERT_EQ(save(name, Two), Done);
    startWith(3, Items);
    EXPECT_EQ(library->newPlayList(), LimitReached);
    startWith(2, Items);
    EXPECT_EQ(library->newPlayList(), Done);
    play(Two);
    EXPECT_EQ(library->savePlayList(u"4"_s), LimitReached) << "saving refuses beyond the limit, too";
}

TEST_F(Playlists, TwoPlaylistsAreTheLimitWithoutSettings)
{
    ASSERT_TRUE(QFile::remove(phone.settingsFile()));
    library = std::make_unique<MP_MyLibrary>(&engine);
    EXPECT_EQ(save(u"1"_s, Two), Done);
    EXPECT_EQ(save(u"2"_s, Two), Done);
    EXPECT_EQ(save(u"3"_s, Two), LimitReached);
}

TEST_F(Playlists, ItemLimitCutsAndTheNameIsDeliberatelyNotTaken)
{
    const QStringList five = {u"a"_s, u"b"_s, u"c"_s, u"d"_s, u"e"_s};
    startWith(Lists, 5);
    play(five);
    library->storeMyLibrary();
    startWith(Lists, Items);
    ASSERT_EQ(library->getCurrentPlayingList(), five) << "restoring knows no limit";
    EXPECT_EQ(library->savePlayList(u"Rock"_s), LimitReached);
    EXPECT_EQ(library->getCurrentPlayingListName(), QString());
    EXPECT_EQ(itemsOf(u"Rock"_s), five.first(3));
    EXPECT_EQ(stored(u"pl-Rock"_s, u"counter"_s), u"3"_s);
    EXPECT_EQ(stored(u"pl-Rock"_s, u"4"_s), u"(absent)"_s);

    library->setCurrentPlayingListName(u"Rock"_s);
    EXPECT_EQ(library->newPlayList(), LimitReached);
    EXPECT_EQ(library->getCurrentPlayingList(), five);
}

TEST_F(Playlists, LoadingKnowsNoLimit)
{
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    startWith(Lists, 1);
    EXPECT_EQ(library->loadPlayList(u"Rock"_s), Two);
}

TEST_F(Playlists, NewStoresTheListBackAndStartsAnEmptyOne)
{
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    ASSERT_TRUE(library->removeItemFromPlayList(0));
    EXPECT_EQ(library->newPlayList(), Done);
    EXPECT_EQ(library->getCurrentPlayingListNumber(), 0U);
    EXPECT_EQ(library->getCurrentPlayingListName(), QString());
    EXPECT_THAT(itemsOf(u"Rock"_s), ElementsAre(u"http://b"_s));
    play(Two);
    EXPECT_EQ(library->newPlayList(), Done);
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Rock"_s)) << "a list without a name is given up";
}

TEST_F(Playlists, DeletingKeepsTheOthersInOrder)
{
    for (const QString &name : {u"1"_s, u"2"_s, u"3"_s})
        ASSERT_EQ(save(name, Two), Done);
    EXPECT_TRUE(library->deletePlayList(u"2"_s));
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"1"_s, u"3"_s));
    EXPECT_EQ(library->getCurrentPlayingListName(), u"3"_s);
    EXPECT_TRUE(library->deletePlayList(u"3"_s));
    EXPECT_EQ(library->getCurrentPlayingListName(), u"3"_s) << "the list being played keeps its name";
    EXPECT_FALSE(library->deletePlayList(QString()));
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"1"_s));
}

TEST_F(Playlists, DeletingAnUnknownNameDeliberatelyCostsTheCatalogueItsEntries)
{
    ASSERT_EQ(save(u"1"_s, Two), Done);
    EXPECT_FALSE(library->deletePlayList(u"nobody"_s));
    EXPECT_THAT(library->getAllPlayLists(), IsEmpty());
    EXPECT_FALSE(library->hasPlayList(u"1"_s));
    EXPECT_EQ(stored(u"allplaylist"_s, u"counter"_s), u"1"_s);
}

TEST_F(Playlists, DeletingAllKeepsTheListBeingPlayed)
{
    ASSERT_EQ(save(u"1"_s, Two), Done);
    ASSERT_EQ(save(u"2"_s, Two), Done);
    EXPECT_TRUE(library->deleteAllPlayLists());
    EXPECT_THAT(library->getAllPlayLists(), IsEmpty());
    EXPECT_THAT(itemsOf(u"1"_s), IsEmpty());
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
    EXPECT_EQ(library->getCurrentPlayingListName(), u"2"_s);
}

TEST_F(Playlists, RenamingMovesTheCurrentListsNameAlong)
{
    ASSERT_EQ(save(u"Pop"_s, Two), Done);
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    EXPECT_FALSE(library->renamePlayList(u"Rock"_s, u"Pop"_s)) << "taken";
    EXPECT_FALSE(library->renamePlayList(u"nobody"_s, u"Jazz"_s));
    EXPECT_FALSE(library->renamePlayList(u"Rock"_s, QString()));
    EXPECT_TRUE(library->renamePlayList(u"nobody"_s, u"nobody"_s));
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
    EXPECT_TRUE(library->renamePlayList(u"Rock"_s, u"Jazz"_s));
    EXPECT_EQ(library->getCurrentPlayingListName(), u"Jazz"_s);
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Pop"_s, u"Jazz"_s));
    EXPECT_EQ(itemsOf(u"Jazz"_s), Two);
}

TEST_F(Playlists, DefaultNameIsOneThatNoneHas)
{
    // The counter is the process's and other tests may have moved it on.
    const QString first = library->getDefaultPlayListName();
    ASSERT_TRUE(first.startsWith(u"playlist"_s));
    EXPECT_EQ(library->getDefaultPlayListName(), first) << "not reserved";
    ASSERT_EQ(save(first, Two), Done);
    const QString second = library->getDefaultPlayListName();
    EXPECT_EQ(second.mid(8).toInt(), first.mid(8).toInt() + 1);
}

TEST_F(Playlists, DefaultNamesAreCountedForAllLibraryObjectsTogether)
{
    const QString first = library->getDefaultPlayListName();
    ASSERT_EQ(save(first, Two), Done);
    const QString second = library->getDefaultPlayListName();
    EXPECT_NE(second, first);
    // Another object, with a catalogue of its own in which the first name is free.
    ASSERT_TRUE(QDir().mkdir(phone.path(u"other"_s)));
    qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(phone.path(u"other"_s)));
    const MP_MyLibrary other(&engine);
    ASSERT_FALSE(other.hasPlayList(first));
    EXPECT_EQ(other.getDefaultPlayListName(), second);
}

TEST_F(Playlists, NamesMayBeAnyText)
{
    for (const QString &name : {u"a=b]\n[c"_s, u" 歌 \"x\" "_s, u"allplaylist"_s, u"counter"_s}) {
        EXPECT_EQ(save(name, Two), Done) << qPrintable(name);
        EXPECT_TRUE(library->hasPlayList(name));
        EXPECT_EQ(library->loadPlayList(name), Two);
    }
    EXPECT_EQ(library->getAllPlayLists().size(), 4);
}

TEST_F(Playlists, WithoutAWorkDirectoryEverythingFails)
{
    library.reset();
    qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(phone.path(u"nowhere"_s)));
    library = std::make_unique<MP_MyLibrary>(&engine);
    EXPECT_EQ(save(u"Rock"_s, Two), Failed);
    EXPECT_EQ(library->newPlayList(), Failed);
    EXPECT_THAT(library->loadPlayList(u"Rock"_s), IsEmpty());
    EXPECT_FALSE(library->deletePlayList(u"Rock"_s));
    EXPECT_FALSE(library->deleteAllPlayLists());
    EXPECT_FALSE(library->renamePlayList(u"Rock"_s, u"Pop"_s));
    EXPECT_TRUE(library->renamePlayList(u"Rock"_s, u"Rock"_s));
    EXPECT_FALSE(library->hasPlayList(u"Rock"_s));
    EXPECT_TRUE(library->getDefaultPlayListName().isNull());
    EXPECT_THAT(library->getAllPlayLists(), IsEmpty());
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
}

TEST_F(Playlists, AListFileThatCannotBeWrittenIsAFailureEachTime)
{
    breakListFile();
    EXPECT_EQ(save(u"Rock"_s, Two), Failed);
    library->setCurrentPlayingListName(u"Rock"_s);
    EXPECT_EQ(library->newPlayList(), Failed);
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
    EXPECT_FALSE(library->deleteAllPlayLists());
    EXPECT_FALSE(library->hasPlayList(u"Rock"_s));
    EXPECT_THAT(library->loadPlayList(u"Rock"_s), IsEmpty());
    library->storeAllList();
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
}

TEST_F(Playlists, ListFileReplacedFromOutsideIsTakenAsItIsNow)
{
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    const QString aside = phone.path(u"aside"_s);
    ASSERT_TRUE(QFile::rename(phone.listFile(), aside));
    EXPECT_THAT(library->getAllPlayLists(), IsEmpty());
    ASSERT_EQ(save(u"Pop"_s, Two), Done);
    ASSERT_TRUE(QFile::remove(phone.listFile()));
    ASSERT_TRUE(QFile::rename(aside, phone.listFile()));
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Rock"_s));
    ASSERT_EQ(save(u"Jazz"_s, Two), Done);
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Rock"_s, u"Jazz"_s));
}

TEST_F(Playlists, StoringTheSavedListsKeepsThem)
{
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    play({u"/x.mp3"_s});
    library->storeMyLibrary();
    MP_MyLibrary other(&engine);
    EXPECT_EQ(other.loadPlayList(u"Rock"_s), Two);
}

TEST_F(Playlists, OneSavedWhileARefreshRunsSurvivesIt)
{
    TestPhone::addFile(phone.phone() + u"/1.mp3"_s);
    TestPhone::addFile(phone.phone() + u"/2.mp3"_s);
    engine.other = TableEngine::audio(u"Ann"_s, u"First"_s, u"Pop"_s);
    ASSERT_EQ(save(u"Before"_s, Two), Done);
    QSemaphore inScan;
    QSemaphore saved;
    engine.hook = [&](const QString &call) {
        if (call == u"kind 2.mp3"_s) {
            inScan.release();
            saved.acquire();
        }
    };
    library->refreshMyLibrary();
    inScan.acquire();
    ASSERT_TRUE(library->isMyLibraryRefreshing());
    EXPECT_EQ(save(u"Meanwhile"_s, {u"/m.mp3"_s}), Done);
    library->storeAllList();
    EXPECT_TRUE(library->deletePlayList(u"Before"_s));
    saved.release();
    while (library->isMyLibraryRefreshing())
        QThread::yieldCurrentThread();
    library->cancelRefreshMyLibrary();

    EXPECT_THAT(library->getAllArtists(), ElementsAre(u"Ann"_s)) << "the refresh wrote its index";
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Meanwhile"_s));
    EXPECT_THAT(itemsOf(u"Meanwhile"_s), ElementsAre(u"/m.mp3"_s));
    EXPECT_EQ(stored(u"currentplaylist"_s, u"1"_s), u"/m.mp3"_s);
}
