// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigSyntax.h"
#include "platform/LineReader.h"

#include <utility>

namespace marvola {

namespace {

void addEntry(ConfigText::Entries &entries, const ConfigLine &line)
{
    QByteArray storage;
    QByteArrayView key = canonicalName(line.name, storage);
    if (key.data() != line.name.data()) {
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

} // namespace

std::optional<QByteArrayView> ConfigText::Entries::value(QByteArrayView key) const
{
    const KeyIndex::Number number = keys.find(key);
    return number == KeyIndex::None ? std::nullopt : std::optional(values[number]);
}

ConfigText::ConfigText(TextFrame frame) : m_frame(std::move(frame)), m_content(m_frame.content())
{
    findSections();
}

void ConfigText::findSections()
{
    m_sections.push_back({});
    LineReader lines(m_content);
    while (lines.next()) {
        const QByteArrayView line = lines.line();
        // Nearly every line is an entry, and shows that with its first byte.
        if (line.isEmpty() || (line.front() != '[' && !isBlankByte(line.front())))
            continue;
        if (withoutBlanks(line).startsWith('[')) {
            m_sections.back().end = lines.begin();
            m_sections.push_back({groupOfHeading(line), lines.begin(), lines.end(), lines.end()});
        }
    }
    m_sections.back().end = m_content.size();
    for (std::size_t section = 0; section < m_sections.size(); ++section) {
        const KeyIndex::Number group = m_sections[section].group;
        if (group != KeyIndex::None)
            m_groups[group].sections.push_back(section);
    }
}

KeyIndex::Number ConfigText::groupOfHeading(QByteArrayView line)
{
    const ConfigLine heading = parseLine(line);
    if (heading.kind != LineKind::Group || !heading.name.isValidUtf8())
        return KeyIndex::None;
    QByteArray storage;
    const QByteArray name = canonicalName(heading.name, storage).toByteArray();
    const KeyIndex::Number known = m_places.find(name);
    if (known != KeyIndex::None)
        return known;
    m_groups.push_back({name, {}, std::nullopt});
    return m_places.insert(m_groups.back().name);
}

const ConfigText::Entries *ConfigText::entries(QByteArrayView group) const
{
    const KeyIndex::Number place = m_places.find(group);
    if (place == KeyIndex::None)
        return nullptr;
    Group &found = m_groups[place];
    if (!found.entries)
        findEntries(found);
    return &*found.entries;
}

void ConfigText::findEntries(Group &group) const
{
    Entries &entries = group.entries.emplace();
    for (const std::size_t at : group.sections) {
        const Section &section = m_sections[at];
        const QByteArrayView body = m_content.sliced(section.body, section.end - section.body);
        const auto lineCount = static_cast<std::size_t>(body.count('\n')) + 1;
        entries.keys.reserve(entries.keys.size() + lineCount);
        entries.values.reserve(entries.values.size() + lineCount);
        const bool isAllValid = body.isValidUtf8();
        LineReader lines(body);
        while (lines.next()) {
            const ConfigLine line = parseLine(lines.line());
            if (line.kind == LineKind::Entry && (isAllValid || lines.line().isValidUtf8()))
                addEntry(entries, line);
        }
    }
}

} // namespace marvola
