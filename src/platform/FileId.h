// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_FILEID_H
#define MARVOLA_PLATFORM_FILEID_H

#include <sys/types.h>

namespace marvola {

/// Tells one file or folder from all others, however it was reached; so also from those that its path may lead to when
/// a card is pulled and another one put in.
struct FileId
{
    dev_t device = 0;
    ino_t inode = 0;

    bool operator<(const FileId &other) const
    {
        return device != other.device ? device < other.device : inode < other.inode;
    }
    bool operator==(const FileId &other) const { return device == other.device && inode == other.inode; }
};

} // namespace marvola

#endif
