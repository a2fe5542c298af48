// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The refresh and the queries as the player meets them, through the library object.

#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QTranslator>

#include <gmock/gmock.h>

#include <atomic>
#include <mutex>

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QString PhoneName = u"TXT_RID_DTITLE_PHONE"_s;
const QString CardName = u"TXT_RID_DTITLE_MEMORY_CARD"_s;
const QString Unknown = u"<TXT_RID_MENU_UNKNOWN>"_s;

struct Refresh : testing::Test
{
    TestPhone phone;
    TableEngine engine;
    std::unique_ptr<MP_MyLibrary> library;
    std::mutex mutex;
    QList<int> progress;
    QThread *emitter = nullptr;

    ~Refresh() override
    {
        if (library)
            library->cancelRefreshMyLibrary();
    }

    void makeLibrary()
    {
        library = std::make_unique<MP_MyLibrary>(&engine);
        QObject::connect(
            library.get(), &MP_MyLibrary::refreshContinue, library.get(),
            [this](UINT8 percent) {
                const std::lock_guard lock(mutex);
                progress.append(percent);
                emitter = QThread::currentThread();
            },
            Qt::DirectConnection);
    }
    // Waits for the end without asking for it.
    void waitForEnd() const
    {
        while (library->isMyLibraryRefreshing())
            QThread::yieldCurrentThread();
        library->cancelRefreshMyLibrary();
    }
    void refresh()
    {
        if (!library)
            makeLibrary();
        library->refreshMyLibrary();
        waitForEnd();
    }
    QString onPhone(const QString &name) const { return TestPhone::addFile(phone.phone() + u'/' + name); }
    QString onCard1(const QString &name) const { return TestPhone::addFile(phone.card1() + u'/' + name); }
    QString onCard2(const QString &name) const { return TestPhone::addFile(phone.card2() + u'/' + name); }
    void limitMediaFiles(int count) const
    {
        ConfigFile file(phone.settingsFile(), false);
        ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, count));
    }
};

} // namespace

TEST_F(Refresh, EveryQueryIsEmptyBeforeTheFirst)
{
    makeLibrary();
    EXPECT_THAT(library->getAllMedia(), IsEmpty());
    EXPECT_THAT(library->getAllAudio(), IsEmpty());
    EXPECT_THAT(library->getAllVideo(), IsEmpty());
    EXPECT_THAT(library->getAllArtists(), IsEmpty());
    EXPECT_THAT(library->getAllAlbums(), IsEmpty());
    EXPECT_THAT(library->getAllGenres(), IsEmpty());
    EXPECT_THAT(library->getAllPlayLists(), IsEmpty());
    EXPECT_THAT(library->getItemListOfArtist(Unknown), IsEmpty());
    EXPECT_THAT(library->getItemListOfAlbum(Unknown), IsEmpty());
    EXPECT_THAT(library->getItemListOfGenre(Unknown), IsEmpty());
}

TEST_F(Refresh, IndexesPhoneThenBothCards)
{
    const QString song = onPhone(u"a/song.mp3"_s);
    const QString clip = onPhone(u"clip.mp4"_s);
    const QString untagged = onCard1(u"untagged.ogg"_s);
    const QString second = onCard2(u"second.mp3"_s);
    onPhone(u"notes.txt"_s);
    engine.answers[u"song.mp3"_s] = TableEngine::audio(u"Ann"_s, u"First"_s, u"Pop"_s);
    engine.answers[u"clip.mp4"_s] = TableEngine::video(u"Ann"_s, u"Films"_s, u"Film"_s);
    engine.answers[u"untagged.ogg"_s] = TableEngine::audio({}, {}, {});
    engine.answers[u"second.mp3"_s] = TableEngine::audio(u"Ann"_s, u"Second"_s, u"Rock"_s);
    refresh();

    EXPECT_THAT(library->getAllMedia(), ElementsAre(clip, song, untagged, second));
    EXPECT_THAT(library->getAllAudio(), ElementsAre(song, untagged, second));
    EXPECT_THAT(library->getAllVideo(), ElementsAre(clip));
    EXPECT_THAT(library->getAllArtists(), ElementsAre(u"Ann"_s, Unknown));
    EXPECT_THAT(library->getAllAlbums(), ElementsAre(u"First"_s, Unknown, u"Second"_s));
    EXPECT_THAT(library->getAllGenres(), ElementsAre(u"Pop"_s, Unknown, u"Rock"_s));
    EXPECT_THAT(library->getItemListOfArtist(u"Ann"_s), ElementsAre(song, second)) << "never a video";
    EXPECT_THAT(library->getItemListOfArtist(u"ann"_s), IsEmpty());
    EXPECT_THAT(library->getItemListOfArtist(Unknown), ElementsAre(untagged));
    EXPECT_THAT(library->getItemListOfAlbum(u"Second"_s), ElementsAre(second));
    EXPECT_THAT(library->getItemListOfAlbum(u"Films"_s), IsEmpty());
    EXPECT_THAT(library->getItemListOfGenre(u"Pop"_s), ElementsAre(song));
}

TEST_F(Refresh, ReportsFrom0To100OnTheWorkerThread)
{
    for (int number = 0; number < 250; ++number)
        onPhone(u"%1.mp3"_s.arg(number, 3, 10, QChar(u'0')));
    limitMediaFiles(250);
    refresh();
    QList<int> expected = {0};
    for (int records = 2; records <= 250; records += 2)
        expected.append(records * 100 / 250);
    expected.append(100);
    EXPECT_EQ(progress, expected) << "every second record, then the end";
    EXPECT_NE(emitter, QThread::currentThread());
}

TEST_F(Refresh, OfNothingRewritesTheIndexAsEmpty)
{
    const QString song = onPhone(u"song.mp3"_s);
    refresh();
    ASSERT_THAT(library->getAllMedia(), ElementsAre(song));
    ASSERT_TRUE(QFile::remove(song));
    progress.clear();
    refresh();
    EXPECT_THAT(progress, ElementsAre(0, 100));
    EXPECT_THAT(library->getAllMedia(), IsEmpty());
    EXPECT_THAT(library->getAllArtists(), IsEmpty());
    const ConfigFile file(phone.listFile(), false);
    for (const QString &group : {u"artistlist"_s, u"albumlist"_s, u"genrelist"_s}) {
        const QMap<QString, QString> entries = file.getGroupEntriesKeyList(group);
        EXPECT_EQ(entries, (QMap<QString, QString>{{u"counter"_s, u"0"_s}})) << qPrintable(group);
    }
}

TEST_F(Refresh, WithoutAnyPlaceRewritesTheIndexAsEmpty)
{
    for (const char *name : {"TROVE_DATA_PATH", "CARD1_MOUNT_PATH", "CARD2_MOUNT_PATH"})
        qunsetenv(name);
    refresh();
    EXPECT_THAT(progress, ElementsAre(0, 100));
}

TEST_F(Refresh, WithoutAWorkDirectoryEndsAtOnce)
{
    ASSERT_TRUE(QDir().mkpath(phone.write() + u"/haha/inside"_s));
    onPhone(u"song.mp3"_s);
    makeLibrary();
    ASSERT_TRUE(library->getWorkDirectory().isEmpty());
    library->refreshMyLibrary();
    EXPECT_THAT(progress, ElementsAre(100));
    EXPECT_EQ(emitter, QThread::currentThread());
    EXPECT_FALSE(library->isMyLibraryRefreshing());
    EXPECT_THAT(library->getAllMedia(), IsEmpty());
    EXPECT_THAT(library->getAllArtists(), IsEmpty());
    EXPECT_THAT(engine.calls(), IsEmpty());
}

TEST_F(Refresh, WhileOneRunsASecondDoesNothing)
{
    onPhone(u"song.mp3"_s);
    QSemaphore go;
    engine.hook = [&go](const QString &call) {
        if (call == u"kind song.mp3"_s)
            go.acquire();
    };
    makeLibrary();
    library->refreshMyLibrary();
    EXPECT_TRUE(library->isMyLibraryRefreshing());
    library->refreshMyLibrary();
    go.release(2);
    waitForEnd();
    EXPECT_THAT(progress, ElementsAre(0, 100, 100));
    EXPECT_EQ(engine.calls().count(u"kind song.mp3"_s), 1);
}

TEST_F(Refresh, UnknownPlaceEndsTheSearchOrder)
{
    const QString song = onPhone(u"song.mp3"_s);
    onCard1(u"card.mp3"_s);
    makeLibrary();
    library->setRefreshFlag({PhoneName, u"Nowhere"_s, CardName});
    refresh();
    EXPECT_THAT(library->getAllMedia(), ElementsAre(song));
    EXPECT_THAT(library->cancelRefreshMyLibrary(), ElementsAre(PhoneName));
}

TEST_F(Refresh, FollowsTheSearchOrder)
{
    const QString song = onPhone(u"song.mp3"_s);
    const QString card = onCard2(u"card.mp3"_s);
    makeLibrary();
    library->setRefreshFlag({CardName, PhoneName});
    refresh();
    EXPECT_THAT(library->getAllMedia(), ElementsAre(card, song));
    EXPECT_THAT(library->cancelRefreshMyLibrary(), ElementsAre(CardName, PhoneName));
}

TEST_F(Refresh, CancelLeavesAConsistentShorterIndex)
{
    const QString first = onPhone(u"1.mp3"_s);
    onPhone(u"2.mp3"_s);
    onPhone(u"3.mp3"_s);
    engine.answers[u"1.mp3"_s] = TableEngine::audio(u"Ann"_s, u"First"_s, u"Pop"_s);
    QSemaphore inSecond;
    std::atomic<bool> cancelled = false;
    engine.hook = [&](const QString &call) {
        if (call == u"info 1.mp3"_s) {
            inSecond.release();
            while (!cancelled)
                QThread::yieldCurrentThread();
        }
    };
    makeLibrary();
    library->refreshMyLibrary();
    inSecond.acquire();
    // The flag is set before the wait for the worker begins; let the worker on a little later.
    QThread *releaser = QThread::create([&cancelled] {
        QThread::msleep(100);
        cancelled = true;
    });
    releaser->start();
    EXPECT_THAT(library->cancelRefreshMyLibrary(), IsEmpty()) << "the phone was not completed";
    releaser->wait();
    delete releaser;
    EXPECT_FALSE(library->isMyLibraryRefreshing());
    EXPECT_THAT(library->getAllMedia(), ElementsAre(first)) << "the file being read is finished";
    EXPECT_THAT(library->getAllArtists(), ElementsAre(u"Ann"_s));
    EXPECT_EQ(progress.last(), 100);
}

TEST_F(Refresh, CancelWhileIdleReturnsTheLastPlacesAndSpoilsNothing)
{
    const QString song = onPhone(u"song.mp3"_s);
    refresh();
    EXPECT_THAT(library->cancelRefreshMyLibrary(), ElementsAre(PhoneName, CardName));
    EXPECT_THAT(library->cancelRefreshMyLibrary(), ElementsAre(PhoneName, CardName));
    progress.clear();
    refresh();
    EXPECT_EQ(progress.first(), 0) << "the next refresh runs as any";
    EXPECT_THAT(library->getAllMedia(), ElementsAre(song));
}

TEST_F(Refresh, StopsAtTheLimitOfMediaFiles)
{
    for (int number = 0; number < 150; ++number)
        onPhone(u"%1.mp3"_s.arg(number, 3, 10, QChar(u'0')));
    refresh();
    EXPECT_EQ(library->getAllMedia().size(), 100) << "the built-in limit";
    EXPECT_THAT(library->cancelRefreshMyLibrary(), IsEmpty());
}

TEST_F(Refresh, KeepsPlaylistsAndOtherGroups)
{
    makeLibrary();
    {
        ConfigFile file(phone.listFile(), false);
        ASSERT_TRUE(file.writeEntry(u"pl-Mine"_s, u"1"_s, u"/a.mp3"_s));
    }
    onPhone(u"song.mp3"_s);
    refresh();
    EXPECT_EQ(ConfigFile(phone.listFile(), false).readEntry(u"pl-Mine"_s, u"1"_s), u"/a.mp3"_s);
}

TEST_F(Refresh, PlaylistNamesLoseTheirThreeCharacterPrefix)
{
    makeLibrary();
    {
        ConfigFile file(phone.listFile(), false);
        ASSERT_TRUE(file.writeEntry(u"allplaylist"_s, u"counter"_s, 4));
        ASSERT_TRUE(file.writeEntry(u"allplaylist"_s, u"1"_s, u"P01My list"_s));
        ASSERT_TRUE(file.writeEntry(u"allplaylist"_s, u"3"_s, u"pl-Rock"_s));
        ASSERT_TRUE(file.writeEntry(u"allplaylist"_s, u"4"_s, u"pl"_s));
    }
    EXPECT_THAT(library->getAllPlayLists(), ElementsAre(u"My list"_s, u"Rock"_s, QString()));
}

TEST_F(Refresh, IndexReservationIsKept)
{
    onPhone(u"song.mp3"_s);
    refresh();
    EXPECT_EQ(QFileInfo(phone.infoFile()).size(), 150000);
    EXPECT_EQ(QFileInfo(phone.listFile()).size(), 50000);
    EXPECT_EQ(QFileInfo(phone.infoFile()).permissions() & QFile::Permissions(0x6666),
              QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser | QFile::ReadGroup |
                  QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther);
}

TEST_F(Refresh, IndexesAgainFromTheStart)
{
    onPhone(u"a.mp3"_s);
    const QString last = onPhone(u"b.mp3"_s);
    refresh();
    ASSERT_TRUE(QFile::remove(phone.phone() + u"/a.mp3"_s));
    refresh();
    EXPECT_THAT(library->getAllMedia(), ElementsAre(last));
}

TEST_F(Refresh, GroupsAndKindsWithoutANameGiveNothing)
{
    onPhone(u"song.mp3"_s);
    refresh();
    EXPECT_THAT(library->getItemListFromListFile(QString()), IsEmpty());
    EXPECT_THAT(library->getItemListFromInfoFile(QString(), QString()), IsEmpty());
    EXPECT_THAT(library->getItemListFromInfoFile(u"composer"_s, QString()), IsEmpty());
}

TEST_F(Refresh, StepsCanBeCalledOnTheirOwn)
{
    const QString song = onPhone(u"B.mp3"_s);
    const QString other = onPhone(u"a.MP3"_s);
    makeLibrary();
    QStringList files;
    library->getAllFiles(phone.phone(), u"*.mp3;"_s, files);
    ASSERT_THAT(files, ElementsAre(other, song));
    unsigned int offset = 2;
    QStringList artists = {u"Ann"_s};
    QStringList albums;
    QStringList genres;
    engine.other = TableEngine::audio(u"Ann"_s, u"First"_s, u"Pop"_s);
    EXPECT_TRUE(library->refreshMediaList(offset, files, artists, albums, genres));
    EXPECT_GT(offset, 2U);
    EXPECT_THAT(artists, ElementsAre(u"Ann"_s));
    EXPECT_THAT(albums, ElementsAre(u"First"_s));
    EXPECT_THAT(genres, ElementsAre(u"Pop"_s));
}

TEST_F(Refresh, PlacesAndTheUnknownTextAreTranslated)
{
    class Translator : public QTranslator
    {
    public:
        bool isEmpty() const override { return false; }
        QString translate(const char *, const char *text, const char *comment, int) const override
        {
            const QByteArray key = QByteArray(text) + '/' + comment;
            if (key == "TXT_RID_DTITLE_PHONE/Phone")
                return u"手机"_s;
            if (key == "TXT_RID_DTITLE_MEMORY_CARD/Memory Card")
                return u"存储卡"_s;
            return key == "TXT_RID_MENU_UNKNOWN/Unknown" ? u"未知"_s : QString();
        }
    };
    const QString song = onPhone(u"song.mp3"_s);
    const QString card = onCard1(u"card.mp3"_s);
    Translator translator;
    QCoreApplication::installTranslator(&translator);
    refresh();
    const QStringList places = library->cancelRefreshMyLibrary();
    QCoreApplication::removeTranslator(&translator);
    EXPECT_THAT(places, ElementsAre(u"手机"_s, u"存储卡"_s));
    EXPECT_THAT(library->getItemListOfArtist(u"<未知>"_s), ElementsAre(song, card));
}

TEST_F(Refresh, GoesOnWhenItsLibraryIsGone)
{
    onPhone(u"1.mp3"_s);
    const QString last = onPhone(u"2.mp3"_s);
    QSemaphore inFirst;
    QSemaphore go;
    engine.hook = [&](const QString &call) {
        if (call == u"kind 1.mp3"_s) {
            inFirst.release();
            go.acquire();
        }
    };
    makeLibrary();
    library->refreshMyLibrary();
    inFirst.acquire();
    library.reset(); // must not wait: the engine is still held
    EXPECT_THAT(progress, ElementsAre(0)) << "nothing is told any more";
    go.release();
    library = std::make_unique<MP_MyLibrary>(&engine);
    library->cancelRefreshMyLibrary(); // the process has one worker: this waits for it
    EXPECT_THAT(library->getAllMedia(), testing::Contains(last)) << "uncancelled, it came to its end";
    EXPECT_THAT(progress, ElementsAre(0));
}

TEST_F(Refresh, DestructionDeliversQueuedCallsToAnIntactLibrary)
{
    onPhone(u"song.mp3"_s);
    makeLibrary();
    QSemaphore inSignal;
    std::atomic<bool> queued = false;
    QObject::connect(
        library.get(), &MP_MyLibrary::refreshContinue, library.get(),
        [&](UINT8 percent) {
            if (percent != 100)
                return;
            inSignal.release();
            QThread::msleep(100);
        },
        Qt::DirectConnection);
    QStringList playing;
    QObject receiver;
    QObject::connect(
        library.get(), &MP_MyLibrary::refreshContinue, &receiver,
        [&](UINT8) {
            queued = true;
            playing = library->getCurrentPlayingList();
        },
        Qt::QueuedConnection);
    library->setCurrentPlayingList(u"/x.mp3"_s);
    MP_MyLibrary *const raw = library.get();
    raw->refreshMyLibrary();
    inSignal.acquire();
    delete raw; // the receivers still reach it by the pointer that they know
    static_cast<void>(library.release());
    EXPECT_TRUE(queued);
    EXPECT_THAT(playing, ElementsAre(u"/x.mp3"_s));
    MP_MyLibrary(&engine).cancelRefreshMyLibrary(); // waits for the process's worker
}

TEST_F(Refresh, StepIsRefusedWhileARefreshRuns)
{
    const QString song = onPhone(u"song.mp3"_s);
    QSemaphore inEngine;
    QSemaphore go;
    engine.hook = [&](const QString &call) {
        if (call == u"kind song.mp3"_s) {
            inEngine.release();
            go.acquire();
        }
    };
    makeLibrary();
    library->refreshMyLibrary();
    inEngine.acquire();
    unsigned int offset = 2;
    QStringList artists;
    QStringList albums;
    QStringList genres;
    EXPECT_FALSE(library->refreshMediaList(offset, {song}, artists, albums, genres));
    EXPECT_EQ(offset, 2U);
    EXPECT_EQ(engine.calls().count(u"kind song.mp3"_s), 1);
    go.release();
    waitForEnd();
}

TEST_F(Refresh, QueuedReceiversGetTheSignalOnTheirOwnThread)
{
    onPhone(u"song.mp3"_s);
    makeLibrary();
    QThread *receiver = nullptr;
    int last = -1;
    QObject::connect(library.get(), &MP_MyLibrary::refreshContinue, library.get(), [&](UINT8 percent) {
        receiver = QThread::currentThread();
        last = percent;
    });
    library->refreshMyLibrary();
    while (last != 100)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(receiver, QThread::currentThread());
}
