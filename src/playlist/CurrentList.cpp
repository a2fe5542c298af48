// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/CurrentList.h"

#include "playlist/PlaylistName.h"

#include <utility>

namespace marvola {

CurrentList::CurrentList(Reseed reseed) : m_reseed(std::move(reseed))
{
}

QString CurrentList::name() const
{
    return shownPlaylistName(m_storedName);
}

void CurrentList::setName(const QString &name)
{
    if (!name.isNull())
        m_storedName = storedPlaylistName(name);
}

QString CurrentList::itemAt(int index) const
{
    return isIndex(index) ? m_items.at(index) : QString();
}

int CurrentList::indexOf(const QString &item) const
{
    return static_cast<int>(m_items.indexOf(item));
}

bool CurrentList::isClip(int index) const
{
    return itemAt(index).startsWith(QLatin1Char('/'));
}

MP_MEDIA_FILE_TYPE_T CurrentList::flag(const QString &item) const
{
    return m_flags.value(indexOf(item), MP_MEDIA_FILE_TYPE_UNKNOWN);
}

void CurrentList::setFlag(const QString &item, MP_MEDIA_FILE_TYPE_T flag)
{
    const int index = indexOf(item);
    if (index != NoPosition && index < m_flags.size())
        m_flags[index] = flag;
}

void CurrentList::setItem(const QString &item)
{
    if (item.isEmpty())
        return;
    m_storedName = QString();
    m_items.assign({item});
    m_flags = {MP_MEDIA_FILE_TYPE_UNKNOWN};
    m_order = {0};
    m_cursor = 0;
}

void CurrentList::setItems(const QStringList &items, quint16 maxItems, Shuffle shuffle)
{
    if (items.isEmpty())
        return;
    m_storedName = QString();
    // Deliberate: the cursor keeps its number; the player sets the active item once the list is filled.
    empty();
    static_cast<void>(append(items, maxItems, shuffle));
}

void CurrentList::editUrl(const QString &oldUrl, const QString &newUrl)
{
    if (oldUrl.isEmpty() || newUrl.isEmpty() || contains(newUrl))
        return;
    const int index = indexOf(oldUrl);
    if (index != NoPosition)
        m_items.replace(index, newUrl);
}

void CurrentList::clear()
{
    empty();
    m_cursor = NoPosition;
}

void CurrentList::empty()
{
    m_items.clear();
    m_flags.clear();
    m_order.clear();
}

int CurrentList::placeOf(int index) const
{
    return index < 0 ? NoPosition : static_cast<int>(m_order.indexOf(static_cast<quint32>(index)));
}

int CurrentList::indexAt(int place) const
{
    return place >= 0 && place < m_order.size() ? static_cast<int>(m_order.at(place)) : NoPosition;
}

void CurrentList::appendIndices(int count)
{
    m_order.reserve(m_order.size() + count);
    for (int index = 0; index < count; ++index)
        m_order.append(static_cast<quint32>(index));
}

} // namespace marvola
