// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/LibraryRefresh.h"

#include "scan/InfoFile.h"

#include "Doorbell.h"
#include "RefreshFixture.h"
#include "support/OpenFiles.h"

#include <marvola/ConfigFile.h>

#include <future>
#include <pthread.h>
#include <thread>

using namespace Qt::StringLiterals;
using marvola::LibraryRefresh;
using marvola::RefreshPlan;

namespace {

/// Holds the first thread that comes up until it is let go.
class Gate
{
public:
    void pass()
    {
        if (m_used.exchange(true))
            return;
        m_reached.set_value();
        m_open.get_future().wait();
    }
    void waitUntilReached() { m_reached.get_future().wait(); }
    void open() { m_open.set_value(); }

private:
    std::atomic<bool> m_used = false;
    std::promise<void> m_reached;
    std::promise<void> m_open;
};

class LibraryRefreshTest : public RefreshFixture
{
protected:
    LibraryRefreshTest() { addFiles(phone.phone(), 3); }
    ~LibraryRefreshTest() override
    {
        if (refresh)
            refresh->cancelAndWait();
        LibraryRefresh([](quint8) {}).cancelAndWait();
    }

    /// Makes the worker wait at \a gate when it asks the engine for \a call.
    void stopAt(Gate &gate, const QString &call)
    {
        engine.hook = [&gate, call](const QString &now) {
            if (now == call)
                gate.pass();
        };
    }

    /// Indexes one file by \a by; refused when a cancellation is pending.
    bool indexOne(LibraryRefresh &by)
    {
        unsigned int offset = 2;
        QStringList artists;
        QStringList albums;
        QStringList genres;
        return by.indexFiles(plan(), offset, {u"/a.mp3"_s}, artists, albums, genres);
    }

    std::unique_ptr<LibraryRefresh> refresh =
        std::make_unique<LibraryRefresh>([this](quint8 percent) { progress.add(percent); });
};

} // namespace

TEST_F(LibraryRefreshTest, RunsFromZeroToHundred)
{
    EXPECT_FALSE(refresh->isRunning());
    refresh->start(plan());
    progress.waitFor(100, 2);
    EXPECT_FALSE(refresh->isRunning()) << "the flag is cleared before the last report";
    EXPECT_EQ(progress.values(), std::vector<int>({0, 33, 66, 100, 100}));
    EXPECT_EQ(indexed().size(), 3);
    EXPECT_EQ(refresh->cancelAndWait(), QStringList({u"Phone"_s, u"Card"_s}));
}

TEST_F(LibraryRefreshTest, ReportsOnTheWorkerThread)
{
    std::promise<std::thread::id> reporter;
    LibraryRefresh other([&reporter](quint8 percent) {
        if (percent == 0)
            reporter.set_value(std::this_thread::get_id());
    });
    other.start(plan());
    EXPECT_NE(reporter.get_future().get(), std::this_thread::get_id());
    other.cancelAndWait();
}

TEST_F(LibraryRefreshTest, SecondStartDuringARefreshDoesNothing)
{
    Gate gate;
    stopAt(gate, u"kind 001.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    EXPECT_TRUE(refresh->isRunning());
    const std::vector<int> before = progress.values();
    refresh->start(plan());
    EXPECT_EQ(progress.values(), before);
    EXPECT_TRUE(refresh->isRunning());
    gate.open();
    progress.waitFor(100, 2);
    EXPECT_EQ(engine.calls().filter(u"finish"_s).size(), 1);
}

TEST_F(LibraryRefreshTest, WithoutAWorkDirectoryHundredComesAtOnce)
{
    RefreshPlan withoutList = plan();
    withoutList.listFile = {};
    RefreshPlan withoutInfo = plan();
    withoutInfo.infoFile.clear();
    for (const RefreshPlan &none : {withoutList, withoutInfo}) {
        refresh->start(none);
        EXPECT_FALSE(refresh->isRunning());
    }
    EXPECT_EQ(progress.values(), std::vector<int>({100, 100}));
    EXPECT_EQ(engine.calls(), QStringList());
}

TEST_F(LibraryRefreshTest, CancelStopsBeforeTheNextFileAndWaitsForTheIndex)
{
    addFiles(phone.card1(), 2);
    Gate gate;
    stopAt(gate, u"info 001.mp3"_s);
    searchOrder = {u"Card"_s, u"Phone"_s};
    refresh->start(plan());
    gate.waitUntilReached();
    auto places = std::async(std::launch::async, [this] { return refresh->cancelAndWait(); });
    EXPECT_EQ(places.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    gate.open();
    EXPECT_EQ(places.get(), QStringList{u"Card"_s}) << "its second file was its last";
    EXPECT_EQ(indexed().size(), 2);
    EXPECT_EQ(progress.values().back(), 100);
    EXPECT_FALSE(refresh->isRunning());
}

TEST_F(LibraryRefreshTest, CancelDuringThePhoneLeavesItOut)
{
    Gate gate;
    stopAt(gate, u"kind 000.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    auto places = std::async(std::launch::async, [this] { return refresh->cancelAndWait(); });
    EXPECT_EQ(places.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    gate.open();
    EXPECT_EQ(places.get(), QStringList());
    EXPECT_EQ(group("artistlist"), QStringList{u"<U>"_s}) << "what was gathered is written";
}

TEST_F(LibraryRefreshTest, CancelWhileIdleGivesTheLastPlacesAndHarmsNoRefresh)
{
    EXPECT_EQ(refresh->cancelAndWait(), QStringList());
    refresh->start(plan());
    progress.waitFor(100, 2);
    EXPECT_EQ(refresh->cancelAndWait(), QStringList({u"Phone"_s, u"Card"_s}));
    EXPECT_EQ(refresh->cancelAndWait(), QStringList({u"Phone"_s, u"Card"_s}));
    refresh->start(plan());
    progress.waitFor(100, 4);
    EXPECT_EQ(indexed().size(), 3);
}

TEST_F(LibraryRefreshTest, ThreadThatCannotBeStartedEndsAtOnce)
{
    pthread_attr_t before;
    pthread_getattr_default_np(&before);
    pthread_attr_t absurd;
    pthread_attr_init(&absurd);
    pthread_attr_setstacksize(&absurd, size_t(1) << 62);
    ASSERT_EQ(pthread_setattr_default_np(&absurd), 0);
    refresh->start(plan());
    ASSERT_EQ(pthread_setattr_default_np(&before), 0);
    EXPECT_EQ(progress.values(), std::vector<int>({100}));
    EXPECT_FALSE(refresh->isRunning());
    refresh->start(plan());
    progress.waitFor(100, 3);
    EXPECT_EQ(indexed().size(), 3);
}

TEST_F(LibraryRefreshTest, OneWorkerForAllObjects)
{
    Gate gate;
    stopAt(gate, u"kind 001.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    ProgressLog otherProgress;
    LibraryRefresh other([&otherProgress](quint8 percent) { otherProgress.add(percent); });
    other.start(plan());
    EXPECT_EQ(otherProgress.values(), std::vector<int>({100})) << "like a thread that cannot be started";
    EXPECT_FALSE(other.isRunning());
    EXPECT_TRUE(refresh->isRunning());
    gate.open();
    progress.waitFor(100, 2);
    other.start(plan());
    otherProgress.waitFor(100, 3);
    other.cancelAndWait();
}

TEST_F(LibraryRefreshTest, NothingIsHeldOpenWhenAnotherObjectsWorkerIsInTheWay)
{
    Gate gate;
    stopAt(gate, u"kind 001.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    RefreshPlan inTheWay = plan();
    inTheWay.listFile = marvola::PlacedFile::here(phone.listFile());
    const int before = openAt(phone.write());
    int told = 0;
    LibraryRefresh other([&](quint8) {
        EXPECT_EQ(openAt(phone.write()), before - 1);
        ++told;
    });
    other.start(inTheWay);
    EXPECT_EQ(told, 1);
    gate.open();
    progress.waitFor(100);
    refresh->cancelAndWait();
}

TEST_F(LibraryRefreshTest, LastReportMayStartTheNextRefresh)
{
    std::unique_ptr<LibraryRefresh> again;
    std::atomic<int> left = 4;
    again = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        if (percent == 100 && left.fetch_sub(1) > 0)
            again->start(plan());
        progress.add(percent);
    });
    addFiles(phone.card1(), 1); // so that no share of it is 100 before the end
    searchOrder = {u"Phone"_s};
    again->start(plan());
    progress.waitFor(100, 5);
    again->cancelAndWait();
    EXPECT_EQ(engine.calls().filter(u"finish"_s).size(), 5);
}

TEST_F(LibraryRefreshTest, LastReportMayWriteTheListFile)
{
    LibraryRefresh writing([this](quint8 percent) {
        if (percent != 100)
            return;
        ConfigFile list(phone.listFile(), false);
        EXPECT_TRUE(list.lockForUpdate());
        EXPECT_TRUE(list.writeEntry(u"pl-Mine"_s, u"1"_s, u"/x.mp3"_s));
        EXPECT_TRUE(list.flush());
        progress.add(percent);
    });
    searchOrder = {u"Card"_s};
    writing.start(plan());
    progress.waitFor(100);
    writing.cancelAndWait();
    EXPECT_EQ(ConfigFile(phone.listFile(), false).readEntry(u"pl-Mine"_s, u"1"_s), u"/x.mp3"_s);
}

TEST_F(LibraryRefreshTest, ReceiverMayCancelOnTheWorkerThread)
{
    std::unique_ptr<LibraryRefresh> self;
    self = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        if (percent == 33) {
            EXPECT_EQ(self->cancelAndWait(), QStringList());
        }
        progress.add(percent);
    });
    self->start(plan());
    progress.waitFor(100);
    self->cancelAndWait();
    EXPECT_EQ(indexed().size(), 1);
}

TEST_F(LibraryRefreshTest, DestructionDoesNotStopARefreshAndSilencesIt)
{
    Gate gate;
    stopAt(gate, u"kind 001.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    const std::vector<int> before = progress.values();
    refresh.reset();
    gate.open();
    LibraryRefresh([](quint8) {}).cancelAndWait(); // waits for the process's worker
    EXPECT_EQ(progress.values(), before);
    EXPECT_EQ(indexed().size(), 3) << "the refresh went on to its end";
}

TEST_F(LibraryRefreshTest, DestructionWaitsForAReportUnderWay)
{
    Gate gate;
    std::atomic<bool> left = false;
    auto slow = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        if (percent != 0)
            return;
        gate.pass();
        left = true;
    });
    slow->start(plan());
    gate.waitUntilReached();
    auto destroyed = std::async(std::launch::async, [&] {
        slow.reset();
        return left.load();
    });
    EXPECT_EQ(destroyed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    gate.open();
    EXPECT_TRUE(destroyed.get());
}

TEST_F(LibraryRefreshTest, DestructionLetsAReceiverGoThatWaitsForThisThread)
{
    Doorbell here;
    std::promise<void> entered;
    auto blocking = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        if (percent != 0)
            return;
        entered.set_value();
        here.ringAndWait();
    });
    blocking->start(plan());
    entered.get_future().wait();
    blocking.reset();
    EXPECT_TRUE(here.hasRung());
}

TEST_F(LibraryRefreshTest, ReceiverMayDestroyTheObject)
{
    std::unique_ptr<LibraryRefresh> mortal;
    std::promise<void> gone;
    mortal = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        EXPECT_EQ(percent, 0) << "nothing comes afterwards";
        mortal.reset();
        gone.set_value();
    });
    mortal->start(plan());
    gone.get_future().wait();
    LibraryRefresh([](quint8) {}).cancelAndWait();
    EXPECT_EQ(indexed().size(), 3);
}

TEST_F(LibraryRefreshTest, ReceiverMayDestroyTheObjectInsideStart)
{
    std::unique_ptr<LibraryRefresh> mortal;
    mortal = std::make_unique<LibraryRefresh>([&](quint8) { mortal.reset(); });
    mortal->start(RefreshPlan());
    EXPECT_EQ(mortal, nullptr);
}

TEST_F(LibraryRefreshTest, IndexFilesUsesTheObjectsCounters)
{
    unsigned int offset = 2;
    QStringList artists;
    QStringList albums;
    QStringList genres;
    EXPECT_TRUE(refresh->indexFiles(plan(), offset, {u"/a.mp3"_s}, artists, albums, genres));
    EXPECT_TRUE(refresh->indexFiles(plan(), offset, {u"/b.mp3"_s}, artists, albums, genres));
    EXPECT_EQ(progress.values(), std::vector<int>()) << "no refresh has set a total yet";
    ASSERT_TRUE(marvola::InfoFile::publishCount(phone.infoFile(), 2));
    EXPECT_EQ(indexed(), QStringList({u"/a.mp3"_s, u"/b.mp3"_s}));
    EXPECT_EQ(InfoBytes::contentOf(phone.infoFile()).records.at(1).index, 1);
    refresh->cancelAndWait();
    EXPECT_FALSE(refresh->indexFiles(plan(), offset, {u"/c.mp3"_s}, artists, albums, genres)) << "cancelled";
}

TEST_F(LibraryRefreshTest, LostRecordsDoNotSilenceLaterCallsOfIndexFiles)
{
    unsigned int offset = 2;
    QStringList artists;
    QStringList albums;
    QStringList genres;
    RefreshPlan bad = plan();
    bad.infoFile = phone.write();
    EXPECT_TRUE(refresh->indexFiles(bad, offset, {u"/a.mp3"_s}, artists, albums, genres));
    refresh->start(bad);
    progress.waitFor(100, 2);
    offset = 2;
    EXPECT_TRUE(refresh->indexFiles(plan(), offset, {u"/b.mp3"_s}, artists, albums, genres));
    ASSERT_TRUE(marvola::InfoFile::publishCount(phone.infoFile(), 1));
    EXPECT_EQ(indexed(), QStringList{u"/b.mp3"_s});
}

TEST_F(LibraryRefreshTest, CancelledRefreshLeavesNoCancellationBehind)
{
    LibraryRefresh *self = nullptr;
    LibraryRefresh cancelling([&](quint8 percent) {
        if (percent == 33)
            self->cancelAndWait(); // on the worker itself, where there is nothing to wait for
        progress.add(percent);
    });
    self = &cancelling;
    cancelling.start(plan());
    progress.waitFor(100);
    ASSERT_EQ(indexed().size(), 1);
    EXPECT_TRUE(indexOne(cancelling));
}

TEST_F(LibraryRefreshTest, StartWithoutAWorkDirectoryClearsACancellation)
{
    refresh->cancelAndWait();
    EXPECT_FALSE(indexOne(*refresh));
    refresh->start(RefreshPlan());
    EXPECT_TRUE(indexOne(*refresh));
}

TEST_F(LibraryRefreshTest, StartWithoutAWorkDirectoryClearsBothFlagsDuringARefresh)
{
    Gate gate;
    stopAt(gate, u"kind 000.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    EXPECT_TRUE(refresh->isRunning());
    refresh->start(RefreshPlan());
    EXPECT_FALSE(refresh->isRunning());
    EXPECT_EQ(progress.values().back(), 100);
    gate.open();
    progress.waitFor(100, 3);
    EXPECT_EQ(indexed().size(), 3) << "the refresh itself goes on";
}

TEST_F(LibraryRefreshTest, IndexFilesIsRefusedWhileAWorkerWorksWhoseFlagIsClear)
{
    Gate gate;
    stopAt(gate, u"kind 001.mp3"_s);
    refresh->start(plan());
    gate.waitUntilReached();
    refresh->start(RefreshPlan());
    EXPECT_FALSE(refresh->isRunning());
    const QStringList calls = engine.calls();
    EXPECT_FALSE(indexOne(*refresh));
    LibraryRefresh other([](quint8) {});
    EXPECT_FALSE(indexOne(other)) << "it may have the same engine, and the same info file";
    EXPECT_EQ(engine.calls(), calls);
    gate.open();
    progress.waitFor(100, 3);
    EXPECT_EQ(indexed().size(), 3);
    EXPECT_TRUE(indexOne(*refresh));
}

TEST_F(LibraryRefreshTest, NoWorkerStartsWhileFilesAreIndexed)
{
    bool isAsked = false;
    engine.hook = [&](const QString &) {
        if (std::exchange(isAsked, true))
            return;
        refresh->start(plan());
        EXPECT_FALSE(refresh->isRunning());
        EXPECT_FALSE(indexOne(*refresh)) << "one call at a time";
    };
    EXPECT_TRUE(indexOne(*refresh));
    EXPECT_TRUE(isAsked);
    EXPECT_EQ(progress.values(), std::vector<int>({100})) << "like a thread that cannot be started";
    refresh->start(plan());
    progress.waitFor(100, 3);
    EXPECT_EQ(indexed().size(), 3);
}
