// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/LibraryRefresh.h"

#include "scan/MediaIndexer.h"
#include "scan/RefreshRun.h"
#include "scan/RefreshState.h"
#include "scan/WorkerThread.h"

namespace marvola {

namespace {

constexpr quint8 Finished = 100; ///< the end of every refresh
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
        state->clearFlags();
        state->progress.report(Finished);
        return;
    }
    const auto refresh = state->begin();
    if (!refresh)
        return;
    const auto finish = [state, number = *refresh] {
        state->end(number);
        state->progress.report(Finished);
    };
    if (WorkerThread::instance().start([state, plan] { RefreshRun(plan, *state).run(); }, finish))
        return;
    plan.listFile.letGo();
    state->takeBack(*refresh);
    state->progress.report(Finished);
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
    bool isAllDone = false;
    const auto index = [&] { isAllDone = MediaIndexer(plan, *state).index(offset, files, {artists, albums, genres}); };
    // The worker counts its records, and asks the engine, alone.
    return WorkerThread::instance().workHere(index) && isAllDone;
}

} // namespace marvola
