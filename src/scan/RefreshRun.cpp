// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/RefreshRun.h"

#include "platform/FileNames.h"
#include "platform/NumberedGroup.h"
#include "scan/MediaWalker.h"

#include <marvola/ConfigFile.h>
#include <marvola/MediaTypeRegistry.h>

namespace marvola {

namespace {

constexpr qsizetype ProgressReports = 100;

QString mediaFilter()
{
    QStringList extensions;
    MediaTypeRegistry::querySupportedExtensions(extensions, MediaTypeRegistry::MediaPlayer);
    return NameFilter::filterOf(extensions);
}

} // namespace

/// The media files of the two places that a search order can name.
struct RefreshRun::PlaceFiles
{
    QStringList phone;
    QStringList memoryCards; ///< both cards form one place

    qsizetype count() const { return phone.size() + memoryCards.size(); }
};

RefreshRun::RefreshRun(const RefreshPlan &plan, RefreshState &state) : m_plan(plan), m_state(state)
{
}

void RefreshRun::run()
{
    refresh();
    // Whoever hears of the end may unmount the card.
    m_plan.listFile.letGo();
}

void RefreshRun::refresh()
{
    const PlaceFiles files = findFiles();
    m_state.completedPlaces.clear();
    startCounting(files.count());
    // Records are written only into a file that reads as empty meanwhile.
    const auto held = resetIndex();
    const auto infoFile = held ? std::optional(held->id) : std::nullopt;
    MediaIndexer indexer(m_plan, m_state, held ? Records::IntoInfoFile : Records::Nowhere, infoFile);
    m_state.progress.report(0);

    QStringList artists;
    QStringList albums;
    QStringList genres;
    const IndexLists lists{artists, albums, genres};
    if (files.count() != 0)
        indexPlaces(indexer, files, lists);
    writeLists(lists);
    // A medium that cannot take the count leaves an index that reads as empty; nobody could be told.
    if (m_plan.listFile.isInPlace())
        static_cast<void>(InfoFile::publishCount(m_plan.infoFile, indexer.recordsInFile(), infoFile));
}

/// The walk may have taken minutes: another card may lie in the work directory's place by now, with its own index.
std::optional<HeldFile> RefreshRun::resetIndex() const
{
    return m_plan.listFile.isInPlace() ? InfoFile::resetCount(m_plan.infoFile) : std::nullopt;
}

RefreshRun::PlaceFiles RefreshRun::findFiles() const
{
    MediaWalker walker{NameFilter(mediaFilter())};
    PlaceFiles files;
    walker.walk(m_plan.dataPath, files.phone);
    walker.walk(m_plan.card1Path, files.memoryCards);
    walker.walk(m_plan.card2Path, files.memoryCards);
    return files;
}

void RefreshRun::startCounting(qsizetype totalFiles)
{
    m_state.counters = {};
    m_state.counters.totalFiles = static_cast<quint32>(totalFiles);
    const auto step = static_cast<quint16>(totalFiles / ProgressReports);
    m_state.counters.progressStep = step != 0 ? step : 1;
}

void RefreshRun::indexPlaces(MediaIndexer &indexer, const PlaceFiles &files, IndexLists lists)
{
    unsigned int offset = InfoFile::FirstRecordOffset;
    // Deliberate: the number of entries counts as 8 bits, the width it has always had, so an order of 256 names no
    // place.
    const auto entries = static_cast<quint8>(m_plan.searchOrder.size());
    for (int i = 0; i < entries; ++i) {
        const QString &place = m_plan.searchOrder.at(i);
        const bool cards = place == m_plan.memoryCardName;
        // Deliberate: a name that is no place ends the order; what stands behind it is not scanned.
        if (!cards && place != m_plan.phoneName)
            return;
        if (!indexer.index(offset, cards ? files.memoryCards : files.phone, lists))
            return;
        m_state.completedPlaces.append(place);
    }
}

/// The file is locked from the reading of the old counters on, so that what others save to it meanwhile stays; and it
/// is released before the last report of progress, whose receiver may save to it too.
void RefreshRun::writeLists(IndexLists lists) const
{
    ConfigFile file = m_plan.listFile.open();
    static_cast<void>(file.lockForUpdate());
    const bool written = NumberedGroup(file, ArtistGroup).replace(lists.artists) &&
                         NumberedGroup(file, AlbumGroup).replace(lists.albums) &&
                         NumberedGroup(file, GenreGroup).replace(lists.genres);
    // What could not be written is left as it was: the index of the info file is still good without it.
    static_cast<void>(written && file.flush());
}

} // namespace marvola
