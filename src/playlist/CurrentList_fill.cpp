// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include <numeric>

namespace marvola {

bool CurrentList::append(const QStringList &entries, quint16 maxItems, Shuffle shuffle)
{
    if (entries.isEmpty())
        return true;
    const qsizetype before = m_items.size();
    const bool limitHit = m_items.add(entries, maxItems) == ItemList::Room::TooLittle;
    if (m_items.size() == before)
        return !limitHit;

    m_changed = true;
    m_flags.insert(m_flags.size(), m_items.size() - before, MP_MEDIA_FILE_TYPE_UNKNOWN);
    QList<quint32> newOrder(m_items.size() - before);
    std::iota(newOrder.begin(), newOrder.end(), static_cast<quint32>(before));
    if (shuffle == Shuffle::On)
        randomizeList(newOrder, m_reseed);
    m_order += newOrder;
    if (m_cursor == NoPosition)
        m_cursor = 0;
    return !limitHit;
}

void CurrentList::load(const QString &storedName, const QStringList &items, int storedCount, Shuffle shuffle)
{
    m_storedName = storedName;
    empty();
    m_items.assign(items.mid(0, MaxItems));
    // Not fill(): in Qt 6.4 it writes past the end of a list that has lost entries at its front.
    m_flags = QList<MP_MEDIA_FILE_TYPE_T>(m_items.size(), MP_MEDIA_FILE_TYPE_UNKNOWN);
    // Deliberate: the order has a place for every item that the playlist claims, missing ones too; they play as
    // silence.
    appendIndices(qBound(0, storedCount, MaxItems));
    if (shuffle == Shuffle::On)
        randomizeList(m_order, m_reseed);
    m_cursor = m_order.isEmpty() ? NoPosition : 0;
}

void CurrentList::restore(const QString &storedName, const QStringList &items, int activeIndex, Shuffle shuffle)
{
    m_storedName = storedName;
    m_cursor = qMax(activeIndex, NoPosition);
    const QStringList taken = items.mid(0, MaxItems - m_items.size());
    m_items.append(taken);
    m_flags.insert(m_flags.size(), taken.size(), MP_MEDIA_FILE_TYPE_UNKNOWN);
    appendIndices(static_cast<int>(taken.size()));
    if (shuffle == Shuffle::Off || m_cursor == NoPosition)
        return;
    if (placeOf(m_cursor) == NoPosition) {
        // The stored number is nobody's: there is nothing to put first, so the order stays as it is.
        m_cursor = NoPosition;
        return;
    }
    randomizeList(m_order, m_reseed);
    putFirst(m_cursor);
}

} // namespace marvola
