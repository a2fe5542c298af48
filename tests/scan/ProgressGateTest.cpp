// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/ProgressGate.h"

#include "Doorbell.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <vector>

using marvola::ProgressGate;

TEST(ProgressGate, CallsTheReceiverOnTheCallersThread)
{
    std::vector<std::pair<int, std::thread::id>> calls;
    ProgressGate gate([&calls](quint8 percent) { calls.emplace_back(percent, std::this_thread::get_id()); });
    gate.report(0);
    gate.report(255);
    ASSERT_EQ(calls.size(), 2U);
    EXPECT_EQ(calls[0], std::make_pair(0, std::this_thread::get_id()));
    EXPECT_EQ(calls[1].first, 255);
}

TEST(ProgressGate, NothingComesAfterClosing)
{
    int calls = 0;
    ProgressGate gate([&calls](quint8) { ++calls; });
    gate.report(1);
    gate.close();
    gate.report(2);
    gate.close();
    EXPECT_EQ(calls, 1);
}

TEST(ProgressGate, MayHaveNoReceiver)
{
    ProgressGate gate({});
    gate.report(1);
    gate.close();
}

TEST(ProgressGate, ReceiverMayReportAndClose)
{
    std::vector<int> calls;
    std::unique_ptr<ProgressGate> gate;
    gate = std::make_unique<ProgressGate>([&](quint8 percent) {
        calls.push_back(percent);
        if (percent == 1)
            gate->report(2);
        if (percent == 2)
            gate->close();
    });
    gate->report(1);
    gate->report(1);
    EXPECT_EQ(calls, std::vector<int>({1, 2}));
}

TEST(ProgressGate, ClosingWaitsForACallUnderWay)
{
    std::promise<void> entered;
    std::promise<void> go;
    std::atomic<bool> left = false;
    ProgressGate gate([&](quint8) {
        entered.set_value();
        go.get_future().wait();
        left = true;
    });
    std::thread worker([&gate] { gate.report(1); });
    entered.get_future().wait();
    auto closed = std::async(std::launch::async, [&] {
        gate.close();
        return left.load();
    });
    EXPECT_EQ(closed.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
    go.set_value();
    EXPECT_TRUE(closed.get());
    worker.join();
}

TEST(ProgressGate, ClosingDeliversWhatTheReceiverWaitsFor)
{
    Doorbell here;
    std::promise<void> entered;
    ProgressGate gate([&](quint8) {
        entered.set_value();
        here.ringAndWait();
    });
    std::thread worker([&gate] { gate.report(1); });
    entered.get_future().wait();
    gate.close();
    EXPECT_TRUE(here.hasRung());
    worker.join();
}

TEST(ProgressGate, LettingReceiversOnDeliversOnlyWhileOneIsCalledElsewhere)
{
    Doorbell here;
    QMetaObject::invokeMethod(&here, &Doorbell::note, Qt::QueuedConnection);
    ProgressGate own([](quint8) { ProgressGate::letReceiversOn(); });
    own.report(1);
    ProgressGate::letReceiversOn();
    EXPECT_FALSE(here.hasRung()) << "nobody waits for this thread";

    std::atomic<bool> left = false;
    ProgressGate gate([&](quint8) {
        here.ringAndWait();
        left = true;
    });
    std::thread worker([&gate] { gate.report(1); });
    while (!left)
        ProgressGate::letReceiversOn();
    EXPECT_TRUE(here.hasRung());
    worker.join();
}
