// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigText.h"

#include "platform/ConfigChanges.h"
#include "platform/ConfigSyntax.h"
#include "platform/LineReader.h"

#include <algorithm>
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
    const qsizetype start = out.size();
    out.resize(start + change.key.size() + change.value->size() + 2);
    char *at = std::copy(change.key.begin(), change.key.end(), out.data() + start);
    *at++ = '=';
    at = std::copy(change.value->begin(), change.value->end(), at);
    *at = '\n';
}

/// At most this many lines are added by \a changes: an entry for each, and a blank line and a heading for a group.
qsizetype possibleLines(const ConfigChanges &changes)
{
    qsizetype lines = 0;
    for (const auto &group : changes.groups())
        lines += static_cast<qsizetype>(group.content.changes().size()) + 2;
    return lines;
}

/// The last line may lack its line end.
qsizetype lineCount(QByteArrayView text)
{
    return std::count(text.begin(), text.end(), '\n') + (text.isEmpty() || text.endsWith('\n') ? 0 : 1);
}

} // namespace

/// Puts parts of a text behind what \a out holds, those that follow one another in the text with one copy.
class ConfigText::Copier
{
public:
    explicit Copier(QByteArray &out) : m_out(out) {}

    void keep(QByteArrayView part)
    {
        if (part.data() != m_kept.data() + m_kept.size()) {
            out();
            m_kept = part.first(0);
        }
        m_kept = QByteArrayView(m_kept.data(), m_kept.size() + part.size());
    }

    /// What there is so far; more may be put behind it.
    QByteArray &out()
    {
        m_out += m_kept;
        m_kept = {};
        return m_out;
    }

private:
    QByteArray &m_out;
    QByteArrayView m_kept; ///< not copied yet
};

/// Writes one changed group over its sections. A key that is written keeps its line's place; one that is new comes
/// behind the group's last line.
class ConfigText::Merger
{
public:
    Merger(const GroupChanges &changes, Copier &copier)
        : m_changes(changes), m_copier(copier), m_done(changes.changes().size())
    {
        for (const auto &change : changes.changes())
            m_firstBytes.add(change.key);
    }

    enum class Place { Last, NotLast };

    /// A section of the group: its heading, and its other lines.
    /// \return whether there is anything left of it
    bool mergeSection(QByteArrayView heading, QByteArrayView body, Place place)
    {
        const bool hasMore = place == Place::Last && hasUnwritten();
        if (m_changes.isCleared && !hasMore && !hasUnreadable(body))
            return false;
        m_copier.keep(heading);
        const qsizetype textEnd = endOfText(body);
        LineReader lines(body.first(textEnd));
        const bool isAllValid = body.isValidUtf8();
        while (lines.next())
            mergeLine(lines, isAllValid);
        if (place == Place::Last)
            appendUnwritten();
        m_copier.keep(body.sliced(textEnd));
        return true;
    }

    void appendUnwritten()
    {
        for (std::size_t place = 0; place < m_done.size(); ++place) {
            const auto &change = m_changes.changes()[place];
            if (m_done[place] || !change.value)
                continue;
            endLine(m_copier.out());
            appendEntry(m_copier.out(), change);
        }
    }

    bool hasUnwritten() const
    {
        for (std::size_t place = 0; place < m_done.size(); ++place) {
            if (!m_done[place] && m_changes.changes()[place].value)
                return true;
        }
        return false;
    }

private:
    static bool isUnderstood(const ConfigLine &line, QByteArrayView bytes, bool isValid)
    {
        return line.kind != LineKind::Unreadable && (line.kind != LineKind::Entry || isValid || bytes.isValidUtf8());
    }

    static bool hasUnreadable(QByteArrayView body)
    {
        const bool isAllValid = body.isValidUtf8();
        LineReader lines(body);
        while (lines.next()) {
            if (!isUnderstood(parseLine(lines.line()), lines.line(), isAllValid))
                return true;
        }
        return false;
    }

    void mergeLine(const LineReader &lines, bool isValid)
    {
        if (!m_changes.isCleared && !m_firstBytes.mayBegin(lines.line())) {
            m_copier.keep(lines.whole());
            return;
        }
        const ConfigLine line = parseLine(lines.line());
        if (!isUnderstood(line, lines.line(), isValid) || (line.kind != LineKind::Entry && !m_changes.isCleared))
            m_copier.keep(lines.whole());
        else if (line.kind == LineKind::Entry)
            mergeEntry(line, lines.whole());
    }

    void mergeEntry(const ConfigLine &line, QByteArrayView whole)
    {
        QByteArray storage;
        const QByteArrayView key = canonicalName(line.name, storage);
        const KeyIndex::Number place = m_changes.placeOf(key);
        if (place == KeyIndex::None) {
            if (!m_changes.isCleared)
                m_copier.keep(whole);
            return;
        }
        const auto &change = m_changes.changes()[place];
        // A cleared group is written anew, in the order of writing. Of a key given twice one line is left.
        if (!change.value || m_done[place] || m_changes.isCleared)
            return;
        m_done[place] = true;
        if (line.value == *change.value)
            m_copier.keep(whole);
        else
            appendEntry(m_copier.out(), change);
    }

    const GroupChanges &m_changes;
    Copier &m_copier;
    std::vector<bool> m_done;
    FirstBytes m_firstBytes;
};

bool ConfigText::merge(const ConfigChanges &changes, QByteArray &out) const
{
    if (m_isTooLong)
        return false;
    out.reserve(out.size() + m_content.size());
    const qsizetype start = out.size();
    Copier copier(out);
    std::size_t headings = mergeSections(changes, copier);
    headings += appendNewGroups(changes, start, copier);
    if (headings > MaxHeadings)
        return false;
    // Counting takes as long as merging; mostly it is plain that there cannot be too many.
    return m_lineCount + possibleLines(changes) <= MaxLines || lineCount(QByteArrayView(out).sliced(start)) <= MaxLines;
}

/// \return how many sections with a heading are left
std::size_t ConfigText::mergeSections(const ConfigChanges &changes, Copier &copier) const
{
    std::vector<Merger> mergers;
    mergers.reserve(changes.groups().size());
    std::vector<std::size_t> mergerOf(m_groups.size(), changes.groups().size());
    for (const auto &change : changes.groups()) {
        const KeyIndex::Number place = m_places.find(change.name);
        if (place == KeyIndex::None)
            continue;
        mergerOf[place] = mergers.size();
        mergers.emplace_back(change.content, copier);
    }
    copier.keep(bodyOf(0));
    std::size_t headings = 0;
    for (SectionNumber at = 1; at < m_sections.size(); ++at) {
        const KeyIndex::Number group = m_sections[at].group;
        if (group == KeyIndex::None || mergerOf[group] >= mergers.size()) {
            copier.keep(headingOf(at));
            copier.keep(bodyOf(at));
            ++headings;
            continue;
        }
        const auto place = m_groups[group].last == at ? Merger::Place::Last : Merger::Place::NotLast;
        headings += mergers[mergerOf[group]].mergeSection(headingOf(at), bodyOf(at), place) ? 1 : 0;
    }
    return headings;
}

/// \return how many they are
std::size_t ConfigText::appendNewGroups(const ConfigChanges &changes, qsizetype start, Copier &copier) const
{
    std::size_t added = 0;
    QByteArray &out = copier.out();
    for (const auto &change : changes.groups()) {
        if (m_places.find(change.name) != KeyIndex::None)
            continue;
        Merger merger(change.content, copier);
        if (!merger.hasUnwritten())
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
