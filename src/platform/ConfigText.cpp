// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigSyntax.h"
#include "platform/LineReader.h"

#include <utility>

namespace marvola {

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
        const int group = m_sections[section].group;
        if (group != Section::NoGroup)
            m_groups[static_cast<std::size_t>(group)].sections.push_back(section);
    }
}

int ConfigText::groupOfHeading(QByteArrayView line)
{
    const ConfigLine heading = parseLine(line);
    if (heading.kind != LineKind::Group || !heading.name.isValidUtf8())
        return Section::NoGroup;
    QByteArray storage;
    const QByteArray name = canonicalName(heading.name, storage).toByteArray();
    const auto known = m_places.constFind(name);
    if (known != m_places.constEnd())
        return *known;
    const int place = static_cast<int>(m_groups.size());
    m_places.insert(name, place);
    m_groups.push_back({name, {}, std::nullopt, {}});
    return place;
}

const ConfigText::Entries *ConfigText::entries(const QByteArray &group) const
{
    const auto place = m_places.constFind(group);
    if (place == m_places.constEnd())
        return nullptr;
    Group &found = m_groups[static_cast<std::size_t>(*place)];
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
        entries.reserve(entries.size() + body.count('\n'));
        const bool isAllValid = body.isValidUtf8();
        LineReader lines(body);
        while (lines.next()) {
            const ConfigLine line = parseLine(lines.line());
            if (line.kind != LineKind::Entry || !(isAllValid || lines.line().isValidUtf8()))
                continue;
            QByteArray storage;
            QByteArrayView key = canonicalName(line.name, storage);
            if (!storage.isEmpty() && key.data() == storage.constData()) {
                group.respelled.push_back(std::move(storage));
                key = group.respelled.back();
            }
            entries.insert(key, line.value);
        }
    }
}

} // namespace marvola
