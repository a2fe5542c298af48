// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include <algorithm>

namespace marvola {

bool CurrentList::remove(int index)
{
    if (!isIndex(index))
        return false;
    Removal removal{m_cursor, placeOf(index), count(), 0};
    // Deliberate: every copy of the text goes, but one flag and one index. Players keep their lists free of copies.
    m_items.removeAll(itemAt(index));
    if (index < m_flags.size())
        m_flags.removeAt(index);
    removeFromOrder(index);
    removal.countAfter = count();
    m_cursor = cursorAfterRemoval(removal);
    m_changed = true;
    return true;
}

bool CurrentList::moveUp(int index, Shuffle shuffle)
{
    if (!isIndex(index))
        return false;
    // Deliberate: an item that cannot go further is where it was asked to go.
    if (index == 0)
        return true;
    moveItem(index, index - 1);
    followMove(index, index - 1, shuffle);
    return true;
}

bool CurrentList::moveDown(int index, Shuffle shuffle)
{
    if (!isIndex(index))
        return false;
    // Deliberate: as in moveUp().
    if (index == count() - 1)
        return true;
    moveItem(index, index + 1);
    followMove(index, index + 1, shuffle);
    return true;
}

void CurrentList::moveItem(int index, int target)
{
    const QString text = m_items.at(index);
    // Deliberate: every copy goes and one comes back, before the first item with the text that is in the way.
    m_items.removeAll(text);
    m_items.insert(isIndex(target) ? indexOf(m_items.at(target)) : count(), text);
    if (index < m_flags.size()) {
        const MP_MEDIA_FILE_TYPE_T flag = m_flags.takeAt(index);
        m_flags.insert(qMin<qsizetype>(target, m_flags.size()), flag);
    }
}

void CurrentList::followMove(int index, int target, Shuffle shuffle)
{
    if (shuffle == Shuffle::Off) {
        if (m_cursor == index)
            m_cursor = target;
        else if (m_cursor == target)
            m_cursor = index;
        return;
    }
    const int place = placeOf(index);
    const int targetPlace = placeOf(target);
    if (place != NoPosition)
        m_order[place] = static_cast<quint32>(target);
    if (targetPlace != NoPosition)
        m_order[targetPlace] = static_cast<quint32>(index);
}

void CurrentList::removeFromOrder(int index)
{
    const auto removed = static_cast<quint32>(index);
    m_order.removeAll(removed);
    for (quint32 &other : m_order) {
        if (other > removed)
            --other;
    }
}

} // namespace marvola
