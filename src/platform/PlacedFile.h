// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_PLACEDFILE_H
#define MARVOLA_PLATFORM_PLACEDFILE_H

#include "platform/FileId.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>
#include <optional>

namespace marvola {

class FileDescriptor;

/// Nothing for what is not open.
std::optional<FileId> idOf(const FileDescriptor &file);
/// Nothing while there is no such folder.
std::optional<FileId> folderIdOf(const QByteArray &folder);

/// Tells one mounted filesystem from others, as far as they have numbers of their own: two cards of the FAT family in
/// one slot have the same.
struct MediumId
{
    dev_t device = 0;
    unsigned long filesystem = 0;

    bool operator==(const MediumId &other) const { return device == other.device && filesystem == other.filesystem; }
};

/// A path to a file, and which folder that file is in: when the path leads to another folder, because a card was
/// pulled, nothing is written there. The folder is held open as long as a copy of the object exists: on cards of the
/// FAT family it keeps its number only while somebody does, and elsewhere another folder might get the number.
class PlacedFile
{
public:
    /// In whatever folder \a path leads to when the file is written. An empty path is no file.
    PlacedFile(const QString &path = {}) : m_path(path) {}

    /// In the folder that \a path leads to now.
    static PlacedFile here(const QString &path);

    const QString &path() const { return m_path; }
    bool isEmpty() const { return m_path.isEmpty(); }
    std::optional<FileId> folder() const;
    /// Which medium the folder is on; nothing where no folder was found.
    std::optional<MediumId> medium() const;
    /// Whether the path leads to that folder; in whatever folder is true.
    bool isInPlace() const;

    /// Closes the folder for all copies of the object, so that its medium can be unmounted.
    void letGo() const;

    /// The file as one of groups and keys.
    ConfigFile open() const;

private:
    struct Folder;

    QString m_path;
    std::shared_ptr<Folder> m_folder;
};

} // namespace marvola

#endif
