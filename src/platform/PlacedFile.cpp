// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/PlacedFile.h"

#include "platform/DiskFile.h"
#include "platform/FileDescriptor.h"

#include <QtCore/QFile>

#include <sys/stat.h>
#include <sys/statvfs.h>

namespace marvola {

namespace {

/// A link's file is where the link leads to.
QByteArray folderOf(const QString &path)
{
    return directoryOf(resolvedPath(QFile::encodeName(path)));
}

} // namespace

std::optional<FileId> idOf(const FileDescriptor &file)
{
    struct stat status = {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
        return std::nullopt;
    return FileId{status.st_dev, status.st_ino};
}

std::optional<FileId> folderIdOf(const QByteArray &folder)
{
    struct stat status = {};
    if (::stat(folder.constData(), &status) != 0)
        return std::nullopt;
    return FileId{status.st_dev, status.st_ino};
}

struct PlacedFile::Folder
{
    FileDescriptor held;
    FileId id;
};

PlacedFile PlacedFile::here(const QString &path)
{
    PlacedFile file(path);
    if (path.isEmpty())
        return file;
    const QByteArray folder = folderOf(path);
    FileDescriptor held = FileDescriptor::open(folder.constData(), O_PATH | O_DIRECTORY);
    // With all descriptors in use there is still the number.
    if (const auto id = held.isOpen() ? idOf(held) : folderIdOf(folder))
        file.m_folder = std::make_shared<Folder>(Folder{std::move(held), *id});
    return file;
}

std::optional<FileId> PlacedFile::folder() const
{
    return m_folder ? std::optional(m_folder->id) : std::nullopt;
}

std::optional<MediumId> PlacedFile::medium() const
{
    if (!m_folder)
        return std::nullopt;
    struct statvfs filesystem = {};
    const bool isTold = ::fstatvfs(m_folder->held.get(), &filesystem) == 0;
    return MediumId{m_folder->id.device, isTold ? filesystem.f_fsid : 0};
}

bool PlacedFile::isInPlace() const
{
    return !m_folder || folderIdOf(folderOf(m_path)) == m_folder->id;
}

void PlacedFile::letGo() const
{
    if (m_folder)
        m_folder->held.close();
}

ConfigFile PlacedFile::open() const
{
    return ConfigFile(*this);
}

} // namespace marvola
