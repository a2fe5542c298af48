// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_DISTINCTTEXTS_H
#define MARVOLA_SCAN_DISTINCTTEXTS_H

#include <QtCore/QSet>
#include <QtCore/QStringList>

namespace marvola {

/// Grows a list by texts that are not in it yet, in the order in which they come. The list stays the caller's, who must
/// not change it meanwhile; a set beside it makes each look-up cheap.
class DistinctTexts
{
public:
    explicit DistinctTexts(QStringList &list) : m_list(list), m_known(list.begin(), list.end()) {}

    void add(const QString &text)
    {
        const qsizetype before = m_known.size();
        m_known.insert(text);
        if (m_known.size() > before)
            m_list.append(text);
    }

private:
    QStringList &m_list;
    QSet<QString> m_known;
};

} // namespace marvola

#endif
