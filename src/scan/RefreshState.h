// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_REFRESHSTATE_H
#define MARVOLA_SCAN_REFRESHSTATE_H

#include "scan/ProgressGate.h"

#include <QtCore/QStringList>

#include <atomic>
#include <mutex>

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
struct RefreshState
{
    explicit RefreshState(std::function<void(quint8)> receiver) : progress(std::move(receiver)) {}

    /// Set when a refresh starts, by the library's thread; cleared by the worker at its end.
    std::atomic<bool> running = false;
    /// Set by the library's thread to stop a refresh; cleared when one starts, and by the worker at its end.
    std::atomic<bool> cancelled = false;
    ScanCounters counters;
    CompletedPlaces completedPlaces;
    ProgressGate progress;
};

} // namespace marvola

#endif
