// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/LibraryRefresh.h"

#include "scan/MediaIndexer.h"
#include "scan/RefreshRun.h"
#include "scan/RefreshState.h"
#include "scan/WorkerThread.h"

namespace marvola {

namespace {

constexpr quint8 Finished = 100;

/// The end of every refresh. The cancel flag goes first: once the other is clear, a new refresh may be cancelled.
void finish(RefreshState &state)
{
    state.cancelled = false;
    state.running = false;
    state.progress.report(Finished);
}

} // namespace

LibraryRefresh::LibraryRefresh(std::function<void(quint8)> progress)
    : m_state(std::make_shared<RefreshState>(std::move(progress)))
{
}

LibraryRefresh::~LibraryRefresh()
{
    stopReporting();
}

void LibraryRefresh::stopReporting()
{
    m_state->progress.close();
}

void LibraryRefresh::start(const RefreshPlan &plan)
{
    const std::shared_ptr<RefreshState> state = m_state; // a receiver of progress may destroy this object
    if (plan.listFile.isEmpty() || plan.infoFile.isEmpty()) {
        finish(*state);
        return;
    }
    if (state->running.exchange(true))
        return;
    state->cancelled = false;
    const bool started =
        WorkerThread::instance().start([state, plan] { RefreshRun(plan, *state).run(); }, [state] { finish(*state); });
    if (!started)
        finish(*state);
}

QStringList LibraryRefresh::cancelAndWait()
{
    const std::shared_ptr<RefreshState> state = m_state;
    state->cancelled = true;
    WorkerThread::instance().join(ProgressGate::letReceiversOn);
    return state->completedPlaces.names();
}

bool LibraryRefresh::isRunning() const
{
    return m_state->running;
}

bool LibraryRefresh::indexFiles(const RefreshPlan &plan, unsigned int &offset, const QStringList &files,
                                QStringList &artists, QStringList &albums, QStringList &genres)
{
    const std::shared_ptr<RefreshState> state = m_state;
    // The worker counts its records, and asks the engine, alone.
    if (state->running)
        return false;
    return MediaIndexer(plan, *state).index(offset, files, {artists, albums, genres});
}

} // namespace marvola
