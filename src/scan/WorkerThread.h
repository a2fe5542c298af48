// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_WORKERTHREAD_H
#define MARVOLA_SCAN_WORKERTHREAD_H

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <pthread.h>

namespace marvola {

/// The process's one worker thread, shared by all library objects: at most one works at a time. The thread of the last
/// refresh may still be inside its farewell, the final report of progress, when the next one starts: for that moment
/// there are two threads, of which only one works. The operations may be called on any thread, the worker included.
class WorkerThread
{
public:
    static WorkerThread &instance();

    /// Starts a thread with default attributes that calls \a work and then \a farewell. The next worker may be started
    /// as soon as \a work has returned, from within \a farewell too.
    /// \return false when a worker is at work, or the system gives no thread
    [[nodiscard]] bool start(std::function<void()> work, std::function<void()> farewell);
    /// Waits until the thread that was started last has ended. Returns at once when there was none, when it has been
    /// joined, and on that thread itself.
    void join();

private:
    struct Job;
    struct Handle
    {
        pthread_t thread{};
        bool claimed = false; ///< somebody joins it, or it was detached
        bool joined = false;
    };

    WorkerThread() = default;
    static void *run(void *job);

    std::mutex m_mutex;
    std::condition_variable m_joined;
    std::shared_ptr<Handle> m_latest;
    bool m_working = false; ///< from start() until the work has returned
};

} // namespace marvola

#endif
