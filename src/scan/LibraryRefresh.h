// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_LIBRARYREFRESH_H
#define MARVOLA_SCAN_LIBRARYREFRESH_H

#include <QtCore/QStringList>

#include <functional>
#include <memory>

class PlayerEngine;

namespace marvola {

/// All that a refresh works on, copied when it starts, so that the worker shares nothing with the caller.
struct RefreshPlan
{
    QString listFile; ///< path; empty when there is no work directory
    QString infoFile; ///< path; empty when there is no work directory
    QString dataPath;
    QString card1Path;
    QString card2Path;
    QStringList searchOrder; ///< names of places
    QString phoneName;       ///< the translated name of the phone's place
    QString memoryCardName;  ///< the translated name of the place that both cards form
    QString unknownText;     ///< stands for a missing artist, album or genre, with its brackets
    quint16 maxMediaFiles = 0;
    PlayerEngine *engine = nullptr; ///< not owned; must outlive the worker
};

/// One library object's refreshes: what is shared with the worker while one runs, and what the last one left.
///
/// All operations are called on one thread. The worker keeps what it needs alive by itself and may outlive this object.
class LibraryRefresh
{
public:
    /// \a progress is called on the worker thread (and by start() on the caller's) with percentages.
    explicit LibraryRefresh(std::function<void(quint8)> progress);
    /// Does not wait for a running refresh, only for a call of progress that is under way; none comes afterwards.
    ~LibraryRefresh();
    LibraryRefresh(const LibraryRefresh &) = delete;
    LibraryRefresh &operator=(const LibraryRefresh &) = delete;

    void start(const RefreshPlan &plan);
    /// Asks the refresh to stop, waits for the process's worker to end, and gives the places that were completed.
    QStringList cancelAndWait();
    bool isRunning() const;
    /// Indexes the files of one place, with this object's counters; see MP_MyLibrary::refreshMediaList().
    bool indexFiles(const RefreshPlan &plan, unsigned int &offset, const QStringList &files, QStringList &artists,
                    QStringList &albums, QStringList &genres);

private:
    struct Shared;
    std::shared_ptr<Shared> m_shared;
};

} // namespace marvola

#endif
