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
/// numbers before the depth limit ends it, and any number of folders may have a link each.
struct LinkLimits
{
    int perFolderAbove = 32;       ///< into one folder that the walk is inside of
    int allFoldersAbove = 1024;    ///< into all such folders together
    int perFolderElsewhere = 4096; ///< into one folder that the walk is not inside of
    /// Once this many files were found below links, no further link is entered.
    qsizetype filesBelowLinks = 262144;
    /// The same for the folders entered below links, with all entries that they hold: folders without media that link
    /// to one another cost time too.
    qsizetype entriesBelowLinks = 1'048'576;
};

/// Finds the media files below a folder, depth-first: each folder's own files, then its subfolders, both sorted by name
/// ignoring case. What cannot be read is passed over. Only the listings on the path of the walk are held, and a number
/// for each folder that a link led to.
class MediaWalker
{
public:
    explicit MediaWalker(const NameFilter &filter, const LinkLimits &linkLimits = {});

    /// Appends the full path of each file found below \a dir to \a files; nothing for an empty \a dir.
    void walk(const QString &dir, QStringList &files);

private:
    /// A folder that the walk is inside of, with what is left to enter.
    struct Level
    {
        QString path; ///< with a "/" at its end
        FileId id;
        Reached reached = Reached::Directly; ///< through a link when there is one anywhere on the way
        std::vector<SubFolder> folders;
        size_t next = 0;
    };

    void enter(const QString &path, Reached reached, QStringList &files);
    bool mayEnterByLink(const FileId &id);

    const LinkLimits m_linkLimits;
    NameFilter m_filter;
    DirectoryReader m_reader;
    std::vector<Level> m_levels;
    std::map<FileId, int> m_entriesAbove;
    int m_allEntriesAbove = 0;
    std::map<FileId, int> m_entriesElsewhere;
    qsizetype m_filesBelowLinks = 0;
    qsizetype m_entriesBelowLinks = 0;
};

} // namespace marvola

#endif
