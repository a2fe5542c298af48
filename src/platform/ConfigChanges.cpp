// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigChanges.h"

#include <utility>

namespace marvola {

const GroupChanges::Change *GroupChanges::find(const QByteArray &key) const
{
    const auto place = places.constFind(key);
    return place == places.constEnd() ? nullptr : &changes[*place];
}

const GroupChanges *ConfigChanges::find(const QByteArray &group) const
{
    const auto place = m_places.constFind(group);
    return place == m_places.constEnd() ? nullptr : &m_groups[*place].content;
}

void ConfigChanges::set(const QByteArray &group, const QByteArray &key, std::optional<QByteArray> value)
{
    GroupChanges &content = ofGroup(group);
    const auto place = content.places.constFind(key);
    if (place != content.places.constEnd()) {
        content.changes[*place].value = std::move(value);
        return;
    }
    content.places.insert(key, content.changes.size());
    content.changes.push_back({key, std::move(value)});
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
    m_places.clear();
}

GroupChanges &ConfigChanges::ofGroup(const QByteArray &group)
{
    const auto place = m_places.constFind(group);
    if (place != m_places.constEnd())
        return m_groups[*place].content;
    m_places.insert(group, m_groups.size());
    m_groups.push_back({group, {}});
    return m_groups.back().content;
}

} // namespace marvola
