// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

namespace marvola {

void CurrentList::setShuffle(Shuffle current, Shuffle wanted)
{
    if (current == wanted)
        return;
    if (wanted == Shuffle::Off) {
        m_cursor = indexAt(m_cursor);
        m_order.clear();
        appendIndices(count());
        return;
    }
    if (isEmpty()) {
        m_cursor = NoPosition;
        return;
    }
    randomizeList(m_order, m_reseed);
    // While shuffle was off, places and indices were the same numbers.
    putFirst(m_cursor);
}

QStringList CurrentList::randomizeItems()
{
    if (isEmpty())
        return {};
    const bool hasActive = isIndex(indexAt(m_cursor));
    const QString activeText = active();
    swapHeadAtRandom(static_cast<quint16>(count()), m_reseed, [this](quint16 other) {
        m_items.swap(0, other);
        if (other < m_flags.size())
            m_flags.swapItemsAt(0, other);
    });
    // Deliberate: the cursor follows the text, so of two equal texts the first becomes the active one.
    if (hasActive)
        m_cursor = placeOf(indexOf(activeText));
    return items();
}

int CurrentList::turnCursorIntoIndex()
{
    m_cursor = indexAt(m_cursor);
    return m_cursor;
}

// Exchanges the place of index with the first place and makes it active. An index without a place leaves the order as
// it is and no active item.
void CurrentList::putFirst(int index)
{
    const int place = placeOf(index);
    if (place == NoPosition) {
        m_cursor = NoPosition;
        return;
    }
    m_order.swapItemsAt(0, place);
    m_cursor = 0;
}

} // namespace marvola
