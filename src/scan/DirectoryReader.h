// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_DIRECTORYREADER_H
#define MARVOLA_SCAN_DIRECTORYREADER_H

#include "platform/FileDescriptor.h"
#include "platform/FileId.h"
#include "scan/NameFilter.h"

#include <QtCore/QStringList>

#include <optional>
#include <vector>

namespace marvola {

/// How a walk comes to a folder.
enum class Reached { Directly, ThroughLink };

struct SubFolder
{
    QString name;
    Reached reached = Reached::Directly;
};

/// What one folder holds for a walk, both sorted by name ignoring case.
struct Listing
{
    QStringList files;
    std::vector<SubFolder> folders;
    qsizetype entries = 0; ///< all that the folder holds, whatever it is
};

/// Reads folders with as few system calls as the kernel allows: the kind of an entry comes with its name, so only links
/// (and entries of file systems that do not tell) are asked for by themselves.
class DirectoryReader
{
public:
    /// \a filter must outlive the reader.
    explicit DirectoryReader(const NameFilter &filter);

    /// Opens the folder at \a path; what was open before is closed.
    /// \return its identity, nothing when it is no folder that can be read
    std::optional<FileId> open(const QString &path);
    /// Reads the open folder and closes it: its regular files that match the filter, and its subfolders; links count
    /// as what they lead to. Hidden entries are left out, and names that are not UTF-8 too: no text can stand for them.
    /// What can be read before an error is kept.
    Listing read();

private:
    struct Found;

    qsizetype readBlock(qsizetype size, std::vector<Found> &files, std::vector<Found> &folders);
    void addEntry(const char *name, unsigned char type, std::vector<Found> &files, std::vector<Found> &folders);
    unsigned char typeOf(const char *name, unsigned char type, Reached &reached);

    const NameFilter &m_filter;
    FileDescriptor m_folder;
    QByteArray m_path; ///< of the open folder, with a "/" at its end
    QByteArray m_block;
};

} // namespace marvola

#endif
