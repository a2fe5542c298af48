// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigChanges.h"
#include "platform/ConfigSyntax.h"
#include "platform/LineReader.h"

namespace marvola {

namespace {

void endLine(QByteArray &out)
{
    if (!out.endsWith('\n'))
        out += '\n';
}

void appendEntry(QByteArray &out, const GroupChanges::Change &change)
{
    out += change.key;
    out += '=';
    out += *change.value;
    out += '\n';
}

} // namespace

/// Writes one changed group over its sections. A key that is written keeps its line's place; one that is new comes
/// behind the group's last line.
class ConfigText::Merger
{
public:
    Merger(const GroupChanges &changes, QByteArray &out)
        : m_changes(changes), m_out(out), m_done(changes.changes.size())
    {
    }

    enum class Place { Last, NotLast };

    /// A section of the group: its heading, and its other lines.
    void mergeSection(QByteArrayView heading, QByteArrayView body, Place place)
    {
        const bool hasMore = place == Place::Last && hasUnwritten();
        if (m_changes.isCleared && !hasMore && !hasUnreadable(body))
            return;
        m_out += heading;
        const qsizetype textEnd = endOfText(body);
        LineReader lines(body.first(textEnd));
        while (lines.next())
            mergeLine(lines);
        if (place == Place::Last)
            appendUnwritten();
        m_out += body.sliced(textEnd);
    }

    void appendUnwritten()
    {
        for (std::size_t place = 0; place < m_done.size(); ++place) {
            const auto &change = m_changes.changes[place];
            if (m_done[place] || !change.value)
                continue;
            endLine(m_out);
            appendEntry(m_out, change);
        }
    }

    bool hasUnwritten() const
    {
        for (std::size_t place = 0; place < m_done.size(); ++place) {
            if (!m_done[place] && m_changes.changes[place].value)
                return true;
        }
        return false;
    }

private:
    static bool isUnderstood(const ConfigLine &line, QByteArrayView bytes)
    {
        return line.kind != LineKind::Unreadable && (line.kind != LineKind::Entry || bytes.isValidUtf8());
    }

    static bool hasUnreadable(QByteArrayView body)
    {
        LineReader lines(body);
        while (lines.next()) {
            if (!isUnderstood(parseLine(lines.line()), lines.line()))
                return true;
        }
        return false;
    }

    void mergeLine(const LineReader &lines)
    {
        const ConfigLine line = parseLine(lines.line());
        const bool isKept = !isUnderstood(line, lines.line()) || (line.kind != LineKind::Entry && !m_changes.isCleared);
        if (isKept)
            m_out += lines.whole();
        else if (line.kind == LineKind::Entry)
            mergeEntry(line, lines.whole());
    }

    void mergeEntry(const ConfigLine &line, QByteArrayView whole)
    {
        QByteArray storage;
        const QByteArrayView key = canonicalName(line.name, storage);
        const KeyIndex::Number place = m_changes.places.find(key);
        if (place == KeyIndex::None) {
            if (!m_changes.isCleared)
                m_out += whole;
            return;
        }
        const auto &change = m_changes.changes[place];
        // A cleared group is written anew, in the order of writing. Of a key given twice one line is left.
        if (!change.value || m_done[place] || m_changes.isCleared)
            return;
        m_done[place] = true;
        if (line.value == *change.value)
            m_out += whole;
        else
            appendEntry(m_out, change);
    }

    const GroupChanges &m_changes;
    QByteArray &m_out;
    std::vector<bool> m_done;
};

void ConfigText::merge(const ConfigChanges &changes, QByteArray &out) const
{
    out.reserve(out.size() + m_content.size());
    const qsizetype start = out.size();
    std::vector<std::optional<Merger>> mergers(m_groups.size());
    for (const auto &change : changes.groups()) {
        const KeyIndex::Number place = m_places.find(change.name);
        if (place != KeyIndex::None)
            mergers[place].emplace(change.content, out);
    }
    for (std::size_t at = 0; at < m_sections.size(); ++at) {
        const Section &section = m_sections[at];
        if (section.group == KeyIndex::None || !mergers[section.group]) {
            out += m_content.sliced(section.begin, section.end - section.begin);
            continue;
        }
        const auto place = m_groups[section.group].sections.back() == at ? Merger::Place::Last : Merger::Place::NotLast;
        mergers[section.group]->mergeSection(m_content.sliced(section.begin, section.body - section.begin),
                                             m_content.sliced(section.body, section.end - section.body), place);
    }
    for (const auto &change : changes.groups()) {
        Merger merger(change.content, out);
        if (m_places.find(change.name) != KeyIndex::None || !merger.hasUnwritten())
            continue;
        if (out.size() > start) {
            endLine(out);
            out += '\n';
        }
        out += '[' + change.name + "]\n";
        merger.appendUnwritten();
    }
}

} // namespace marvola
