// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CACHEFILE_H
#define MARVOLA_PLATFORM_CACHEFILE_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

namespace marvola {

/// A file of bytes that can be made again: it may be lost at any time, but what is read is what was once written, as a
/// whole, or nothing. In front of the bytes stand a mark, a version, their check and their length.
///
/// Nothing but regular files is read or replaced: no links, no devices; nor is a file that begins with something else
/// than the mark (zeros apart, which a power cut may leave), for it is somebody else's.
class CacheFile
{
public:
    /// Longer contents are neither written nor read.
    static constexpr qsizetype MaxSize = qsizetype(32) * 1024 * 1024;
    /// What stands in front of the bytes, and how long that is in all.
    static constexpr QByteArrayView Mark{"Marvola answers\n"};
    static constexpr qsizetype HeaderSize = 32;

    /// An empty path, and one with a NUL, is a file that is missing and cannot be written.
    explicit CacheFile(const QString &path);

    /// What was written last; empty when the file is missing or anything about it is wrong.
    QByteArray read() const;
    /// Replaces the file by one with \a content, in a folder that exists; readers find the old one or the new one.
    /// Never waits for others: while somebody else writes in that folder, nothing is written.
    /// \return whether it was
    [[nodiscard]] bool write(QByteArrayView content) const;

private:
    QByteArray m_path;
};

} // namespace marvola

#endif
