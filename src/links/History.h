// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LINKS_HISTORY_H
#define MARVOLA_LINKS_HISTORY_H

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace marvola {

/// The links that were played, the latest first.
///
/// add() keeps every link once and none of them empty; what append() brings in is taken as it is. A value type, used by
/// one thread at a time.
class History
{
public:
    /// Puts \a url at the front, from its place if it has one. A new link costs a full history its oldest. An empty one
    /// is passed over.
    void add(const QString &url, quint16 limit);
    /// Adds \a url behind the oldest, unchecked: for what was saved.
    void append(const QString &url) { m_entries.append(url); }
    const QStringList &entries() const { return m_entries; }

private:
    QStringList m_entries;
};

} // namespace marvola

#endif
