// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/WorkerThread.h"

#include <chrono>
#include <utility>

namespace marvola {

namespace {

constexpr std::chrono::milliseconds MeanwhileInterval(10);

thread_local bool isWorker = false;

} // namespace

struct WorkerThread::Job
{
    WorkerThread &worker;
    std::shared_ptr<Handle> before; ///< the last thread's; it may not have ended yet
    std::shared_ptr<Handle> handle;
    std::function<void()> work;
    std::function<void()> farewell;
};

/// Never destroyed: a worker may outlive the end of main().
WorkerThread &WorkerThread::instance()
{
    static WorkerThread &worker = *new WorkerThread;
    return worker;
}

bool WorkerThread::start(std::function<void()> work, std::function<void()> farewell)
{
    const std::lock_guard lock(m_mutex);
    if (m_working)
        return false;
    // The one before is at its end at most; nobody waited for it, so it cleans up after itself.
    if (m_latest && !std::exchange(m_latest->released, true))
        ::pthread_detach(m_latest->thread);

    auto handle = std::make_shared<Handle>();
    auto job = std::make_unique<Job>(Job{*this, m_latest, handle, std::move(work), std::move(farewell)});
    if (::pthread_create(&handle->thread, nullptr, run, job.get()) != 0)
        return false;
    static_cast<void>(job.release()); // the thread owns it now
    m_latest = std::move(handle);
    m_working = true;
    return true;
}

bool WorkerThread::workHere(const std::function<void()> &work)
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_working, true))
            return false;
    }
    work();
    const std::lock_guard lock(m_mutex);
    m_working = false;
    return true;
}

void WorkerThread::join(const std::function<void()> &meanwhile)
{
    std::unique_lock lock(m_mutex);
    const std::shared_ptr<Handle> handle = m_latest;
    // A worker that waited for the next one would be waited for.
    if (!handle || isWorker)
        return;
    while (!m_ended.wait_for(lock, MeanwhileInterval, [&handle] { return handle->ended; })) {
        if (!meanwhile)
            continue;
        lock.unlock();
        meanwhile();
        lock.lock();
    }
    // Short, and safe under the lock, which a thread that has ended takes no more.
    if (!std::exchange(handle->released, true))
        ::pthread_join(handle->thread, nullptr);
}

void *WorkerThread::run(void *argument)
{
    std::unique_ptr<Job> job(static_cast<Job *>(argument));
    WorkerThread &worker = job->worker;
    const std::shared_ptr<Handle> handle = job->handle;
    isWorker = true;
    {
        std::unique_lock lock(worker.m_mutex);
        worker.m_ended.wait(lock, [&job] { return !job->before || job->before->ended; });
    }
    job->work();
    {
        const std::lock_guard lock(worker.m_mutex);
        worker.m_working = false;
    }
    job->farewell();
    // What the job holds goes first: whoever joined may take it that nothing of it is in use.
    job.reset();
    const std::lock_guard lock(worker.m_mutex);
    handle->ended = true;
    worker.m_ended.notify_all();
    return nullptr;
}

} // namespace marvola
