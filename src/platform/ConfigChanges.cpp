// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigChanges.h"

#include <utility>

namespace marvola {

const GroupChanges::Change *GroupChanges::find(QByteArrayView key) const
{
    const KeyIndex::Number place = places.find(key);
    return place == KeyIndex::None ? nullptr : &changes[place];
}

const GroupChanges *ConfigChanges::find(QByteArrayView group) const
{
    const KeyIndex::Number place = m_places.find(group);
    return place == KeyIndex::None ? nullptr : &m_groups[place].content;
}

void ConfigChanges::set(const QByteArray &group, const QByteArray &key, std::optional<QByteArray> value)
{
    GroupChanges &content = ofGroup(group);
    const KeyIndex::Number known = content.places.find(key);
    if (known != KeyIndex::None) {
        content.changes[known].value = std::move(value);
        return;
    }
    content.changes.push_back({key, std::move(value)});
    content.places.insert(content.changes.back().key);
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
