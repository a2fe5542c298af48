// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

namespace marvola {

QString CurrentList::active() const
{
    return itemAt(indexAt(m_cursor));
}

void CurrentList::setActive(int index, Shuffle shuffle, PickFirst pickFirst)
{
    if (!isIndex(index))
        return;
    if (shuffle == Shuffle::On && pickFirst == PickFirst::Yes)
        putFirst(index);
    else
        m_cursor = placeOf(index);
}

QString CurrentList::next(Repeat repeat, Shuffle shuffle)
{
    if (isEmpty())
        return {};
    if (m_cursor == lastPlace()) {
        if (repeat == Repeat::Off)
            return {};
        if (shuffle == Shuffle::On)
            randomizeList(m_order, m_reseed);
    }
    // Wide, as a leftover cursor may be any number.
    m_cursor = static_cast<int>((static_cast<qint64>(m_cursor) + 1) % count());
    return active();
}

QString CurrentList::previous(Repeat repeat)
{
    if (isEmpty() || m_cursor == NoPosition)
        return {};
    if (m_cursor > 0) {
        --m_cursor;
        return active();
    }
    if (repeat == Repeat::Off)
        return {};
    // Deliberate: unlike next(), wrapping backwards keeps the order, so that stepping forth again undoes it.
    m_cursor = lastPlace();
    return active();
}

// Deliberate: with no active item there is no next one, although next() would start at the first place.
bool CurrentList::hasNext(Repeat repeat) const
{
    if (isEmpty() || m_cursor == NoPosition)
        return false;
    return m_cursor != lastPlace() || repeat == Repeat::On;
}

bool CurrentList::hasPrevious(Repeat repeat) const
{
    if (isEmpty() || m_cursor == NoPosition)
        return false;
    return m_cursor != 0 || repeat == Repeat::On;
}

bool CurrentList::isLast(const QString &item) const
{
    const int index = indexAt(lastPlace());
    return isIndex(index) && m_items.at(index) == item;
}

} // namespace marvola
