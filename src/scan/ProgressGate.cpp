// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/ProgressGate.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEvent>

#include <algorithm>
#include <atomic>
#include <chrono>

namespace marvola {

namespace {

constexpr std::chrono::milliseconds DeliveryInterval(10);

/// Calls of receivers under way, of all gates: on all threads, and on this one.
std::atomic<int> allCalls = 0;
thread_local int ownCalls = 0;

void deliverQueuedCalls()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
}

} // namespace

ProgressGate::ProgressGate(std::function<void(quint8)> receiver) : m_receiver(std::move(receiver))
{
}

void ProgressGate::report(quint8 percent)
{
    std::unique_lock lock(m_mutex);
    if (!m_open || !m_receiver)
        return;
    m_callers.push_back(std::this_thread::get_id());
    lock.unlock();
    ++allCalls;
    ++ownCalls;
    m_receiver(percent);
    --ownCalls;
    --allCalls;
    lock.lock();
    m_callers.erase(std::find(m_callers.begin(), m_callers.end(), std::this_thread::get_id()));
    m_callEnded.notify_all();
}

void ProgressGate::close()
{
    std::unique_lock lock(m_mutex);
    m_open = false;
    while (!m_callEnded.wait_for(lock, DeliveryInterval, [this] { return !calledElsewhere(); })) {
        lock.unlock();
        deliverQueuedCalls();
        lock.lock();
    }
}

void ProgressGate::letReceiversOn()
{
    if (allCalls > ownCalls)
        deliverQueuedCalls();
}

/// A call on this very thread is the one that closes the gate: waiting for it would never end.
bool ProgressGate::calledElsewhere() const
{
    const std::thread::id self = std::this_thread::get_id();
    return std::any_of(m_callers.begin(), m_callers.end(), [self](std::thread::id caller) { return caller != self; });
}

} // namespace marvola
