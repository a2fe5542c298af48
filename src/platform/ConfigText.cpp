// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigSyntax.h"
#include "platform/LineReader.h"
#include "platform/ListNumber.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace marvola {

namespace {

/// The longest list that the library keeps, and its counter. A group that has more makes room as it goes.
constexpr std::size_t MaxReserved = 65'536;

/// As many values of the longest lists are searched for as are asked for beside the list itself.
constexpr int MaxSearches = 3;

static_assert(TextFrame::MaxFileSize <= std::numeric_limits<quint32>::max(), "sections hold places in 32 bits");

void addEntry(ConfigText::Entries &entries, const ConfigLine &line)
{
    QByteArray storage;
    QByteArrayView key = canonicalName(line.name, storage);
    if (key.data() != line.name.data() && entries.keys.find(key) == KeyIndex::None) {
        entries.respelled.push_back(std::move(storage));
        key = entries.respelled.back();
    }
    // The last of several lines with one key counts.
    const KeyIndex::Number number = entries.keys.insert(key);
    if (number < entries.values.size())
        entries.values[number] = line.value;
    else
        entries.values.push_back(line.value);
}

constexpr bool isAny(QByteArrayView)
{
    return true;
}

} // namespace

std::optional<QByteArrayView> ConfigText::Entries::value(QByteArrayView key) const
{
    const KeyIndex::Number number = keys.find(key);
    return number == KeyIndex::None ? std::nullopt : std::optional(values[number]);
}

ConfigText::ConfigText(TextFrame frame) : m_frame(std::move(frame)), m_content(m_frame.content())
{
    if (findSections())
        return;
    m_isTooLong = true;
    m_sections.clear();
    m_groups.clear();
    m_places = KeyIndex();
    m_respelled.clear();
}

bool ConfigText::findSections()
{
    m_sections.push_back({});
    LineReader lines(m_content);
    while (lines.next()) {
        if (++m_lineCount > MaxLines)
            return false;
        const QByteArrayView line = lines.line();
        if (line.isEmpty())
            continue;
        // Nearly every line is an entry, and shows that with its first byte.
        const bool mayBeHeading = line.front() == '[' || isBlankByte(line.front());
        if (!mayBeHeading || !withoutBlanks(line).startsWith('['))
            ++m_possibleEntries;
        else if (!addSection(line, lines.begin(), lines.end()))
            return false;
    }
    return true;
}

bool ConfigText::addSection(QByteArrayView heading, qsizetype begin, qsizetype body)
{
    const KeyIndex::Number group = groupOfHeading(heading);
    // What belongs to no group stays together.
    if (group == KeyIndex::None && m_sections.back().group == KeyIndex::None)
        return true;
    const auto number = static_cast<SectionNumber>(m_sections.size());
    // The first section has no heading.
    if (number > MaxHeadings)
        return false;
    m_sections.push_back(
        {group, static_cast<quint32>(begin), static_cast<quint32>(body), m_possibleEntries, NoSection});
    if (group == KeyIndex::None)
        return true;
    Group &owner = m_groups[group];
    (owner.last == NoSection ? owner.first : m_sections[owner.last].next) = number;
    owner.last = number;
    return true;
}

KeyIndex::Number ConfigText::groupOfHeading(QByteArrayView line)
{
    const ConfigLine heading = parseLine(line);
    if (heading.kind != LineKind::Group || !heading.name.isValidUtf8())
        return KeyIndex::None;
    QByteArray storage;
    QByteArrayView name = canonicalName(heading.name, storage);
    const KeyIndex::Number known = m_places.find(name);
    if (known != KeyIndex::None)
        return known;
    if (name.data() != heading.name.data()) {
        m_respelled.push_back(std::move(storage));
        name = m_respelled.back();
    }
    m_groups.push_back({});
    return m_places.insert(name);
}

const ConfigText::Entries *ConfigText::entries(QByteArrayView group) const
{
    Group *const found = find(group);
    if (!found)
        return nullptr;
    if (!found->entries)
        findEntries(*found);
    return &*found->entries;
}

std::optional<QByteArrayView> ConfigText::value(QByteArrayView group, QByteArrayView key) const
{
    Group *const found = find(group);
    if (!found)
        return std::nullopt;
    if (found->searches == MaxSearches)
        return entries(group)->value(key);
    ++found->searches;
    FirstBytes wanted;
    wanted.add(key);
    std::optional<QByteArrayView> value;
    visitEntries(
        *found, [&wanted](QByteArrayView line) { return wanted.mayBegin(line); },
        [&](const ConfigLine &line) {
            QByteArray storage;
            if (canonicalName(line.name, storage) == key)
                value = line.value;
        });
    return value;
}

std::vector<QByteArrayView> ConfigText::numberedValues(QByteArrayView group, int count) const
{
    std::vector<QByteArrayView> values(static_cast<std::size_t>(std::max(count, 0)));
    const Group *const found = find(group);
    if (!found)
        return values;
    visitEntries(*found, isAny, [&](const ConfigLine &line) {
        QByteArray storage;
        const std::size_t number = listNumber(canonicalName(line.name, storage), values.size());
        if (number > 0)
            values[number - 1] = line.value;
    });
    return values;
}

ConfigText::Group *ConfigText::find(QByteArrayView group) const
{
    const KeyIndex::Number place = m_places.find(group);
    return place == KeyIndex::None ? nullptr : &m_groups[place];
}

/// Calls \a visit with each entry of \a group whose line is wanted, in the order of the text.
template<typename IsWanted, typename Visit>
void ConfigText::visitEntries(const Group &group, IsWanted isWanted, Visit visit) const
{
    for (SectionNumber at = group.first; at != NoSection; at = m_sections[at].next) {
        const QByteArrayView body = bodyOf(at);
        const bool isAllValid = body.isValidUtf8();
        LineReader lines(body);
        while (lines.next()) {
            if (!isWanted(lines.line()))
                continue;
            const ConfigLine line = parseLine(lines.line());
            if (line.kind == LineKind::Entry && (isAllValid || lines.line().isValidUtf8()))
                visit(line);
        }
    }
}

void ConfigText::findEntries(Group &group) const
{
    group.entries = std::make_unique<Entries>();
    std::size_t possible = 0;
    for (SectionNumber at = group.first; at != NoSection; at = m_sections[at].next)
        possible += possibleEntriesOf(at);
    group.entries->keys.reserve(std::min(possible, MaxReserved));
    group.entries->values.reserve(std::min(possible, MaxReserved));
    visitEntries(group, isAny, [&group](const ConfigLine &line) { addEntry(*group.entries, line); });
}

QByteArrayView ConfigText::headingOf(SectionNumber number) const
{
    const Section &section = m_sections[number];
    return m_content.sliced(section.begin, section.body - section.begin);
}

QByteArrayView ConfigText::bodyOf(SectionNumber number) const
{
    const qsizetype end = number + 1 < m_sections.size() ? m_sections[number + 1].begin : m_content.size();
    const qsizetype begin = m_sections[number].body;
    return m_content.sliced(begin, end - begin);
}

std::size_t ConfigText::possibleEntriesOf(SectionNumber number) const
{
    const quint32 end = number + 1 < m_sections.size() ? m_sections[number + 1].entries : m_possibleEntries;
    return end - m_sections[number].entries;
}

} // namespace marvola
