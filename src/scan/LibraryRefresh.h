// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_LIBRARYREFRESH_H
#define MARVOLA_SCAN_LIBRARYREFRESH_H

#include "scan/RefreshPlan.h"

#include <QtCore/QStringList>

#include <functional>
#include <memory>

namespace marvola {

struct RefreshState;

/// One library object's refreshes: what is shared with the worker while one runs, and what the last one left.
///
/// All operations are called on one thread, or from within progress. The worker keeps what it needs alive by itself and
/// may outlive this object. The process has one worker at a time: while another object's refresh runs, none starts
/// here.
class LibraryRefresh
{
public:
    /// \a progress is called on the worker thread (and by start() on the caller's) with percentages.
    explicit LibraryRefresh(std::function<void(quint8)> progress);
    /// Does not wait for a running refresh, only for a call of progress that is under way; none comes afterwards. May
    /// be called from within progress. While it waits, it delivers calls queued to this thread's objects.
    ~LibraryRefresh();
    LibraryRefresh(const LibraryRefresh &) = delete;
    LibraryRefresh &operator=(const LibraryRefresh &) = delete;

    /// Ends the reports of progress for good; a running refresh goes on without. Waits only for a report that is under
    /// way on another thread, and meanwhile delivers the calls that are queued to this thread's objects. Destruction
    /// does the same.
    void stopReporting();

    /// Does nothing while a refresh of this object runs. Reports 100 at once when there is no work directory, which
    /// also clears the flags of a refresh whose worker is still at work, or the worker cannot be started.
    void start(const RefreshPlan &plan);
    /// Asks the refresh to stop, waits for the process's worker to end, and gives the places that were completed. While
    /// a call of progress holds the worker up, the calls that are queued to this thread's objects are delivered; they
    /// may cancel too, and destroy this object.
    QStringList cancelAndWait();
    bool isRunning() const;
    /// Indexes the files of one place, with this object's counters; see MP_MyLibrary::refreshMediaList(). Refused while
    /// the process's worker is at work, whatever isRunning() says; meanwhile, none can be started.
    bool indexFiles(const RefreshPlan &plan, unsigned int &offset, const QStringList &files, QStringList &artists,
                    QStringList &albums, QStringList &genres);

private:
    std::shared_ptr<RefreshState> m_state;
};

} // namespace marvola

#endif
