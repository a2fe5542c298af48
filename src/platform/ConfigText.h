// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CONFIGTEXT_H
#define MARVOLA_PLATFORM_CONFIGTEXT_H

#include "platform/KeyIndex.h"
#include "platform/TextFrame.h"

#include <memory>
#include <optional>
#include <vector>

namespace marvola {

class ConfigChanges;

/// The groups and keys of a text. Taking it apart finds only where the groups lie; the entries of a group are found
/// when the group is first asked for, and a value is decoded when it is asked for.
///
/// What is kept beside the text is bounded: a text with more headings or lines than it may have is not taken apart. It
/// reads as empty, and nothing is put into it.
///
/// Names are given in their canonical spelling; values come as they are spelled in the text.
class ConfigText
{
public:
    /// More than one for each of the 65,535 playlists that there may be.
    static constexpr std::size_t MaxHeadings = 131'072;
    static constexpr qsizetype MaxLines = 4'194'304;

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

    /// The value of \a key in \a group. The first few that are asked for in a group are searched for, because often
    /// there are no more; then the group's entries are found.
    std::optional<QByteArrayView> value(QByteArrayView group, QByteArrayView key) const;
    /// The values of the keys "1", "2" and so on to \a count in \a group; null where there is none.
    std::vector<QByteArrayView> numberedValues(QByteArrayView group, int count) const;

    /// Puts the text with \a changes made behind what \a out holds. Lines that are not concerned are copied byte for
    /// byte; so are those that cannot be understood, whatever the changes.
    /// \return false when the text, or what becomes of it, has too many headings or lines; \a out is of no use then
    [[nodiscard]] bool merge(const ConfigChanges &changes, QByteArray &out) const;

private:
    using SectionNumber = quint32;
    static constexpr SectionNumber NoSection = 0xFFFF'FFFF;

    /// From a group's heading to the next one; the first section has no heading and belongs to no group. Small, because
    /// a forged text may consist of headings.
    struct Section
    {
        /// KeyIndex::None before the first heading, and behind one that cannot be understood.
        KeyIndex::Number group = KeyIndex::None;
        quint32 begin = 0;              ///< of the heading, in the content
        quint32 body = 0;               ///< behind the heading
        quint32 entries = 0;            ///< lines above it that may be entries
        SectionNumber next = NoSection; ///< of the same group
    };
    struct Group
    {
        SectionNumber first = NoSection;
        SectionNumber last = NoSection;
        std::unique_ptr<Entries> entries;
        int searches = 0; ///< for one value each
    };
    class Copier;
    class Merger;

    bool findSections();
    bool addSection(QByteArrayView heading, qsizetype begin, qsizetype body);
    KeyIndex::Number groupOfHeading(QByteArrayView line);
    Group *find(QByteArrayView group) const;
    void findEntries(Group &group) const;
    template<typename IsWanted, typename Visit>
    void visitEntries(const Group &group, IsWanted isWanted, Visit visit) const;
    QByteArrayView headingOf(SectionNumber number) const;
    QByteArrayView bodyOf(SectionNumber number) const;
    /// At most this many lines of the section are entries.
    std::size_t possibleEntriesOf(SectionNumber number) const;
    std::size_t mergeSections(const ConfigChanges &changes, Copier &copier) const;
    std::size_t appendNewGroups(const ConfigChanges &changes, qsizetype start, Copier &copier) const;

    TextFrame m_frame;
    QByteArrayView m_content;
    std::vector<Section> m_sections;
    mutable std::vector<Group> m_groups;
    KeyIndex m_places;                   ///< of groups
    std::vector<QByteArray> m_respelled; ///< names of groups that the text does not spell canonically
    qsizetype m_lineCount = 0;
    quint32 m_possibleEntries = 0; ///< lines that may be entries; fewer than all
    bool m_isTooLong = false;
};

} // namespace marvola

#endif
