// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/DirectoryLock.h"

#include "platform/FileDescriptor.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <thread>
#include <vector>

#include <sys/file.h>
#include <sys/stat.h>

namespace marvola {

namespace {

constexpr std::chrono::seconds MostWaiting(10);
/// Short beside the moments between two commits of another program, which would keep the lock from everybody else.
constexpr std::chrono::microseconds WaitingStep(10);

} // namespace

/// One open directory with the lock on it; closing it unlocks.
class DirectoryLock::Held
{
public:
    explicit Held(const QByteArray &directory)
        : m_directory(FileDescriptor::open(directory.constData(), O_RDONLY | O_DIRECTORY))
    {
        m_known = m_directory.isOpen() && ::fstat(m_directory.get(), &m_status) == 0;
    }

    bool isKnown() const { return m_known; }
    bool isSameDirectory(const Held &other) const
    {
        return m_status.st_dev == other.m_status.st_dev && m_status.st_ino == other.m_status.st_ino;
    }

    /// \return 0, or what stands in the way: EWOULDBLOCK when another holds the lock.
    int lock(Patience patience)
    {
        const auto deadline = std::chrono::steady_clock::now() + MostWaiting;
        for (;;) {
            if (::flock(m_directory.get(), LOCK_EX | LOCK_NB) == 0)
                return 0;
            const int error = errno;
            const bool isOver = patience == Patience::DoNotWait || std::chrono::steady_clock::now() >= deadline;
            if (error != EINTR && (error != EWOULDBLOCK || isOver))
                return error;
            std::this_thread::sleep_for(WaitingStep);
        }
    }

    /// What the calling thread holds, including what it has let go of since.
    static std::vector<std::weak_ptr<Held>> &ofThisThread()
    {
        thread_local std::vector<std::weak_ptr<Held>> held;
        return held;
    }

private:
    FileDescriptor m_directory;
    struct stat m_status = {};
    bool m_known = false;
};

DirectoryLock::DirectoryLock(const QByteArray &directory, Patience patience)
{
    auto wanted = std::make_shared<Held>(directory);
    if (!wanted->isKnown())
        return;
    auto &mine = Held::ofThisThread();
    mine.erase(std::remove_if(mine.begin(), mine.end(), [](const auto &held) { return held.expired(); }), mine.end());
    for (const auto &candidate : mine) {
        auto held = candidate.lock();
        if (held && held->isSameDirectory(*wanted)) {
            m_held = std::move(held);
            return;
        }
    }
    if (const int error = wanted->lock(patience)) {
        m_isHeldByAnother = error == EWOULDBLOCK;
        return;
    }
    m_held = std::move(wanted);
    mine.push_back(m_held);
}

} // namespace marvola
