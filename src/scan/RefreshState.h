// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_REFRESHSTATE_H
#define MARVOLA_SCAN_REFRESHSTATE_H

#include "scan/ProgressGate.h"

#include <QtCore/QStringList>

#include <atomic>
#include <mutex>
#include <optional>

namespace marvola {

/// How far a refresh is. Used by the worker while one runs, by the library's thread otherwise.
struct ScanCounters
{
    quint16 progressStep = 0; ///< records from one report of progress to the next; 0 before the first refresh
    quint16 scannedFiles = 0; ///< files that a record was made for, in all places
    quint32 totalFiles = 0;   ///< files found below all three roots
};

/// The names of the places that a refresh has completed. Any thread may use it.
class CompletedPlaces
{
public:
    void clear()
    {
        const std::lock_guard lock(m_mutex);
        m_names.clear();
    }
    void append(const QString &name)
    {
        const std::lock_guard lock(m_mutex);
        m_names.append(name);
    }
    QStringList names() const
    {
        const std::lock_guard lock(m_mutex);
        return m_names;
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_names;
};

/// What one library object shares with the worker that refreshes for it.
///
/// A worker is on its way out for a moment in which the next refresh may begin already, so refreshes are numbered: the
/// flags are cleared at the end of the one that began last, and not by an earlier one's worker.
struct RefreshState
{
    using Number = unsigned;

    explicit RefreshState(std::function<void(quint8)> receiver) : progress(std::move(receiver)) {}

    /// Sets the running flag and clears the other.
    /// \return the number of the refresh; nothing, and nothing is changed, while the running flag is set
    std::optional<Number> begin();
    /// Clears both flags, unless another refresh has begun since.
    void end(Number refresh);
    /// The same for a refresh that no worker was to be had for: the one before is the last again.
    void takeBack(Number refresh);
    /// Clears both flags. A worker that is at work goes on to its end.
    void clearFlags();

    /// Whether a refresh has begun and not ended. Says nothing of the worker: see clearFlags().
    std::atomic<bool> running = false;
    /// Set by the library's thread to stop a refresh.
    std::atomic<bool> cancelled = false;
    ScanCounters counters;
    CompletedPlaces completedPlaces;
    ProgressGate progress;

private:
    void clear();

    std::mutex m_mutex;  ///< held while the flags are changed together
    Number m_latest = 0; ///< the refresh that began last
};

} // namespace marvola

#endif
