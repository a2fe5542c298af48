// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_MEDIAWALKER_H
#define MARVOLA_SCAN_MEDIAWALKER_H

#include "scan/DirectoryReader.h"
#include "scan/NameFilter.h"

#include <QtCore/QStringList>

#include <map>
#include <vector>

namespace marvola {

/// Folders more than this many levels below the root of their storage place are not looked into.
inline constexpr int MaxFolderDepth = 32;

/// How often one walk enters folders through links. Real folders are entered always; links could lead to the same
/// folders over and over, some 2^32 times with two links to a folder above. A single link to one is not cut by these
/// numbers before the depth limit ends it.
struct LinkLimits
{
    static constexpr int PerFolderAbove = 32;    ///< into one folder that the walk is inside of
    static constexpr int AllFoldersAbove = 1024; ///< into all such folders together
    static constexpr int Elsewhere = 4096;       ///< into folders that the walk is not inside of
};

/// Finds the media files below a folder, depth-first: each folder's own files, then its subfolders, both sorted by name
/// ignoring case. What cannot be read is passed over. Only the listings on the path of the walk are held.
class MediaWalker
{
public:
    explicit MediaWalker(const NameFilter &filter);

    /// Appends the full path of each file found below \a dir to \a files; nothing for an empty \a dir.
    void walk(const QString &dir, QStringList &files);

private:
    /// A folder that the walk is inside of, with what is left to enter.
    struct Level
    {
        QString path; ///< with a "/" at its end
        FolderId id;
        std::vector<SubFolder> folders;
        size_t next = 0;
    };

    void enter(const QString &path, Reached reached, QStringList &files);
    bool mayEnterByLink(const FolderId &id);

    NameFilter m_filter;
    DirectoryReader m_reader;
    std::vector<Level> m_levels;
    std::map<FolderId, int> m_entriesAbove;
    int m_allEntriesAbove = 0;
    int m_entriesElsewhere = 0;
};

} // namespace marvola

#endif
