// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_PROGRESSGATE_H
#define MARVOLA_SCAN_PROGRESSGATE_H

#include <QtCore/qglobal.h>

#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace marvola {

/// Lets progress through to its receiver until it is closed. May be used by several threads at once, and from within
/// the receiver.
class ProgressGate
{
public:
    explicit ProgressGate(std::function<void(quint8)> receiver);

    /// Calls the receiver on this thread, unless closed.
    void report(quint8 percent);
    /// Closes for good, and waits for calls that are under way on other threads. While it waits it delivers the calls
    /// that those queued to this thread's objects, so that a receiver that waits for such an object gets on.
    void close();

    /// Delivers the calls that are queued to this thread's objects if a receiver, of any gate, is being called on
    /// another thread: it may be waiting for one of them.
    static void letReceiversOn();

private:
    bool calledElsewhere() const;

    const std::function<void(quint8)> m_receiver;
    std::mutex m_mutex;
    std::condition_variable m_callEnded;
    std::vector<std::thread::id> m_callers; ///< the thread of each call under way
    bool m_open = true;
};

} // namespace marvola

#endif
