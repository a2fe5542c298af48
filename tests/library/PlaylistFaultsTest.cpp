// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// Playlists on a medium that has no room left, and in a list file that is not what it was.

#include "support/NullEngine.h"
#include "support/OnMedium.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <gmock/gmock.h>

#include <memory>

using namespace Qt::StringLiterals;
using testing::ElementsAre;

namespace {

enum Status : UINT8 { Done = 0, Failed = 1, LimitReached = 2 };

constexpr int Lists = 100;
const QStringList Two = {u"/a.mp3"_s, u"http://b"_s};

struct PlaylistFaults : testing::Test
{
    TestPhone phone;
    NullEngine engine;
    std::unique_ptr<MP_MyLibrary> library;

    /// A library object with room for many playlists of any length, on whatever is at the write path by now.
    void start(int lists = Lists, int items = 65535)
    {
        library.reset();
        {
            ConfigFile file(phone.settingsFile(), false);
            ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, 100));
            ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfList"_s, lists));
            ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfItem"_s, items));
            ASSERT_TRUE(file.flush());
        }
        library = std::make_unique<MP_MyLibrary>(&engine);
        ASSERT_EQ(library->getWorkDirectory(), phone.write());
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
    void set(const QString &group, const QString &key, const QString &value) const
    {
        ConfigFile file(phone.listFile(), false);
        ASSERT_TRUE(file.writeEntry(group, key, value));
    }
    QByteArray listBytes() const
    {
        QFile file(phone.listFile());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    void replaceListFile(const QByteArray &bytes) const
    {
        ASSERT_TRUE(QFile::remove(phone.listFile()));
        TestPhone::addFile(phone.listFile(), bytes);
    }
    QString filler() const { return phone.write() + u"/filler"_s; }
    QStringList filesThere() const { return QDir(phone.write()).entryList(QDir::Files | QDir::Hidden); }
};

/// Many long items, which take \a bytes of the list file or a little more.
QStringList itemsOfSize(qsizetype bytes)
{
    const QString path = u"/mmc/mmca1/music/some artist/some album/%1 - some track.mp3"_s;
    QStringList items;
    for (qsizetype number = 0; number * path.size() < bytes; ++number)
        items.append(path.arg(number));
    return items;
}

constexpr const char *Medium = "size=1m";
constexpr qsizetype MoreThanTheMedium = 1'200'000;

} // namespace

// However much of the new version still goes onto the medium.
TEST_F(PlaylistFaults, MediumThatFillsUpInTheMiddleOfASaveCostsNoPlaylist)
{
    for (const int room : {0, 4096, 40'000, 200'000}) {
        SCOPED_TRACE(room);
        EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this, room] {
            start();
            EXPECT_EQ(save(u"Old"_s, Two), Done);
            EXPECT_TRUE(fillMedium(filler(), room));
            const QByteArray before = listBytes();

            EXPECT_EQ(save(u"Big"_s, itemsOfSize(MoreThanTheMedium)), Failed);
            EXPECT_EQ(save(u"Old"_s, itemsOfSize(MoreThanTheMedium)), Failed);
            EXPECT_EQ(listBytes(), before);
            EXPECT_THAT(filesThere(), ElementsAre(u".marvola.info"_s, u".marvola.list"_s, u"filler"_s));
            EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Old"_s));
            EXPECT_EQ(library->loadPlayList(u"Old"_s), Two);

            // Small changes go into the space that the file has, and large ones as soon as there is room.
            EXPECT_EQ(save(u"Small"_s, {u"/s.mp3"_s}), Done);
            EXPECT_TRUE(library->renamePlayList(u"Old"_s, u"Older"_s));
            EXPECT_TRUE(QFile::remove(filler()));
            EXPECT_EQ(save(u"Big"_s, itemsOfSize(200'000)), Done);
            EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Older"_s, u"Small"_s, u"Big"_s));
            EXPECT_EQ(itemsOf(u"Big"_s), itemsOfSize(200'000));
            EXPECT_EQ(itemsOf(u"Older"_s), Two);
            return true;
        }));
    }
}

TEST_F(PlaylistFaults, SaveThatFailsAtTheEndHasDeliberatelyTakenTheName)
{
    EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this] {
        start();
        play(itemsOfSize(MoreThanTheMedium));
        library->setCurrentPlayingListName(u"Old"_s);
        EXPECT_EQ(library->savePlayList(u"Big"_s), Failed);
        EXPECT_EQ(library->getCurrentPlayingListName(), u"Big"_s);
        EXPECT_FALSE(library->hasPlayList(u"Big"_s));
        EXPECT_EQ(library->getCurrentPlayingList(), itemsOfSize(MoreThanTheMedium)) << "nothing is lost yet";
        return true;
    }));
}

TEST_F(PlaylistFaults, NewThatFailsAtTheEndHasDeliberatelyEmptiedTheList)
{
    EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this] {
        start();
        EXPECT_EQ(save(u"Old"_s, Two), Done);
        play(itemsOfSize(MoreThanTheMedium));
        library->setCurrentPlayingListName(u"Old"_s);
        EXPECT_EQ(library->newPlayList(), Failed);
        EXPECT_EQ(library->getCurrentPlayingListNumber(), 0U);
        EXPECT_EQ(library->getCurrentPlayingListName(), QString());
        EXPECT_TRUE(library->getActiveItem().isNull());
        EXPECT_EQ(itemsOf(u"Old"_s), Two) << "the playlist is as it was";
        return true;
    }));
}

// The list file has no space of its own left, and the medium has none.
TEST_F(PlaylistFaults, RenamingThatFailsAtTheEndHasDeliberatelyRenamedTheCurrentList)
{
    EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this] {
        start();
        EXPECT_EQ(save(u"Big"_s, itemsOfSize(150'000)), Done);
        EXPECT_TRUE(fillMedium(filler(), 0));
        EXPECT_FALSE(library->renamePlayList(u"Big"_s, u"Bigger"_s));
        EXPECT_EQ(library->getCurrentPlayingListName(), u"Bigger"_s);
        EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Big"_s));
        EXPECT_EQ(itemsOf(u"Big"_s), itemsOfSize(150'000));
        return true;
    }));
}

TEST_F(PlaylistFaults, DeletingOnAFullMediumFailsWholeOrNotAtAll)
{
    EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this] {
        start();
        EXPECT_EQ(save(u"Old"_s, Two), Done);
        EXPECT_EQ(save(u"Big"_s, itemsOfSize(150'000)), Done);
        EXPECT_TRUE(fillMedium(filler(), 0));
        EXPECT_FALSE(library->deletePlayList(u"Old"_s));
        EXPECT_FALSE(library->deletePlayList(u"nobody"_s));
        EXPECT_FALSE(library->deleteAllPlayLists());
        EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Old"_s, u"Big"_s));
        EXPECT_EQ(itemsOf(u"Big"_s), itemsOfSize(150'000));
        return true;
    }));
}

TEST_F(PlaylistFaults, SavedListsThatFindNoRoomStayAsTheyWere)
{
    EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this] {
        start();
        play(Two);
        library->addItemToHistory(u"http://old"_s);
        library->storeAllList();
        EXPECT_TRUE(fillMedium(filler(), 20'000));
        play(itemsOfSize(MoreThanTheMedium));
        library->addItemToHistory(u"http://new"_s);
        library->storeAllList();
        EXPECT_EQ(library->getCurrentPlayingList(), itemsOfSize(MoreThanTheMedium));
        start();
        EXPECT_EQ(library->getCurrentPlayingList(), Two);
        EXPECT_THAT(library->getItemListOfHistory(), ElementsAre(u"http://old"_s));
        return true;
    }));
}

// The items are cut and that is what is told, whether or not the cut playlist could be kept.
TEST_F(PlaylistFaults, CutSaveDeliberatelyTellsOfTheLimitOnly)
{
    EXPECT_TRUE(holdsOnMedium(phone.write(), Medium, [this] {
        start();
        const QStringList items = itemsOfSize(150'000);
        play(items);
        library->storeAllList();
        start(Lists, static_cast<int>(items.size()) - 1);
        EXPECT_TRUE(fillMedium(filler(), 0));
        EXPECT_EQ(library->getCurrentPlayingList(), items);
        EXPECT_EQ(library->savePlayList(u"Big"_s), LimitReached);
        EXPECT_FALSE(library->hasPlayList(u"Big"_s));
        EXPECT_EQ(library->getCurrentPlayingListName(), QString());
        return true;
    }));
}

TEST_F(PlaylistFaults, CountOfTheCatalogueThatLiesGivesWhatItSaysAndCostsNoItems)
{
    const struct
    {
        QString counter;
        QStringList listed;
        UINT8 status;
        QStringList afterwards;
    } table[] = {
        {u"3"_s, {u"a"_s, u"b"_s, u"c"_s}, Done, {u"a"_s, u"b"_s, u"c"_s, u"new"_s}},
        {u"2"_s, {u"a"_s, u"b"_s}, Done, {u"a"_s, u"b"_s, u"new"_s}},
        {u"0"_s, {}, Done, {u"new"_s}},
        {u"-3"_s, {}, Done, {u"new"_s}},
        {u"many"_s, {}, Done, {u"new"_s}},
        {u""_s, {}, Done, {u"new"_s}},
        {u"4294967299"_s, {}, Done, {u"new"_s}},
        {u"99999"_s, {u"a"_s, u"b"_s, u"c"_s}, LimitReached, {u"a"_s, u"b"_s, u"c"_s}},
    };
    for (const auto &row : table) {
        SCOPED_TRACE(qPrintable(row.counter));
        start();
        ASSERT_TRUE(library->deleteAllPlayLists());
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
            ASSERT_EQ(save(name, Two), Done);
        set(u"allplaylist"_s, u"counter"_s, row.counter);

        EXPECT_EQ(library->getAllPlayLists().first(row.listed.size()), row.listed);
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
            EXPECT_EQ(library->hasPlayList(name), row.listed.contains(name)) << qPrintable(name);
        EXPECT_FALSE(library->getDefaultPlayListName().isEmpty());
        EXPECT_EQ(save(u"new"_s, {u"/n.mp3"_s}), row.status);
        EXPECT_EQ(library->getAllPlayLists().first(row.afterwards.size()), row.afterwards);
        for (const QString &name : {u"a"_s, u"b"_s, u"c"_s})
            EXPECT_EQ(itemsOf(name), Two) << qPrintable(name);
    }
}

TEST_F(PlaylistFaults, CountOfItemsThatLiesGivesWhatItSays)
{
    const struct
    {
        QString counter;
        QStringList loaded;
        qsizetype played; ///< places of the play order, one for each item claimed
    } table[] = {
        {u"2"_s, Two, 2},  {u"1"_s, Two.first(1), 1}, {u"9"_s, Two, 9},  {u"-2"_s, {}, 0},
        {u"two"_s, {}, 0}, {u"99999"_s, Two, 65535},  {u"2.5"_s, {}, 0},
    };
    for (const auto &row : table) {
        SCOPED_TRACE(qPrintable(row.counter));
        start();
        ASSERT_EQ(save(u"Rock"_s, Two), Done);
        set(u"pl-Rock"_s, u"counter"_s, row.counter);
        EXPECT_EQ(library->loadPlayList(u"Rock"_s), row.loaded);
        EXPECT_EQ(library->getActiveItem(), row.loaded.value(0));
        EXPECT_EQ(library->getCurrentPlayingListName(), u"Rock"_s);
        // Going on is safe, whatever the order holds.
        library->setShuffle(true);
        library->setRepeat(true);
        for (int step = 0; step < 5; ++step)
            library->getNextItem();
        library->setShuffle(false);
        EXPECT_EQ(library->getCurrentPlayingList(), row.loaded);
        EXPECT_EQ(library->savePlayList(u"Rock"_s), Done);
        EXPECT_EQ(itemsOf(u"Rock"_s), row.loaded);
    }
}

TEST_F(PlaylistFaults, ListFileReplacedByAnythingIsTakenAsItIsAndWrittenAgain)
{
    start();
    ASSERT_EQ(save(u"Rock"_s, Two), Done);
    const QByteArray whole = listBytes();
    QByteArray noise;
    for (int number = 0; number < 5000; ++number)
        noise.append(static_cast<char>(number * 7919 % 251));
    const std::pair<const char *, QByteArray> table[] = {
        {"nothing", {}},
        {"blank", QByteArray(50'000, '\0')},
        {"noise", noise},
        {"a half", whole.first(whole.size() / 2)},
        {"its first line", whole.first(whole.indexOf('\n') + 1)},
        {"headings only", "[allplaylist]\n[pl-Rock]\n"},
        {"another system's text", "[allplaylist]\r\ncounter=1\r\n1=pl-Pop\r\n"},
    };
    for (const auto &[what, bytes] : table) {
        SCOPED_TRACE(what);
        replaceListFile(bytes);
        EXPECT_FALSE(library->hasPlayList(u"Other"_s));
        EXPECT_FALSE(library->renamePlayList(u"Other"_s, u"Another"_s));
        library->loadPlayList(u"Rock"_s);
        EXPECT_EQ(save(u"New"_s, Two), Done);
        EXPECT_TRUE(library->hasPlayList(u"New"_s));
        EXPECT_EQ(library->loadPlayList(u"New"_s), Two);
        EXPECT_EQ(library->newPlayList(), Done);
        EXPECT_EQ(itemsOf(u"New"_s), Two);
        EXPECT_TRUE(library->deletePlayList(u"New"_s));
    }
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Pop"_s)) << "what the last file held";
}

TEST_F(PlaylistFaults, SavedListsThatWereNotReadStayHoweverTheirPlaceIsChosenAgain)
{
    start();
    play(Two);
    library->storeAllList();
    const QString away = phone.path(u"away"_s);
    ASSERT_TRUE(QFile::rename(phone.listFile(), away) && QDir().mkdir(phone.listFile()));
    start();
    EXPECT_TRUE(library->getCurrentPlayingList().isEmpty());
    ASSERT_TRUE(QDir().rmdir(phone.listFile()) && QFile::rename(away, phone.listFile()));
    ASSERT_TRUE(QFile::link(phone.write(), phone.path(u"link"_s)));
    for (const QString &place :
         {phone.write(), phone.write() + u"/."_s, phone.path(u"link"_s), phone.card2(), phone.write()}) {
        ASSERT_TRUE(library->setWorkDirectory(place));
        library->storeAllList();
    }
    start();
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
}

TEST_F(PlaylistFaults, SavedListsGoIntoWhateverFileIsThereNow)
{
    start();
    play(Two);
    library->storeAllList();
    replaceListFile("[currentplaylist]\ncounter=3\n1=x\n2=y\n3=z\n[allplaylist]\ncounter=1\n1=pl-Pop\n");
    library->setActiveItem(1, false);
    library->storeAllList();
    EXPECT_EQ(stored(u"currentplaylist"_s, u"3"_s), u"(absent)"_s);
    start();
    EXPECT_EQ(library->getCurrentPlayingList(), Two);
    EXPECT_EQ(library->getActiveItem(), Two.at(1));
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"Pop"_s));
}
