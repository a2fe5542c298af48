// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/RefreshState.h"

namespace marvola {

std::optional<RefreshState::Number> RefreshState::begin()
{
    const std::lock_guard lock(m_mutex);
    if (running)
        return std::nullopt;
    // The cancel flag goes first: whoever sees a refresh run may cancel it.
    cancelled = false;
    running = true;
    return ++m_latest;
}

void RefreshState::end(Number refresh)
{
    const std::lock_guard lock(m_mutex);
    if (refresh == m_latest)
        clear();
}

void RefreshState::takeBack(Number refresh)
{
    const std::lock_guard lock(m_mutex);
    if (refresh != m_latest)
        return;
    --m_latest;
    clear();
}

void RefreshState::clearFlags()
{
    const std::lock_guard lock(m_mutex);
    clear();
}

/// The cancel flag goes first: once the other is clear, a new refresh may be cancelled.
void RefreshState::clear()
{
    cancelled = false;
    running = false;
}

} // namespace marvola
