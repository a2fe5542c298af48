// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_LINEREADER_H
#define MARVOLA_PLATFORM_LINEREADER_H

#include <QtCore/QByteArrayView>

namespace marvola {

/// Walks through the lines of a text. The last one may lack its line end.
class LineReader
{
public:
    explicit LineReader(QByteArrayView text) : m_text(text) {}

    /// Goes to the next line, at first to the first one; false when there is none.
    bool next()
    {
        m_begin = m_end;
        if (m_begin == m_text.size())
            return false;
        const qsizetype newline = m_text.indexOf('\n', m_begin);
        m_end = newline < 0 ? m_text.size() : newline + 1;
        m_length = (newline < 0 ? m_end : newline) - m_begin;
        return true;
    }

    /// The line without its line end.
    QByteArrayView line() const { return m_text.sliced(m_begin, m_length); }
    /// The line with its line end.
    QByteArrayView whole() const { return m_text.sliced(m_begin, m_end - m_begin); }
    /// Where the line begins, and where the next one does.
    qsizetype begin() const { return m_begin; }
    qsizetype end() const { return m_end; }

private:
    QByteArrayView m_text;
    qsizetype m_begin = 0;
    qsizetype m_end = 0;
    qsizetype m_length = 0;
};

} // namespace marvola

#endif
