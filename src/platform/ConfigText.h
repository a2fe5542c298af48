// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CONFIGTEXT_H
#define MARVOLA_PLATFORM_CONFIGTEXT_H

#include "platform/KeyIndex.h"
#include "platform/TextFrame.h"

#include <optional>
#include <vector>

namespace marvola {

class ConfigChanges;
struct GroupChanges;

/// The groups and keys of a text. Taking it apart finds only where the groups lie; the entries of a group are found
/// when the group is first asked for, and a value is decoded when it is asked for.
///
/// Names are given in their canonical spelling; values come as they are spelled in the text.
class ConfigText
{
public:
    /// The entries of one group; keys and values are views of the text.
    struct Entries
    {
        KeyIndex keys;
        std::vector<QByteArrayView> values; ///< in the order of the keys
        std::vector<QByteArray> respelled;  ///< keys that the text does not spell canonically

        std::optional<QByteArrayView> value(QByteArrayView key) const;
    };

    explicit ConfigText(TextFrame frame);
    ConfigText(const ConfigText &) = delete;
    ConfigText &operator=(const ConfigText &) = delete;

    /// Null when there is no such group.
    const Entries *entries(QByteArrayView group) const;

    /// Puts the text with \a changes made behind what \a out holds. Lines that are not concerned are copied byte for
    /// byte; so are those that cannot be understood, whatever the changes.
    void merge(const ConfigChanges &changes, QByteArray &out) const;

private:
    /// From a group's heading to the next one; the first section has no heading and belongs to no group.
    struct Section
    {
        /// KeyIndex::None before the first heading, and behind one that cannot be understood.
        KeyIndex::Number group = KeyIndex::None;
        qsizetype begin = 0; ///< of the heading, in the content
        qsizetype body = 0;  ///< behind the heading
        qsizetype end = 0;
    };
    struct Group
    {
        QByteArray name;
        std::vector<std::size_t> sections;
        std::optional<Entries> entries;
    };
    class Merger;

    void findSections();
    KeyIndex::Number groupOfHeading(QByteArrayView line);
    void findEntries(Group &group) const;

    TextFrame m_frame;
    QByteArrayView m_content;
    std::vector<Section> m_sections;
    mutable std::vector<Group> m_groups;
    KeyIndex m_places; ///< of groups
};

} // namespace marvola

#endif
