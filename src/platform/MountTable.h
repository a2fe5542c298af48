// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_MOUNTTABLE_H
#define MARVOLA_PLATFORM_MOUNTTABLE_H

#include "platform/FileDescriptor.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <optional>
#include <vector>

namespace marvola {

/// The process's mount points, read once and again only after the kernel said that they changed.
///
/// Used by one thread at a time. Where the kernel does not tell its mounts, there are none.
class MountTable
{
public:
    /// The longest mount point that is \a path or lies above it, without a trailing "/" (so "/" is empty); nothing when
    /// none does. Asks the kernel for changes first.
    std::optional<QStringView> pointOf(QStringView path);

    /// The mount points that \a mountInfo, text in the format of /proc/self/mountinfo, names: each once, sorted,
    /// without trailing "/". Lines that are no mounts are skipped.
    static std::vector<QString> parse(QByteArrayView mountInfo);

private:
    void refresh();

    FileDescriptor m_mountInfo;
    std::vector<QString> m_points;
};

} // namespace marvola

#endif
