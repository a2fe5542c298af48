// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "links/Bookmarks.h"

#include <QtCore/QSet>

namespace marvola {

namespace {

QString defaultName(quint32 number)
{
    return QStringLiteral("Bookmark") + QString::number(number);
}

} // namespace

DefaultNameCounter &processDefaultNameCounter()
{
    static DefaultNameCounter counter(0);
    return counter;
}

BookmarkStatus Bookmarks::add(const QString &name, const QString &url, quint16 limit)
{
    if (name.isEmpty() || url.isEmpty())
        return BookmarkStatus::EmptyText;
    // Deliberate: a full map refuses a new URL for a name it has, too, and a map that was restored with more than the
    // limit is not full. The player's screens are made for both.
    if (m_urls.size() == limit)
        return BookmarkStatus::LimitReached;
    m_urls.insert(name, url);
    return BookmarkStatus::Stored;
}

bool Bookmarks::rename(const QString &oldName, const QString &newName)
{
    if (oldName.isEmpty() || newName.isEmpty())
        return false;
    // Deliberate: asked before the name is looked up, because leaving a name field as it was is no mistake.
    if (oldName == newName)
        return true;
    if (m_urls.contains(newName) || !m_urls.contains(oldName))
        return false;
    m_urls.insert(newName, m_urls.take(oldName));
    return true;
}

void Bookmarks::remove(const QStringList &names)
{
    for (const QString &name : names)
        m_urls.remove(name);
}

QStringList Bookmarks::urlsOf(const QStringList &names) const
{
    QStringList urls;
    QSet<QString> seen;
    for (const QString &name : names) {
        const auto found = m_urls.constFind(name);
        if (found == m_urls.cend() || seen.contains(*found))
            continue;
        seen.insert(*found);
        urls.append(*found);
    }
    return urls;
}

QString Bookmarks::unusedName(DefaultNameCounter &counter) const
{
    quint32 number = counter.load();
    while (m_urls.contains(defaultName(number))) {
        // When another thread has moved the counter on meanwhile, number becomes what it is now.
        if (counter.compare_exchange_strong(number, number + 1))
            ++number;
    }
    return defaultName(number);
}

} // namespace marvola
