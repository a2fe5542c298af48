// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_REFRESHRUN_H
#define MARVOLA_SCAN_REFRESHRUN_H

#include "scan/InfoFile.h"
#include "scan/MediaIndexer.h"
#include "scan/RefreshPlan.h"
#include "scan/RefreshState.h"

namespace marvola {

/// One refresh, from the walk to the finished index; runs on the worker thread.
///
/// Nothing stops it half-way: a refresh that is cancelled or reaches a limit writes the index of what it has.
///
/// Deliberate: a cancellation stops the indexing alone, before the next file. The walk before it goes on to its end,
/// for what a cancelled refresh leaves depends on it: a place counts as completed when it has no files at all.
class RefreshRun
{
public:
    /// Both must outlive the object.
    RefreshRun(const RefreshPlan &plan, RefreshState &state);

    void run();

private:
    struct PlaceFiles;

    void refresh();
    PlaceFiles findFiles() const;
    std::optional<HeldFile> resetIndex() const;
    void startCounting(qsizetype totalFiles);
    void indexPlaces(MediaIndexer &indexer, const PlaceFiles &files, IndexLists lists);
    void writeLists(IndexLists lists) const;

    const RefreshPlan &m_plan;
    RefreshState &m_state;
};

} // namespace marvola

#endif
