// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaIndexer.h"

#include "scan/DistinctTexts.h"
#include "scan/LookAhead.h"
#include "scan/MediaProbe.h"
#include "scan/RefreshPlan.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace marvola {

/// The indexing of one storage place under way.
class MediaIndexer::Place
{
public:
    Place(const RefreshPlan &plan, RefreshState &state, InfoFileWriter writer, unsigned int &offset,
          const QStringList &files, IndexLists lists)
        : m_plan(plan)
        , m_state(state)
        , m_offset(offset)
        , m_probe(plan.engine, plan.unknownText)
        , m_writer(std::move(writer))
        , m_lookAhead(files, plan.maxMediaFiles - state.counters.scannedFiles)
        , m_artists(lists.artists)
        , m_albums(lists.albums)
        , m_genres(lists.genres)
    {
    }

    /// \return false when the scan has to stop before the next file, or before this one's record
    bool add(const QString &path)
    {
        ScanCounters &counters = m_state.counters;
        if (m_state.cancelled || counters.scannedFiles >= m_plan.maxMediaFiles)
            return false;
        const MediaDescription file = describe(path);
        if (m_offset > InfoFile::LastRecordOffset)
            return false;
        // Past 32,767 the index wraps into the negative numbers, as its 16 bits do; no reader uses it.
        const auto index = static_cast<qint16>(counters.scannedFiles);
        m_offset += m_writer.append({index, path, static_cast<qint8>(file.type), file.artist, file.album, file.genre});
        ++m_appended;
        if (file.type == MP_MEDIA_FILE_TYPE_AUDIO) {
            m_artists.add(file.artist);
            m_albums.add(file.album);
            m_genres.add(file.genre);
        }
        ++counters.scannedFiles;
        reportProgress();
        return true;
    }

    /// \return how many records are whole in the info file
    int end()
    {
        m_probe.end();
        return m_writer.close();
    }
    int appended() const { return m_appended; }

private:
    MediaDescription describe(const QString &path)
    {
        const std::chrono::nanoseconds before = LookAhead::waitedSoFar();
        MediaDescription file = m_probe.describe(path);
        if (!m_state.cancelled)
            m_lookAhead.described(LookAhead::waitedSoFar() - before);
        return file;
    }

    void reportProgress()
    {
        const ScanCounters &counters = m_state.counters;
        // Without a refresh before, there is no total to be a share of.
        if (counters.progressStep == 0 || counters.totalFiles == 0)
            return;
        if (counters.scannedFiles % counters.progressStep == 0)
            m_state.progress.report(static_cast<quint8>(counters.scannedFiles * 100U / counters.totalFiles));
    }

    const RefreshPlan &m_plan;
    RefreshState &m_state;
    unsigned int &m_offset;
    MediaProbe m_probe;
    InfoFileWriter m_writer;
    LookAhead m_lookAhead;
    DistinctTexts m_artists;
    DistinctTexts m_albums;
    DistinctTexts m_genres;
    int m_appended = 0;
};

MediaIndexer::MediaIndexer(const RefreshPlan &plan, RefreshState &state, Records records,
                           const std::optional<FileId> &only)
    : m_plan(plan), m_state(state), m_records(records), m_only(only)
{
}

bool MediaIndexer::index(unsigned int &offset, const QStringList &files, IndexLists lists)
{
    if (files.isEmpty())
        return true;
    const QString infoFile = m_records == Records::IntoInfoFile ? m_plan.infoFile : QString();
    Place place(m_plan, m_state, InfoFileWriter(infoFile, offset, m_only), offset, files, lists);
    const bool all = std::all_of(files.begin(), files.end(), [&place](const QString &path) { return place.add(path); });
    const int written = place.end();
    m_recordsInFile += written;
    if (written < place.appended())
        m_records = Records::Nowhere;
    return all;
}

} // namespace marvola
