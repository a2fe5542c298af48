// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigChanges.h"

#include <algorithm>
#include <utility>

namespace marvola {

const GroupChanges::Change *GroupChanges::find(QByteArrayView key) const
{
    const KeyIndex::Number place = placeOf(key);
    return place == KeyIndex::None ? nullptr : &m_changes[place];
}

void GroupChanges::set(const QByteArray &key, std::optional<QByteArray> value)
{
    const KeyIndex::Number known = m_places.insert(key, [&] { return m_pool.keep(key); });
    if (known == m_changes.size()) {
        m_changes.push_back({m_places.key(known), value ? std::optional(m_pool.keep(*value)) : std::nullopt});
        return;
    }
    if (!value) {
        m_changes[known].value.reset();
        return;
    }
    // Not into the pool, which would grow with each change of one key.
    if (m_later.size() <= known)
        m_later.resize(known + std::size_t(1));
    m_later[known] = std::move(*value);
    m_changes[known].value = m_later[known];
}

void GroupChanges::reserve(std::size_t count)
{
    const std::size_t needed = m_changes.size() + count;
    if (needed <= m_changes.capacity())
        return;
    // Twice the room at least, or many calls for a few each would copy what is there each time.
    const std::size_t room = std::max(needed, m_changes.capacity() * 2);
    m_changes.reserve(room);
    m_places.reserve(room);
}

const GroupChanges *ConfigChanges::find(QByteArrayView group) const
{
    const KeyIndex::Number place = m_places.find(group);
    return place == KeyIndex::None ? nullptr : &m_groups[place].content;
}

void ConfigChanges::set(const QByteArray &group, const QByteArray &key, std::optional<QByteArray> value)
{
    ofGroup(group).set(key, std::move(value));
}

void ConfigChanges::clearGroup(const QByteArray &group)
{
    GroupChanges &content = ofGroup(group);
    content = GroupChanges();
    content.isCleared = true;
}

void ConfigChanges::discard()
{
    m_groups.clear();
    m_places = KeyIndex();
}

GroupChanges &ConfigChanges::ofGroup(const QByteArray &group)
{
    const KeyIndex::Number known = m_places.find(group);
    if (known != KeyIndex::None)
        return m_groups[known].content;
    m_groups.push_back({group, {}});
    m_places.insert(m_groups.back().name);
    return m_groups.back().content;
}

} // namespace marvola
