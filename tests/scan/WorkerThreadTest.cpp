// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/WorkerThread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <thread>

using marvola::WorkerThread;

namespace {

WorkerThread &worker = WorkerThread::instance();

void nothing()
{
}

/// Makes pthread_create() fail for threads with default attributes.
class NoMoreThreads
{
public:
    NoMoreThreads()
    {
        pthread_getattr_default_np(&m_before);
        pthread_attr_t absurd;
        pthread_attr_init(&absurd);
        pthread_attr_setstacksize(&absurd, size_t(1) << 46);
        EXPECT_EQ(pthread_setattr_default_np(&absurd), 0);
        pthread_attr_destroy(&absurd);
    }
    ~NoMoreThreads()
    {
        EXPECT_EQ(pthread_setattr_default_np(&m_before), 0);
        pthread_attr_destroy(&m_before);
    }
    NoMoreThreads(const NoMoreThreads &) = delete;
    NoMoreThreads &operator=(const NoMoreThreads &) = delete;

private:
    pthread_attr_t m_before;
};

} // namespace

TEST(WorkerThread, CallsWorkThenFarewellOnAnotherThread)
{
    std::string order;
    std::thread::id thread;
    ASSERT_TRUE(worker.start(
        [&] {
            order += "work ";
            thread = std::this_thread::get_id();
        },
        [&] { order += "farewell"; }));
    worker.join();
    EXPECT_EQ(order, "work farewell");
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(WorkerThread, OneWorksAtATime)
{
    std::promise<void> go;
    ASSERT_TRUE(worker.start([&] { go.get_future().wait(); }, nothing));
    EXPECT_FALSE(worker.start(nothing, nothing));
    go.set_value();
    worker.join();
    EXPECT_TRUE(worker.start(nothing, nothing));
    worker.join();
}

TEST(WorkerThread, WorkHereTakesItsPlace)
{
    std::thread::id thread;
    EXPECT_TRUE(worker.workHere([&] {
        thread = std::this_thread::get_id();
        EXPECT_FALSE(worker.start(nothing, nothing));
        EXPECT_FALSE(worker.workHere(nothing));
        worker.join();
    }));
    EXPECT_EQ(thread, std::this_thread::get_id());
    EXPECT_TRUE(worker.start(nothing, nothing));
    worker.join();
}

TEST(WorkerThread, NoWorkHereWhileItWorks)
{
    std::promise<void> inFarewell;
    std::promise<void> work;
    std::promise<void> farewell;
    ASSERT_TRUE(worker.start([&] { work.get_future().wait(); },
                             [&] {
                                 inFarewell.set_value();
                                 farewell.get_future().wait();
                             }));
    bool isCalled = false;
    const auto call = [&isCalled] { isCalled = true; };
    EXPECT_FALSE(worker.workHere(call));
    EXPECT_FALSE(isCalled);
    work.set_value();
    inFarewell.get_future().wait();
    EXPECT_TRUE(worker.workHere(call)) << "it has nothing left to do";
    EXPECT_TRUE(isCalled);
    farewell.set_value();
    worker.join();
}

TEST(WorkerThread, JoiningWithoutAWorkerReturnsAtOnce)
{
    worker.join();
    ASSERT_TRUE(worker.start(nothing, nothing));
    worker.join();
    worker.join();
}

TEST(WorkerThread, JoiningOnTheWorkerReturnsAtOnce)
{
    int joins = 0;
    const auto join = [&joins] {
        worker.join();
        ++joins;
    };
    ASSERT_TRUE(worker.start(join, join));
    worker.join();
    EXPECT_EQ(joins, 2);
}

TEST(WorkerThread, JoiningWaitsForTheFarewellToo)
{
    std::promise<void> go;
    std::atomic<bool> ended = false;
    ASSERT_TRUE(worker.start(nothing, [&] {
        go.get_future().wait();
        ended = true;
    }));
    std::thread([&go] { go.set_value(); }).detach();
    worker.join();
    EXPECT_TRUE(ended);
}

TEST(WorkerThread, TwoMayJoin)
{
    std::promise<void> go;
    std::atomic<bool> ended = false;
    ASSERT_TRUE(worker.start(
        [&] {
            go.get_future().wait();
            ended = true;
        },
        nothing));
    const auto join = [&ended] {
        worker.join();
        return ended.load();
    };
    auto first = std::async(std::launch::async, join);
    auto second = std::async(std::launch::async, join);
    go.set_value();
    EXPECT_TRUE(first.get());
    EXPECT_TRUE(second.get());
}

TEST(WorkerThread, JoiningMayJoinMeanwhile)
{
    std::promise<void> go;
    std::atomic<bool> ended = false;
    ASSERT_TRUE(worker.start(
        [&] {
            go.get_future().wait();
            ended = true;
        },
        nothing));
    int calls = 0;
    worker.join([&] {
        if (calls++ > 0)
            return;
        go.set_value();
        worker.join();
        EXPECT_TRUE(ended);
    });
    EXPECT_GE(calls, 1);
}

TEST(WorkerThread, NothingOfTheJobIsLeftAfterJoining)
{
    for (int round = 0; round < 100; ++round) {
        const auto held = std::make_shared<int>(0);
        ASSERT_TRUE(worker.start([held] {}, [held] {}));
        worker.join();
        EXPECT_EQ(held.use_count(), 1) << round;
    }
}

TEST(WorkerThread, NextStartsFromTheFarewell)
{
    std::promise<bool> started;
    std::promise<void> secondRan;
    ASSERT_TRUE(worker.start(
        nothing, [&] { started.set_value(worker.start(nothing, [&secondRan] { secondRan.set_value(); })); }));
    EXPECT_TRUE(started.get_future().get());
    secondRan.get_future().wait();
    worker.join();
}

TEST(WorkerThread, NextWaitsForTheFarewell)
{
    std::promise<void> inFarewell;
    std::promise<void> go;
    std::atomic<bool> left = false;
    bool sawItLeft = false;
    ASSERT_TRUE(worker.start(nothing, [&] {
        inFarewell.set_value();
        go.get_future().wait();
        std::this_thread::yield();
        left = true;
    }));
    inFarewell.get_future().wait();
    ASSERT_TRUE(worker.start([&] { sawItLeft = left; }, nothing));
    go.set_value();
    worker.join();
    EXPECT_TRUE(sawItLeft);
}

TEST(WorkerThread, FarewellThatStartsTheNextMayJoin)
{
    std::atomic<bool> ran = false;
    std::promise<void> joined;
    ASSERT_TRUE(worker.start(nothing, [&] {
        EXPECT_TRUE(worker.start([&ran] { ran = true; }, nothing));
        worker.join();
        EXPECT_FALSE(ran) << "the next one waits";
        joined.set_value();
    }));
    joined.get_future().wait();
    worker.join();
    EXPECT_TRUE(ran);
}

TEST(WorkerThread, ManyAreStartedWithoutJoining)
{
    // More than the address space has room for if the stacks stayed.
    const int rounds = 3000;
    std::atomic<int> ran = 0;
    for (int i = 0; i < rounds; ++i) {
        std::promise<void> done;
        ASSERT_TRUE(worker.start([&ran] { ++ran; }, [&done] { done.set_value(); })) << i;
        done.get_future().wait();
    }
    worker.join();
    EXPECT_EQ(ran, rounds);
}

TEST(WorkerThread, SystemWithoutThreadsIsAFailureThatPasses)
{
    {
        const NoMoreThreads none;
        bool called = false;
        EXPECT_FALSE(worker.start([&called] { called = true; }, [&called] { called = true; }));
        worker.join();
        EXPECT_FALSE(called);
    }
    EXPECT_TRUE(worker.start(nothing, nothing));
    worker.join();
}
