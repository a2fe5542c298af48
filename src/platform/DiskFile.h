// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_DISKFILE_H
#define MARVOLA_PLATFORM_DISKFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

/// Single steps on files of the operating system, each checked. Paths are as the system takes them.
namespace marvola {

struct DiskFile
{
    enum class Outcome {
        Read,
        Missing,
        Damaged, ///< it is there, but the medium does not give its bytes
        Refused  ///< it is no regular file, is too long, or may not be read
    };
    Outcome outcome = Outcome::Missing;
    QByteArray bytes; ///< all of them when it was read, else none
};

/// Reads a regular file of at most \a maxSize bytes. Follows no link in its last name, and never waits for the writer
/// of a pipe.
DiskFile readDiskFile(const QByteArray &path, qsizetype maxSize);

bool existsOnDisk(const QByteArray &path);

/// Whether nothing has the name \a path, for certain: a medium that does not answer may have something there.
bool isNameFree(const QByteArray &path);

/// Whether something has the name \a path that is no regular file, for certain.
bool isNoFile(const QByteArray &path);

/// Whether \a path can be written: a regular file of at most \a maxSize bytes that may be written, or a name that is
/// free, below a directory that may be written. Makes nothing to find out.
bool isDiskWritable(const QByteArray &path, qsizetype maxSize);

/// \a path, or what it links to; the file need not exist.
QByteArray resolvedPath(const QByteArray &path);

/// The directory that \a path lies in.
QByteArray directoryOf(const QByteArray &path);

/// Makes \a directory and what is missing above it, durably.
[[nodiscard]] bool makeDirectories(const QByteArray &directory);

/// Makes the new name \a path of a renamed file durable, where its filesystem has such an operation.
[[nodiscard]] bool syncRenamed(const QByteArray &path);

/// Makes the new file \a path with \a bytes, durable before the call returns, with the mode and owner of \a model if
/// that exists. No other file is followed or overwritten.
/// \return 0, or the system's error; nothing is left behind then.
[[nodiscard]] int createDiskFile(const QByteArray &path, QByteArrayView bytes, const QByteArray &model);

/// Makes the open file \a fd \a size bytes long, with line ends behind what it holds, durably. Where the medium has no
/// room it stays as long as it was.
[[nodiscard]] bool growDiskFile(int fd, qsizetype size);

/// Whether \a directory lies on a filesystem where a power cut during a rename can cost both files: the FAT family, and
/// what is mounted through user space, which may be of it.
bool hasFragileRenames(const QByteArray &directory);

/// Writes \a bytes at \a offset of an open file.
[[nodiscard]] bool writeAllAt(int fd, qsizetype offset, QByteArrayView bytes);

} // namespace marvola

#endif
