// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_MEDIAFILE_H
#define MARVOLA_FFMPEG_MEDIAFILE_H

#include <QtCore/QByteArray>

#include <chrono>
#include <ctime>
#include <optional>
#include <sys/types.h>

struct stat;

namespace marvola {

inline constexpr qint64 KiB = 1024;
inline constexpr qint64 MiB = 1024 * KiB;

/// Tells one state of one file from every other: where it lies, how long it is, when it was last changed.
struct FileIdentity
{
    dev_t device;
    ino_t inode;
    off_t size;
    timespec modified;
    timespec changed;

    static FileIdentity of(const struct stat &status);
    /// The identity of the file at \a path now; none when there is none to be had.
    static std::optional<FileIdentity> of(const QByteArray &path);

    bool operator==(const FileIdentity &other) const;
};

/// How much of one file may be read, and for how long.
struct ReadBudget
{
    qint64 bytes;
    std::chrono::milliseconds time;
};

/// One regular file, opened once and read within a budget. Reads past the budget fail like reads of a broken medium.
///
/// The size is that of the moment of opening: what is appended later is not seen, so a growing file ends too.
class MediaFile
{
public:
    /// Opens the file at \a path. Devices, sockets, folders and pipes stay closed, and none of them is waited for.
    MediaFile(const QByteArray &path, const ReadBudget &budget);
    ~MediaFile();
    MediaFile(const MediaFile &) = delete;
    MediaFile &operator=(const MediaFile &) = delete;

    bool isOpen() const { return m_descriptor >= 0; }
    const FileIdentity &identity() const { return m_identity; }
    qint64 size() const { return m_identity.size; }

    /// Reads up to \a count bytes at \a offset into \a buffer.
    /// \return how many were read, 0 at the end of the file, -1 on an error and when the budget is used up.
    qint64 read(qint64 offset, void *buffer, qint64 count);
    /// The \a count bytes at \a offset, fewer where the file ends or cannot be read. For small pieces that lie close
    /// together: a block is read ahead and kept.
    QByteArray bytes(qint64 offset, qint64 count);

    /// Whether the budget of bytes or of time is used up.
    bool isExhausted() const;
    /// Whether what was read depended on the moment: a read failed, or the time is used up.
    bool isDisturbed() const { return m_hasFailed || isLate(); }
    /// How much was asked of the operating system so far.
    qint64 bytesRead() const { return m_bytesRead; }

private:
    bool isLate() const;

    int m_descriptor = -1;
    bool m_hasFailed = false;
    FileIdentity m_identity{};
    qint64 m_bytesLeft;
    qint64 m_bytesRead = 0;
    std::chrono::steady_clock::time_point m_deadline;
    qint64 m_blockOffset = 0;
    QByteArray m_block;
};

} // namespace marvola

#endif
