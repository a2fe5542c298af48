// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/History.h"

namespace marvola {

void History::add(const QString &url, quint16 limit)
{
    if (url.isEmpty())
        return;
    const qsizetype place = m_entries.indexOf(url);
    if (place >= 0) {
        m_entries.move(place, 0);
        return;
    }
    // Deliberate: a history that was restored with more than the limit is not full; nothing of it is dropped.
    if (m_entries.size() == limit && !m_entries.isEmpty())
        m_entries.removeLast();
    m_entries.prepend(url);
}

} // namespace marvola
