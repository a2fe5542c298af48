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

/// Where a MediaIndexer's records go.
enum class Records { IntoInfoFile, Nowhere };

/// Writes one record for each media file and gathers the distinct texts of audio files, one storage place after
/// another. When a record does not reach the info file, those behind it go nowhere: readers would not find them behind
/// the gap.
class MediaIndexer
{
public:
    /// Both \a plan and \a state must outlive the object.
    /// \param only the info file, where that is known: a card with another one may be put in meanwhile
    MediaIndexer(const RefreshPlan &plan, RefreshState &state, Records records = Records::IntoInfoFile,
                 const std::optional<FileId> &only = {});

    /// Indexes \a files from byte \a offset of the info file on; \a offset moves on behind each record.
    /// \return false when stopped before the last file: cancelled, or a limit was reached
    bool index(unsigned int &offset, const QStringList &files, IndexLists lists);
    /// How many of this object's records, from the first on, are whole in the info file.
    quint16 recordsInFile() const { return static_cast<quint16>(m_recordsInFile); }

private:
    class Place;

    const RefreshPlan &m_plan;
    RefreshState &m_state;
    Records m_records;
    std::optional<FileId> m_only;
    int m_recordsInFile = 0;
};

} // namespace marvola

#endif
