// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/LookAhead.h"

#include "platform/FileDescriptor.h"

#include <algorithm>
#include <ctime>
#include <utility>

#include <sys/stat.h>

namespace marvola {

namespace {

/// Headers are at the front; tags, and the headers of some recordings, at the end.
constexpr off_t PieceSize = off_t(64) * 1024;

bool isRegular(const QByteArray &path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

LookAhead::LookAhead(const QStringList &files, qsizetype count, Hint hint)
    : m_files(files), m_count(count), m_hint(std::move(hint))
{
}

void LookAhead::described(std::chrono::nanoseconds waited)
{
    ++m_next;
    if (waited > SlowFile)
        m_end = m_next + Patience;
    // The next file is asked for at once: a hint would come too late.
    m_hinted = std::max(m_hinted, m_next + 1);
    const qsizetype end = std::min({m_end, m_next + Reach, m_count, m_files.size()});
    for (; m_hinted < end; ++m_hinted)
        m_hint(m_files.at(m_hinted).toUtf8());
}

std::chrono::nanoseconds LookAhead::waitedSoFar()
{
    timespec ran = {};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ran);
    return std::chrono::steady_clock::now().time_since_epoch() - std::chrono::seconds(ran.tv_sec) -
           std::chrono::nanoseconds(ran.tv_nsec);
}

void LookAhead::hintAt(const QByteArray &path)
{
    // Looked at first, for even opening does something to some devices.
    if (path.contains('\0') || !isRegular(path))
        return;
    const FileDescriptor file = FileDescriptor::open(path.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY);
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        return;
    static_cast<void>(::posix_fadvise(file.get(), 0, PieceSize, POSIX_FADV_WILLNEED));
    if (status.st_size > PieceSize)
        static_cast<void>(::posix_fadvise(file.get(), std::max(PieceSize, status.st_size - PieceSize), PieceSize,
                                          POSIX_FADV_WILLNEED));
}

} // namespace marvola
