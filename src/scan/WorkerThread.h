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
/// refresh may still be inside its farewell, the final report of progress, when the next one starts: that one waits for
/// its end, so that receivers of progress are never called by two. The operations may be called on any thread, the
/// worker included.
class WorkerThread
{
public:
    static WorkerThread &instance();

    /// Starts a thread with default attributes that calls \a work and then \a farewell. The next worker may be started
    /// as soon as \a work has returned, from within \a farewell too.
    /// \return false when a worker is at work, or the system gives no thread
    [[nodiscard]] bool start(std::function<void()> work, std::function<void()> farewell);
    /// Calls \a work on this thread, in the worker's place: none can be started meanwhile.
    /// \return false, with nothing called, when a worker is at work
    [[nodiscard]] bool workHere(const std::function<void()> &work);
    /// Waits until the thread that was started last has ended, and calls \a meanwhile now and then, which may join too.
    /// Returns at once when there was none, when it has ended, and on a worker thread.
    void join(const std::function<void()> &meanwhile = {});

private:
    struct Job;
    struct Handle
    {
        pthread_t thread{};
        bool ended = false;    ///< nothing is left of it but its return
        bool released = false; ///< joined or detached
    };

    WorkerThread() = default;
    static void *run(void *job);

    std::mutex m_mutex;
    std::condition_variable m_ended;
    std::shared_ptr<Handle> m_latest;
    bool m_working = false; ///< from start() until the work has returned, and within workHere()
};

} // namespace marvola

#endif
