// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_MEDIAINDEXER_H
#define MARVOLA_SCAN_MEDIAINDEXER_H

#include "scan/InfoFile.h"
#include "scan/RefreshState.h"

#include <QtCore/QStringList>

namespace marvola {

struct RefreshPlan;

/// The distinct texts of audio files, each list in the order in which they were first seen.
struct IndexLists
{
    QStringList &artists;
    QStringList &albums;
    QStringList &genres;
};

/// Writes one record for each media file of one storage place and gathers the distinct texts of audio files.
class MediaIndexer
{
public:
    /// Both must outlive the object.
    MediaIndexer(const RefreshPlan &plan, RefreshState &state);

    /// Indexes \a files from byte \a offset of the info file on; \a offset moves on behind each record.
    /// \return false when stopped before the last file: cancelled, or a limit was reached
    bool index(unsigned int &offset, const QStringList &files, IndexLists lists);

private:
    class Place;

    const RefreshPlan &m_plan;
    RefreshState &m_state;
};

} // namespace marvola

#endif
