// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_BENCHMARKS_PLAINFILE_H
#define MARVOLA_BENCHMARKS_PLAINFILE_H

#include "platform/FileDescriptor.h"

#include <QtCore/QFile>
#include <QtCore/QString>

#include <cstdio>

/// What reading and durably replacing a file costs when nothing else is done: the floors of the benchmarks.
namespace plain {

using marvola::FileDescriptor;

inline QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly | QIODevice::Unbuffered) ? file.readAll() : QByteArray();
}

/// Puts a new file with \a bytes into the place of \a path, in such a way that a power cut leaves one or the other.
inline bool replace(const QString &path, const QByteArray &bytes)
{
    const QByteArray to = QFile::encodeName(path);
    const QByteArray from = to + ".floor";
    FileDescriptor file = FileDescriptor::open(from.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    const auto size = static_cast<std::size_t>(bytes.size());
    if (::write(file.get(), bytes.constData(), size) != bytes.size() || ::fdatasync(file.get()) != 0 || !file.close() ||
        std::rename(from.constData(), to.constData()) != 0)
        return false;
    const QByteArray folder = to.left(to.lastIndexOf('/'));
    const FileDescriptor directory = FileDescriptor::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    return ::fsync(directory.get()) == 0;
}

} // namespace plain

#endif
