// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "M3uFile.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// Opens \a path if it is a regular file, without ever waiting for one who writes to a pipe.
bool openRegular(QFile &file, const QString &path, QString &problem)
{
    const int descriptor = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        problem = u"cannot read %1: %2; name a file that can be read"_s.arg(path, qt_error_string(errno));
        return false;
    }
    const bool isOpen = file.open(descriptor, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle);
    struct stat status = {};
    if (!isOpen || ::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        problem = u"%1 is no regular file; name a file"_s.arg(path);
        return false;
    }
    return true;
}

/// commit() does not tell that the last of what was written found no room, and puts a file without it in place.
bool writeWhole(QSaveFile &file, const QByteArray &bytes)
{
    return file.write(bytes) == bytes.size() && file.flush() && ::fdatasync(file.handle()) == 0;
}

} // namespace

std::optional<QByteArray> readM3uFile(const QString &path, QString &problem)
{
    QFile file;
    if (!openRegular(file, path, problem)) {
        return std::nullopt;
    }
    QByteArray bytes = file.read(MaxM3uBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        problem = u"cannot read %1: %2; name a file that can be read"_s.arg(path, file.errorString());
        return std::nullopt;
    }
    if (bytes.size() > MaxM3uBytes) {
        problem = u"%1 has more than %2 bytes, which is no playlist; name another file"_s.arg(path).arg(MaxM3uBytes);
        return std::nullopt;
    }
    return bytes;
}

bool writeM3uFile(const QString &path, const QByteArray &bytes, Overwrite overwrite, QString &problem)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile()) {
        problem = u"%1 is no regular file; name another file"_s.arg(path);
        return false;
    }
    if (info.exists() && overwrite == Overwrite::No) {
        problem = u"there is a file %1 already; give --replace to write over it, or name another file"_s.arg(path);
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || !writeWhole(file, bytes) || !file.commit()) {
        problem = u"cannot write %1: %2; check the directory and its room, or name another file"_s.arg(
            path, file.errorString());
        return false;
    }
    return true;
}

} // namespace marvola
