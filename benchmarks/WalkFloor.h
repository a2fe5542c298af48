// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_BENCHMARKS_WALKFLOOR_H
#define MARVOLA_BENCHMARKS_WALKFLOOR_H

#include "platform/FileDescriptor.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>

#include <algorithm>
#include <dirent.h>
#include <vector>

/// The least that a walk takes: one buffer of the kernel's entries after the other, a look at the last four bytes of
/// each name, the names sorted by their bytes, and a text made of each path. Nothing is checked.
inline void floorWalk(const QByteArray &folder, QStringList &files)
{
    alignas(dirent64) static thread_local char block[std::size_t(64) * 1024];
    std::vector<QByteArray> names;
    std::vector<QByteArray> folders;
    marvola::FileDescriptor open = marvola::FileDescriptor::open(folder.constData(), O_RDONLY | O_DIRECTORY);
    ssize_t size = 0;
    while ((size = ::getdents64(open.get(), block, sizeof block)) > 0) {
        for (ssize_t at = 0; at < size;) {
            const auto *entry = reinterpret_cast<const dirent64 *>(block + at);
            const QByteArrayView name(entry->d_name);
            if (entry->d_type == DT_DIR && name.front() != '.')
                folders.push_back(name.toByteArray());
            else if (entry->d_type == DT_REG && (name.endsWith(".mp3") || name.endsWith(".amr")))
                names.push_back(name.toByteArray());
            at += entry->d_reclen;
        }
    }
    open.close();
    std::sort(names.begin(), names.end());
    std::sort(folders.begin(), folders.end());
    const QString start = QString::fromUtf8(folder) + u'/';
    for (const QByteArray &name : names)
        files.append(start + QString::fromUtf8(name));
    for (const QByteArray &name : folders)
        floorWalk(folder + '/' + name, files);
}

#endif
