// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigChanges.h"
#include "platform/ConfigSyntax.h"
#include "platform/LineReader.h"

#include <vector>

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

/// The last line may lack its line end.
qsizetype lineCount(QByteArrayView text)
{
    return text.count('\n') + (text.isEmpty() || text.endsWith('\n') ? 0 : 1);
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
    /// \return whether there is anything left of it
    bool mergeSection(QByteArrayView heading, QByteArrayView body, Place place)
    {
        const bool hasMore = place == Place::Last && hasUnwritten();
        if (m_changes.isCleared && !hasMore && !hasUnreadable(body))
            return false;
        m_out += heading;
        const qsizetype textEnd = endOfText(body);
        LineReader lines(body.first(textEnd));
        while (lines.next())
            mergeLine(lines);
        if (place == Place::Last)
            appendUnwritten();
        m_out += body.sliced(textEnd);
        return true;
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

bool ConfigText::merge(const ConfigChanges &changes, QByteArray &out) const
{
    if (m_isTooLong)
        return false;
    out.reserve(out.size() + m_content.size());
    const qsizetype start = out.size();
    const std::size_t headings = mergeSections(changes, out) + appendNewGroups(changes, start, out);
    return headings <= MaxHeadings && lineCount(QByteArrayView(out).sliced(start)) <= MaxLines;
}

/// \return how many sections with a heading are left
std::size_t ConfigText::mergeSections(const ConfigChanges &changes, QByteArray &out) const
{
    std::vector<Merger> mergers;
    mergers.reserve(changes.groups().size());
    std::vector<std::size_t> mergerOf(m_groups.size(), changes.groups().size());
    for (const auto &change : changes.groups()) {
        const KeyIndex::Number place = m_places.find(change.name);
        if (place == KeyIndex::None)
            continue;
        mergerOf[place] = mergers.size();
        mergers.emplace_back(change.content, out);
    }
    out += bodyOf(0);
    std::size_t headings = 0;
    for (SectionNumber at = 1; at < m_sections.size(); ++at) {
        const KeyIndex::Number group = m_sections[at].group;
        if (group == KeyIndex::None || mergerOf[group] >= mergers.size()) {
            out += headingOf(at);
            out += bodyOf(at);
            ++headings;
            continue;
        }
        const auto place = m_groups[group].last == at ? Merger::Place::Last : Merger::Place::NotLast;
        headings += mergers[mergerOf[group]].mergeSection(headingOf(at), bodyOf(at), place) ? 1 : 0;
    }
    return headings;
}

/// \return how many they are
std::size_t ConfigText::appendNewGroups(const ConfigChanges &changes, qsizetype start, QByteArray &out) const
{
    std::size_t added = 0;
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
        ++added;
    }
    return added;
}

} // namespace marvola
