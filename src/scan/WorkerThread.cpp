// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/WorkerThread.h"

namespace marvola {

struct WorkerThread::Job
{
    WorkerThread &worker;
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
    if (m_latest && !m_latest->claimed) {
        m_latest->claimed = true;
        ::pthread_detach(m_latest->thread);
    }
    m_latest.reset();

    auto job = std::make_unique<Job>(Job{*this, std::move(work), std::move(farewell)});
    auto handle = std::make_shared<Handle>();
    if (::pthread_create(&handle->thread, nullptr, run, job.get()) != 0)
        return false;
    static_cast<void>(job.release()); // the thread owns it now
    m_latest = std::move(handle);
    m_working = true;
    return true;
}

void WorkerThread::join()
{
    std::unique_lock lock(m_mutex);
    const std::shared_ptr<Handle> handle = m_latest;
    if (!handle || ::pthread_equal(handle->thread, ::pthread_self()) != 0)
        return;
    if (handle->claimed) {
        m_joined.wait(lock, [&handle] { return handle->joined; });
        return;
    }
    handle->claimed = true;
    lock.unlock();
    ::pthread_join(handle->thread, nullptr);
    lock.lock();
    handle->joined = true;
    m_joined.notify_all();
}

void *WorkerThread::run(void *argument)
{
    const std::unique_ptr<Job> job(static_cast<Job *>(argument));
    job->work();
    {
        const std::lock_guard lock(job->worker.m_mutex);
        job->worker.m_working = false;
    }
    job->farewell();
    return nullptr;
}

} // namespace marvola
