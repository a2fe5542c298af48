// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FUZZ_CONFIGMODEL_H
#define MARVOLA_TESTS_FUZZ_CONFIGMODEL_H

#include "platform/ConfigSyntax.h"

#include <QtCore/QByteArrayList>
#include <QtCore/QMap>
#include <QtCore/QString>

/// A second reader of the format of groups and keys, as plain as can be: one line after another, everything decoded at
/// once.
struct ConfigModel
{
    QMap<QString, QMap<QString, QString>> groups;
    QByteArrayList unreadable; ///< lines that belong to nothing
    QByteArrayList comments;

    explicit ConfigModel(QByteArrayView content)
    {
        for (const QByteArray &line : content.toByteArray().split('\n'))
            addLine(line);
        m_isLastLineOpen = !content.endsWith('\n');
    }

    /// Whether every group holds the same; one without entries is as good as none.
    bool entriesEqual(const ConfigModel &other) const { return withEntries() == other.withEntries(); }

    /// Whether \a later, of a file that was made from this one, still has these lines. Blanks at the end of a last line
    /// that lacks its end may come to stand behind what is put there.
    bool areKept(const QByteArrayList &lines, const QByteArrayList &later) const
    {
        return m_isLastLineOpen ? withoutEnds(lines) == withoutEnds(later) : lines == later;
    }

private:
    void addLine(const QByteArray &line)
    {
        const marvola::ConfigLine parts = marvola::parseLine(line);
        switch (parts.kind) {
        case marvola::LineKind::Blank:
            return;
        case marvola::LineKind::Comment:
            comments.append(line);
            return;
        case marvola::LineKind::Group:
            m_isInGroup = parts.name.isValidUtf8();
            m_group = m_isInGroup ? marvola::unescapeName(parts.name) : QString();
            if (m_isInGroup)
                groups[m_group];
            else
                unreadable.append(line);
            return;
        case marvola::LineKind::Entry:
            if (m_isInGroup && QByteArrayView(line).isValidUtf8()) {
                groups[m_group][marvola::unescapeName(parts.name)] = marvola::unescapeValue(parts.value);
                return;
            }
            break;
        case marvola::LineKind::Unreadable:
            // A heading that cannot be understood ends the group above.
            m_isInGroup = m_isInGroup && !marvola::withoutBlanks(line).startsWith('[');
            break;
        }
        unreadable.append(line);
    }

    QMap<QString, QMap<QString, QString>> withEntries() const
    {
        QMap<QString, QMap<QString, QString>> found = groups;
        found.removeIf([](auto group) { return group.value().isEmpty(); });
        return found;
    }

    static QByteArrayList withoutEnds(QByteArrayList lines)
    {
        for (QByteArray &line : lines)
            line.truncate(marvola::endOfText(line));
        return lines;
    }

    QString m_group;
    bool m_isLastLineOpen = false;
    bool m_isInGroup = false;
};

#endif
