// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LIBRARY_MOUNTPOINT_H
#define MARVOLA_LIBRARY_MOUNTPOINT_H

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace marvola {

/// Where the filesystem of a directory is mounted. When a card is pulled, the directory that it was mounted on stays,
/// and what is put there goes to another medium, to be hidden as soon as the card comes back.
class MountPoint
{
public:
    /// Of no directory; always mounted.
    MountPoint() = default;
    explicit MountPoint(const QString &dir);

    /// Whether there is still a filesystem, this or another one. True for the filesystem that holds the root directory.
    bool isMounted() const;

private:
    QByteArray m_path; ///< empty for the root directory
};

} // namespace marvola

#endif
