// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// All that a player may do while a refresh runs, and how objects and receivers may come and go meanwhile. Worth most
// under a race detector or an address sanitizer.

#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>

#include <gmock/gmock.h>

#include <atomic>
#include <map>
#include <random>
#include <thread>

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

/// Hears progress on its own thread while the worker waits.
class BlockingListener : public QObject
{
    Q_OBJECT

public:
    explicit BlockingListener(std::function<void(int)> heard) : m_heard(std::move(heard)) {}

    /// Qt is built without instrumentation, so the worker and this object's thread hand the value on by themselves, for
    /// the thread sanitizer to see what comes after what.
    void listenTo(MP_MyLibrary &library)
    {
        connect(
            &library, &MP_MyLibrary::refreshContinue, this, [this](UINT8 percent) { m_percent = percent; },
            Qt::DirectConnection);
        connect(&library, SIGNAL(refreshContinue(UINT8)), this, SLOT(hear()), Qt::BlockingQueuedConnection);
        connect(
            &library, &MP_MyLibrary::refreshContinue, this, [this] { EXPECT_EQ(m_percent, Taken); },
            Qt::DirectConnection);
    }

    Q_SLOT void hear()
    {
        m_heard(m_percent);
        m_percent = Taken;
    }

private:
    static constexpr int Taken = -1;

    const std::function<void(int)> m_heard;
    std::atomic<int> m_percent = Taken;
};

namespace {

constexpr int Files = 20; // on the phone, and as many on a card
constexpr int Rounds = 25;

struct RefreshRace : testing::Test
{
    TestPhone phone;
    TableEngine engine;
    const unsigned seed = std::random_device()();
    std::mt19937 random{seed};
    const testing::ScopedTrace trace{__FILE__, __LINE__, testing::Message() << "seed " << seed};

    RefreshRace()
    {
        // More than the built-in limits allow.
        TestPhone::addFile(phone.settingsFile(), "[MediaLimitationItem]\nMaxNumOfList=50\nMaxNumOfItem=50\n"
                                                 "MaxNumOfBookmark=20\nMaxNumOfHistory=20\nMaxNumOfMediaFile=100\n");
        for (int i = 0; i < Files; ++i) {
            TestPhone::addFile(phone.phone() + u"/%1.mp3"_s.arg(i));
            TestPhone::addFile(phone.card1() + u"/%1.mp3"_s.arg(i));
        }
    }
    ~RefreshRace() override { waitForWorker(); }

    /// The process has one worker, which any object waits for.
    void waitForWorker() { MP_MyLibrary(&engine).cancelRefreshMyLibrary(); }

    /// A moment between nothing and about the length of a refresh.
    void pause()
    {
        for (auto turns = random() % 200; turns > 0; --turns)
            QThread::yieldCurrentThread();
    }
    /// Has the worker tell of each progress by \a emitting and wait there for \a go.
    static void holdInReceiver(MP_MyLibrary &library, QSemaphore &emitting, QSemaphore &go)
    {
        QObject::connect(
            &library, &MP_MyLibrary::refreshContinue, &library,
            [&] {
                emitting.release();
                go.acquire();
            },
            Qt::DirectConnection);
    }
    /// Makes the worker wait at the first file until \a go is released, and tells by \a reached.
    void holdAtFirstFile(QSemaphore &reached, QSemaphore &go)
    {
        engine.hook = [&reached, &go](const QString &call) {
            if (call == u"kind 0.mp3"_s) {
                reached.release();
                go.acquire();
            }
        };
    }
};

/// One player's use of a library: changes to its playlists, bookmarks and list, with what must come of them.
class Player
{
public:
    Player(MP_MyLibrary &library, const QString &name, std::mt19937::result_type seed)
        : m_library(library), m_name(name), m_random(seed)
    {
    }

    /// One change and some questions, each allowed at any time.
    void act()
    {
        const QString name = m_name + QString::number(m_random() % 4);
        const QStringList items{u"/"_s + name + QString::number(m_random() % 100), u"/common"_s};
        switch (m_random() % 5) {
        case 0:
        case 1:
            save(name, items);
            break;
        case 2:
            if (m_playlists.erase(name) > 0) {
                EXPECT_TRUE(m_library.deletePlayList(name));
            }
            break;
        case 3:
            if (m_playlists.count(name) > 0) {
                EXPECT_EQ(m_library.loadPlayList(name), m_playlists[name]);
            }
            break;
        default:
            play(items);
        }
        ask();
    }
    /// Everything that was done is there.
    void check() const
    {
        for (const auto &[name, items] : m_playlists) {
            EXPECT_TRUE(m_library.hasPlayList(name)) << qPrintable(name);
            EXPECT_EQ(m_library.loadPlayList(name), items) << qPrintable(name);
        }
    }

private:
    void save(const QString &name, const QStringList &items)
    {
        m_library.setCurrentPlayingList(items);
        EXPECT_EQ(m_library.savePlayList(name), 0);
        m_playlists[name] = items;
    }
    void play(const QStringList &items)
    {
        m_library.setCurrentPlayingList(items.first());
        QStringList more = items;
        EXPECT_TRUE(m_library.addItemsToPlayList(more));
        m_library.setActiveItem(0, false);
        EXPECT_EQ(m_library.getActiveItem(), items.first());
        m_library.setItemFlag(items.first(), MP_MEDIA_FILE_TYPE_AUDIO);
        EXPECT_EQ(m_library.getItemFlag(items.first()), MP_MEDIA_FILE_TYPE_AUDIO);
        m_library.setShuffle(m_random() % 2 == 0);
        EXPECT_EQ(m_library.randomizePlayList().size(), 2);
        m_library.addItemToHistory(items.first());
        EXPECT_EQ(m_library.addItemToBookmark(m_name, items.first()), 0);
        EXPECT_TRUE(m_library.hasBookmark(m_name));
        m_library.storeAllList();
        m_library.storeConfig();
    }
    void ask() const
    {
        m_library.isMyLibraryRefreshing();
        EXPECT_EQ(m_library.getRefreshFlag().size(), 2);
        EXPECT_EQ(m_library.getVolume(), 10);
        EXPECT_EQ(m_library.getCodecForClip(), u"GBK"_s);
        EXPECT_FALSE(m_library.getWorkDirectory().isEmpty());
        EXPECT_FALSE(m_library.getDefaultPlayListName().isEmpty());
        EXPECT_FALSE(m_library.getDefaultBookmarkName().isEmpty());
        EXPECT_TRUE(m_library.getItemListOfPreconfig().isEmpty());
        EXPECT_TRUE(m_library.hasEnoughSpace(m_library.getWorkDirectory()));
    }

    MP_MyLibrary &m_library;
    const QString m_name;
    std::mt19937 m_random;
    std::map<QString, QStringList> m_playlists;
};

} // namespace

TEST_F(RefreshRace, AllThatIsAllowedBesideARefresh)
{
    MP_MyLibrary library(&engine);
    Player player(library, u"mine"_s, random());
    for (int round = 0; round < Rounds; ++round) {
        library.refreshMyLibrary();
        do
            player.act();
        while (library.isMyLibraryRefreshing());
    }
    library.cancelRefreshMyLibrary();
    EXPECT_EQ(library.getAllMedia().size(), 2 * Files);
    EXPECT_THAT(library.getAllArtists(), ElementsAre(u"<TXT_RID_MENU_UNKNOWN>"_s));
    player.check();
}

TEST_F(RefreshRace, TwoObjectsOnTwoThreadsLoseNothing)
{
    MP_MyLibrary here(&engine);
    const auto use = [](MP_MyLibrary &library, const QString &name, std::mt19937::result_type mySeed) {
        Player player(library, name, mySeed);
        for (int round = 0; round < Rounds; ++round) {
            library.refreshMyLibrary();
            player.act();
            if (mySeed % 2 == 0 || round % 3 == 0)
                library.cancelRefreshMyLibrary();
        }
        library.cancelRefreshMyLibrary();
        player.check();
    };
    const auto otherSeed = random();
    std::thread other([&] {
        MP_MyLibrary there(&engine);
        use(there, u"theirs"_s, otherSeed);
    });
    use(here, u"mine"_s, random());
    other.join();
    waitForWorker();
    here.refreshMyLibrary();
    while (here.isMyLibraryRefreshing())
        QThread::yieldCurrentThread();
    EXPECT_EQ(here.getAllMedia().size(), 2 * Files);
}

TEST_F(RefreshRace, RepeatedCancelsHereAndOnTheWorker)
{
    MP_MyLibrary library(&engine);
    std::atomic<int> ends = 0;
    std::atomic<bool> cancels = false;
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &library,
        [&](UINT8 percent) {
            if (cancels)
                library.cancelRefreshMyLibrary();
            if (percent == 100 && !library.isMyLibraryRefreshing())
                ++ends;
        },
        Qt::DirectConnection);
    for (int round = 0; round < Rounds; ++round) {
        cancels = random() % 2 == 0;
        library.refreshMyLibrary();
        pause();
        for (auto times = random() % 3; times > 0; --times)
            library.cancelRefreshMyLibrary();
        const QStringList places = library.cancelRefreshMyLibrary();
        EXPECT_FALSE(library.isMyLibraryRefreshing());
        EXPECT_EQ(ends, round + 1) << "each ends once";
        EXPECT_EQ(library.getAllMedia().size() == 2 * Files, places.size() == 2);
    }
}

TEST_F(RefreshRace, ReceiversOfEveryKindHearTheSame)
{
    QList<int> direct;
    QList<int> queued;
    QList<int> blocking;
    QThread elsewhere;
    BlockingListener there([&](int percent) { blocking.append(percent); });
    there.moveToThread(&elsewhere);
    elsewhere.start();
    QObject here;
    MP_MyLibrary library(&engine);
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &here, [&](UINT8 percent) { direct.append(percent); },
        Qt::DirectConnection);
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &here, [&](UINT8 percent) { queued.append(percent); },
        Qt::QueuedConnection);
    there.listenTo(library);
    for (int round = 0; round < Rounds; ++round) {
        library.refreshMyLibrary();
        pause();
        if (random() % 2 == 0)
            library.cancelRefreshMyLibrary();
        while (library.isMyLibraryRefreshing())
            QCoreApplication::processEvents();
    }
    library.cancelRefreshMyLibrary();
    elsewhere.quit();
    elsewhere.wait();
    QCoreApplication::processEvents();
    EXPECT_GE(direct.size(), 2 * Rounds);
    EXPECT_EQ(queued, direct);
    EXPECT_EQ(blocking, direct);
}

TEST_F(RefreshRace, CancelLetsAReceiverOnThatWaitsForThisThread)
{
    QObject here;
    MP_MyLibrary library(&engine);
    QSemaphore emitting;
    QList<int> heard;
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &here, [&](UINT8) { emitting.release(); }, Qt::DirectConnection);
    BlockingListener listener([&](int percent) { heard.append(percent); });
    listener.listenTo(library);
    library.refreshMyLibrary();
    emitting.acquire();
    EXPECT_THAT(library.cancelRefreshMyLibrary(), IsEmpty());
    EXPECT_THAT(heard, ElementsAre(0, 100));
    EXPECT_THAT(library.getAllMedia(), IsEmpty()) << "the cancellation came before the first file";
}

TEST_F(RefreshRace, AnotherObjectsCancelLetsTheReceiverOnToo)
{
    QObject here;
    QSemaphore emitting;
    int last = -1;
    MP_MyLibrary library(&engine);
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &here, [&](UINT8) { emitting.release(); }, Qt::DirectConnection);
    BlockingListener listener([&](int percent) { last = percent; });
    listener.listenTo(library);
    library.refreshMyLibrary();
    emitting.acquire();
    waitForWorker();
    EXPECT_EQ(last, 100);
    EXPECT_EQ(library.getAllMedia().size(), 2 * Files) << "it is not that object's to cancel";
}

TEST_F(RefreshRace, CallDeliveredByCancelMayCancelToo)
{
    QObject here;
    MP_MyLibrary library(&engine);
    QSemaphore emitting;
    QSemaphore go;
    holdInReceiver(library, emitting, go);
    library.refreshMyLibrary();
    emitting.acquire();
    bool cancelled = false;
    QMetaObject::invokeMethod(
        &here,
        [&] {
            go.release(2);
            library.cancelRefreshMyLibrary();
            cancelled = true;
        },
        Qt::QueuedConnection);
    library.cancelRefreshMyLibrary();
    EXPECT_TRUE(cancelled);
    EXPECT_FALSE(library.isMyLibraryRefreshing());
}

TEST_F(RefreshRace, CallDeliveredByCancelMayDestroyTheObject)
{
    QObject here;
    auto library = std::make_unique<MP_MyLibrary>(&engine);
    MP_MyLibrary *const raw = library.get();
    QSemaphore emitting;
    QSemaphore go;
    holdInReceiver(*library, emitting, go);
    library->refreshMyLibrary();
    emitting.acquire();
    QMetaObject::invokeMethod(
        &here,
        [&] {
            go.release(2);
            library.reset();
        },
        Qt::QueuedConnection);
    EXPECT_THAT(raw->cancelRefreshMyLibrary(), IsEmpty());
    EXPECT_EQ(library, nullptr);
    EXPECT_EQ(emitting.available(), 0) << "nothing is told by an object that is gone";
}

TEST_F(RefreshRace, DestructionLetsAReceiverOnThatWaitsForThisThread)
{
    QObject here;
    auto library = std::make_unique<MP_MyLibrary>(&engine);
    QSemaphore emitting;
    QList<int> heard;
    QObject::connect(
        library.get(), &MP_MyLibrary::refreshContinue, &here, [&](UINT8) { emitting.release(); }, Qt::DirectConnection);
    BlockingListener listener([&](int percent) { heard.append(percent); });
    listener.listenTo(*library);
    library->refreshMyLibrary();
    emitting.acquire();
    library.reset();
    waitForWorker();
    QCoreApplication::processEvents();
    EXPECT_THAT(heard, ElementsAre(0)) << "the one under way";
}

TEST_F(RefreshRace, DestructionDuringACallThatWaitsForAnotherThread)
{
    QSemaphore inReceiver;
    QSemaphore go;
    std::atomic<bool> left = false;
    QThread elsewhere;
    BlockingListener there([&](int) {
        inReceiver.release();
        go.acquire();
        left = true;
    });
    there.moveToThread(&elsewhere);
    elsewhere.start();
    auto library = std::make_unique<MP_MyLibrary>(&engine);
    there.listenTo(*library);
    library->refreshMyLibrary();
    inReceiver.acquire();
    std::thread releaser([&go] {
        QThread::msleep(50); // so that the destructor has to wait
        go.release();
    });
    library.reset();
    EXPECT_TRUE(left) << "the emission is over when its sender is gone";
    releaser.join();
    waitForWorker();
    elsewhere.quit();
    elsewhere.wait();
}

TEST_F(RefreshRace, NoSignalFromADeadObject)
{
    std::atomic<MP_MyLibrary *> alive = nullptr;
    const auto hear = [&alive](int) {
        MP_MyLibrary *const library = alive;
        ASSERT_NE(library, nullptr);
        library->isMyLibraryRefreshing(); // a sanitizer tells if it is gone
    };
    QThread elsewhere;
    BlockingListener there(hear);
    there.moveToThread(&elsewhere);
    elsewhere.start();
    BlockingListener here(hear);
    for (int round = 0; round < Rounds; ++round) {
        auto library = std::make_unique<MP_MyLibrary>(&engine);
        QObject::connect(library.get(), &MP_MyLibrary::refreshContinue, &here, hear, Qt::DirectConnection);
        there.listenTo(*library);
        if (random() % 2 == 0) {
            waitForWorker(); // else 100 may come on this very thread
            here.listenTo(*library);
        }
        alive = library.get();
        library->refreshMyLibrary();
        pause();
        library.reset();
        alive = nullptr;
        if (random() % 2 == 0)
            waitForWorker();
    }
    waitForWorker();
    elsewhere.quit();
    elsewhere.wait();
}

TEST_F(RefreshRace, WorkerThatOutlivesItsObjectUsesNothingOfIt)
{
    QSemaphore reached;
    QSemaphore go;
    holdAtFirstFile(reached, go);
    auto library = std::make_unique<MP_MyLibrary>(&engine);
    library->refreshMyLibrary();
    reached.acquire();
    library->setRefreshFlag({}); // its own copy is not the worker's
    library.reset();
    auto next = std::make_unique<MP_MyLibrary>(&engine);
    EXPECT_FALSE(next->isMyLibraryRefreshing()) << "the refresh was the other one's";
    go.release(2);
    next->cancelRefreshMyLibrary();
    EXPECT_EQ(next->getAllMedia().size(), 2 * Files) << "the search order that it began with, to the end";
}

TEST_F(RefreshRace, EngineMayGoOnceAnyObjectHasWaited)
{
    for (int round = 0; round < Rounds; ++round) {
        auto mortal = std::make_unique<TableEngine>();
        auto library = std::make_unique<MP_MyLibrary>(mortal.get());
        library->refreshMyLibrary();
        pause();
        library.reset();
        waitForWorker();
        mortal.reset(); // a sanitizer tells if it is still used
    }
    MP_MyLibrary library(&engine);
    EXPECT_EQ(library.getAllMedia().size(), 2 * Files);
}

TEST_F(RefreshRace, ReceiverMayDestroyTheObjectThatEndsAtOnce)
{
    qputenv("JUV_APP_WRITE_PATH", "/proc/none");
    auto library = std::make_unique<MP_MyLibrary>(&engine);
    MP_MyLibrary *const raw = library.get();
    QObject here;
    QObject::connect(raw, &MP_MyLibrary::refreshContinue, &here, [&](UINT8 percent) {
        EXPECT_EQ(percent, 100);
        library.reset();
    });
    raw->refreshMyLibrary();
    EXPECT_EQ(library, nullptr);
}

#include "RefreshRaceTest.moc"
