// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MediaFile.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marvola {

namespace {

/// Headers, tags and boxes mostly lie within so much of one another.
constexpr qint64 BlockSize = 4 * KiB;

int openForReading(const QByteArray &path)
{
    // A path with a NUL inside would open another file than the one named.
    if (path.isEmpty() || path.contains('\0'))
        return -1;
    int descriptor = -1;
    do
        descriptor = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    while (descriptor < 0 && errno == EINTR);
    return descriptor;
}

bool isSameTime(const timespec &left, const timespec &right)
{
    return left.tv_sec == right.tv_sec && left.tv_nsec == right.tv_nsec;
}

} // namespace

FileIdentity FileIdentity::of(const struct stat &status)
{
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim, status.st_ctim};
}

std::optional<FileIdentity> FileIdentity::of(const QByteArray &path)
{
    struct stat status = {};
    if (path.contains('\0') || ::stat(path.constData(), &status) != 0)
        return std::nullopt;
    return of(status);
}

bool FileIdentity::operator==(const FileIdentity &other) const
{
    return device == other.device && inode == other.inode && size == other.size &&
           isSameTime(modified, other.modified) && isSameTime(changed, other.changed);
}

MediaFile::MediaFile(const QByteArray &path, const ReadBudget &budget)
    : m_descriptor(openForReading(path))
    , m_bytesLeft(budget.bytes)
    , m_deadline(std::chrono::steady_clock::now() + budget.time)
{
    struct stat status = {};
    if (m_descriptor < 0)
        return;
    if (::fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        ::close(m_descriptor);
        m_descriptor = -1;
        return;
    }
    m_identity = FileIdentity::of(status);
}

MediaFile::~MediaFile()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}

qint64 MediaFile::read(qint64 offset, void *buffer, qint64 count)
{
    if (m_descriptor < 0 || offset < 0 || count < 0)
        return -1;
    count = std::min(count, size() - std::min(offset, size()));
    if (count == 0)
        return 0;
    if (isExhausted())
        return -1;
    count = std::min(count, m_bytesLeft);
    ssize_t got = -1;
    do
        got = ::pread(m_descriptor, buffer, static_cast<size_t>(count), offset);
    while (got < 0 && errno == EINTR);
    m_hasFailed |= got < 0;
    if (got > 0) {
        m_bytesLeft -= got;
        m_bytesRead += got;
    }
    return got;
}

QByteArray MediaFile::bytes(qint64 offset, qint64 count)
{
    count = std::clamp<qint64>(count, 0, size() - std::clamp<qint64>(offset, 0, size()));
    if (offset < m_blockOffset || offset + count > m_blockOffset + m_block.size()) {
        QByteArray block(std::min(std::max(count, BlockSize), size() - std::min(offset, size())), Qt::Uninitialized);
        qint64 filled = 0;
        while (filled < block.size()) {
            const qint64 got = read(offset + filled, block.data() + filled, block.size() - filled);
            if (got <= 0)
                break;
            filled += got;
        }
        block.truncate(filled);
        m_block = block;
        m_blockOffset = offset;
    }
    return m_block.mid(offset - m_blockOffset, count);
}

bool MediaFile::isExhausted() const
{
    return m_bytesLeft <= 0 || isLate();
}

bool MediaFile::isLate() const
{
    return std::chrono::steady_clock::now() >= m_deadline;
}

} // namespace marvola
