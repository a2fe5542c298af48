// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/PlacedFile.h"

#include "platform/DiskFile.h"

#include <QtCore/QFile>

#include <sys/stat.h>

namespace marvola {

namespace {

/// A link's file is where the link leads to.
std::optional<FileId> folderOf(const QString &path)
{
    return folderIdOf(directoryOf(resolvedPath(QFile::encodeName(path))));
}

} // namespace

std::optional<FileId> folderIdOf(const QByteArray &folder)
{
    struct stat status = {};
    if (::stat(folder.constData(), &status) != 0)
        return std::nullopt;
    return FileId{status.st_dev, status.st_ino};
}

PlacedFile PlacedFile::here(const QString &path)
{
    PlacedFile file(path);
    if (!path.isEmpty())
        file.m_folder = folderOf(path);
    return file;
}

bool PlacedFile::isInPlace() const
{
    return !m_folder || folderOf(m_path) == m_folder;
}

ConfigFile PlacedFile::open() const
{
    return ConfigFile(*this);
}

} // namespace marvola
