// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CONFIGCHANGES_H
#define MARVOLA_PLATFORM_CONFIGCHANGES_H

#include "platform/KeyIndex.h"
#include "platform/TextPool.h"

#include <QtCore/QByteArray>

#include <optional>
#include <vector>

namespace marvola {

/// What was changed in one group, in the order of writing. Keys and values are in their canonical spelling.
class GroupChanges
{
public:
    struct Change
    {
        QByteArrayView key;
        std::optional<QByteArrayView> value; ///< nothing: the key is removed
    };

    bool isCleared = false; ///< before the changes were made

    const std::vector<Change> &changes() const { return m_changes; }
    /// Where \a key is in changes(), in which a key is once, or KeyIndex::None.
    KeyIndex::Number placeOf(QByteArrayView key) const { return m_places.find(key); }
    /// Null when the key was not changed.
    const Change *find(QByteArrayView key) const;
    void set(const QByteArray &key, std::optional<QByteArray> value);
    /// Makes room for \a count more.
    void reserve(std::size_t count);

private:
    std::vector<Change> m_changes;
    KeyIndex m_places;
    TextPool m_pool;                 ///< keys, and values that came with them
    std::vector<QByteArray> m_later; ///< values that came later, by place; no longer than needed
};

/// Changes to a file of groups and keys that are not in the file yet, groups in the order of their first change.
class ConfigChanges
{
public:
    struct Group
    {
        QByteArray name;
        GroupChanges content;
    };

    bool isEmpty() const { return m_groups.empty(); }
    const std::vector<Group> &groups() const { return m_groups; }
    /// Null when nothing was changed in the group.
    const GroupChanges *find(QByteArrayView group) const;

    /// The changes of \a group, until another group is changed.
    GroupChanges &ofGroup(const QByteArray &group);
    void set(const QByteArray &group, const QByteArray &key, std::optional<QByteArray> value);
    void clearGroup(const QByteArray &group);
    void discard();

private:
    std::vector<Group> m_groups;
    KeyIndex m_places; ///< of groups
};

} // namespace marvola

#endif
