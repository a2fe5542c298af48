// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LIBRARY_STORAGELOCATION_H
#define MARVOLA_LIBRARY_STORAGELOCATION_H

#include "library/MountPoint.h"
#include "platform/PlacedFile.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace marvola {

/// Tells whether \a dir has room for both index files. What the files have already counts; the rest is really taken up
/// by a probe file, which is gone when the call returns.
bool hasEnoughSpace(const QString &dir);

/// Where memory cards are mounted, whether or not there is one.
QStringList cardRoots();

/// The directory that the index files live in, with their paths. All three are null until one is chosen.
///
/// After a choice the files' space is really there, on filesystems with sparse files too, so that later writes inside
/// it cannot fail for lack of room. While nothing is mounted any more where the directory's filesystem was, because a
/// card was pulled, there are no files: nothing is read or written in their place.
class WorkDirectory
{
public:
    /// Makes \a dir the work directory, with new index files reserved unless they exist.
    /// \return false when \a dir does not exist or cannot take the files; nothing is changed then.
    [[nodiscard]] bool choose(const QString &dir);

    QString path() const { return m_path; }
    /// The same without links, as it was when it was chosen.
    const QString &canonicalPath() const { return m_canonicalPath; }
    PlacedFile listFile() const;
    QString infoFile() const { return m_mountPoint.isMounted() ? m_infoFile : QString(); }

private:
    QString m_path;
    QString m_canonicalPath;
    QString m_listFile;
    QString m_infoFile;
    MountPoint m_mountPoint;
};

} // namespace marvola

#endif
