// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_FILESTAMP_H
#define MARVOLA_SCAN_FILESTAMP_H

#include <QtCore/QByteArray>

#include <optional>

namespace marvola {

/// A moment of the clock by which files are stamped.
struct FileTime
{
    qint64 seconds = 0;
    quint32 nanoseconds = 0;

    static FileTime now();

    bool operator==(const FileTime &other) const
    {
        return seconds == other.seconds && nanoseconds == other.nanoseconds;
    }
};

/// What a file's state is known by: a file with another stamp has changed. Device and inode are left out, since a card
/// has other numbers each time that it is put in.
struct FileStamp
{
    qint64 size = 0;
    FileTime modified;
    FileTime changed; ///< contents, owner, name or mode

    /// The stamp of the regular file at \a path, links followed; nothing when there is none.
    static std::optional<FileStamp> of(const QByteArray &path);

    /// Whether every change after \a moment gives the file another stamp. That is so when the stamp is older than the
    /// coarsest clock of a file system is behind: FAT counts in two seconds, and a kernel's tick adds some
    /// milliseconds.
    bool isSettledAt(const FileTime &moment) const;

    bool operator==(const FileStamp &other) const
    {
        return size == other.size && modified == other.modified && changed == other.changed;
    }
};

} // namespace marvola

#endif
