// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/FileStamp.h"

#include <algorithm>
#include <ctime>

#include <sys/stat.h>

namespace marvola {

namespace {

/// Compared in whole seconds, so that more than two full ones lie between.
constexpr qint64 SettlingSeconds = 3;

FileTime fileTime(const timespec &time)
{
    return {static_cast<qint64>(time.tv_sec), static_cast<quint32>(time.tv_nsec)};
}

} // namespace

FileTime FileTime::now()
{
    timespec time = {};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return fileTime(time);
}

std::optional<FileStamp> FileStamp::of(const QByteArray &path)
{
    struct stat status = {};
    // A NUL would end the path early, and make it that of another file.
    if (path.contains('\0') || ::stat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    return FileStamp{status.st_size, fileTime(status.st_mtim), fileTime(status.st_ctim)};
}

bool FileStamp::isSettledAt(const FileTime &moment) const
{
    return std::max(modified.seconds, changed.seconds) < moment.seconds - SettlingSeconds;
}

} // namespace marvola
