// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/LibraryRefresh.h"

#include "RefreshFixture.h"

#include <QtCore/QSemaphore>

#include <atomic>
#include <random>
#include <thread>

using namespace Qt::StringLiterals;
using marvola::LibraryRefresh;
using marvola::RefreshPlan;

/// Everything that is allowed beside a refresh, at random moments; worth most under a race detector.
namespace {

class LibraryRefreshRace : public RefreshFixture
{
protected:
    LibraryRefreshRace()
    {
        addFiles(phone.phone(), 20);
        addFiles(phone.card1(), 20);
        seed = std::random_device()();
        random.seed(seed);
    }
    ~LibraryRefreshRace() override
    {
        LibraryRefresh([](quint8) {}).cancelAndWait();
    }

    /// A moment between nothing and about the length of a refresh.
    void pause()
    {
        for (auto turns = random() % 200; turns > 0; --turns)
            std::this_thread::yield();
    }

    unsigned seed = 0;
    std::mt19937 random;
};

constexpr int Rounds = 60;

} // namespace

TEST_F(LibraryRefreshRace, CancelsAndQuestions)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    LibraryRefresh refresh([this](quint8 percent) { progress.add(percent); });
    for (int round = 0; round < Rounds; ++round) {
        refresh.start(plan());
        pause();
        refresh.isRunning();
        refresh.start(plan());
        pause();
        const QStringList places = refresh.cancelAndWait();
        EXPECT_FALSE(refresh.isRunning());
        EXPECT_LE(places.size(), 2);
        EXPECT_EQ(indexed().size() == 40, places.size() == 2);
        EXPECT_EQ(progress.values().back(), 100);
    }
}

TEST_F(LibraryRefreshRace, RestartsAsSoonAsTheFlagIsClear)
{
    LibraryRefresh refresh([this](quint8 percent) { progress.add(percent); });
    int finished = 0;
    for (int round = 0; round < Rounds; ++round) {
        refresh.start(plan());
        while (refresh.isRunning())
            std::this_thread::yield();
        ++finished;
    }
    refresh.cancelAndWait();
    EXPECT_EQ(engine.calls().filter(u"finish"_s).size(), 2 * finished) << "none was refused";
}

TEST_F(LibraryRefreshRace, RestartsFromTheLastReport)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::atomic<int> left = Rounds;
    std::unique_ptr<LibraryRefresh> refresh;
    refresh = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        progress.add(percent);
        if (percent == 100 && left.fetch_sub(1) > 0)
            refresh->start(plan());
    });
    refresh->start(plan());
    while (left > 0) {
        pause();
        refresh->isRunning();
        refresh->start(plan());
    }
    refresh->cancelAndWait();
    while (refresh->isRunning())
        refresh->cancelAndWait();
    LibraryRefresh([](quint8) {}).cancelAndWait();
    EXPECT_EQ(progress.values().back(), 100);
    refresh.reset();
}

TEST_F(LibraryRefreshRace, RestartsBesideAWorkerOnItsWayOut)
{
    std::atomic<int> workers = 0;
    std::unique_ptr<LibraryRefresh> refresh;
    QSemaphore go;
    refresh = std::make_unique<LibraryRefresh>([&](quint8 percent) {
        if (percent != 0 || workers.fetch_add(1) % 2 == 0)
            return;
        EXPECT_TRUE(refresh->isRunning()) << "the one before has ended, and left it its flags";
        go.acquire();
    });
    for (int round = 0; round < Rounds; ++round) {
        refresh->start(plan());
        while (workers % 2 == 0)
            std::this_thread::yield();
        refresh->start(RefreshPlan()); // the worker goes on without its flag
        while (workers % 2 == 1)
            refresh->start(plan());
        go.release();
        refresh->cancelAndWait();
    }
}

TEST_F(LibraryRefreshRace, DestructionAtRandomMoments)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    for (int round = 0; round < Rounds; ++round) {
        auto alive = std::make_unique<std::atomic<bool>>(true);
        auto refresh = std::make_unique<LibraryRefresh>([&alive](quint8) { EXPECT_TRUE(*alive); });
        refresh->start(plan());
        pause();
        refresh.reset();
        alive.reset(); // a report that came later would look at what is gone
        if (random() % 2 == 0)
            LibraryRefresh([](quint8) {}).cancelAndWait();
    }
}

TEST_F(LibraryRefreshRace, TwoObjectsOnTwoThreads)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::atomic<int> atOnce = 0;
    std::atomic<int> most = 0;
    engine.hook = [&](const QString &call) {
        if (call == u"A 0"_s)
            most = std::max(most.load(), ++atOnce);
        if (call == u"finish"_s)
            --atOnce;
    };
    const auto use = [this](std::mt19937::result_type mySeed) {
        std::mt19937 mine(mySeed);
        LibraryRefresh refresh([](quint8) {});
        for (int round = 0; round < Rounds; ++round) {
            refresh.start(plan());
            for (auto turns = mine() % 200; turns > 0; --turns)
                std::this_thread::yield();
            refresh.isRunning();
            if (mine() % 2 == 0)
                refresh.cancelAndWait();
        }
        refresh.cancelAndWait();
    };
    std::thread other(use, random());
    use(random());
    other.join();
    EXPECT_EQ(most, 1);
}
