// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_PLACEDFILE_H
#define MARVOLA_PLATFORM_PLACEDFILE_H

#include "platform/FileId.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace marvola {

/// Nothing while there is no such folder.
std::optional<FileId> folderIdOf(const QByteArray &folder);

/// A path to a file, and which folder that file is in: when the path leads to another folder, because a card was
/// pulled, nothing is written there.
class PlacedFile
{
public:
    /// In whatever folder \a path leads to when the file is written. An empty path is no file.
    PlacedFile(const QString &path = {}) : m_path(path) {}

    /// In the folder that \a path leads to now.
    static PlacedFile here(const QString &path);

    const QString &path() const { return m_path; }
    bool isEmpty() const { return m_path.isEmpty(); }
    const std::optional<FileId> &folder() const { return m_folder; }
    bool isInPlace() const;

    /// The file as one of groups and keys.
    ConfigFile open() const;

private:
    QString m_path;
    std::optional<FileId> m_folder;
};

} // namespace marvola

#endif
