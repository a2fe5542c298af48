// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LINKS_BOOKMARKS_H
#define MARVOLA_LINKS_BOOKMARKS_H

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <atomic>

namespace marvola {

/// What came of adding a bookmark; the values are the player's.
enum class BookmarkStatus : int {
    Stored = 0,
    LimitReached = 2,
    EmptyText = 3,
};

/// The number that the next default name is tried with. It only ever grows, so that the name of a deleted bookmark is
/// not offered again.
using DefaultNameCounter = std::atomic<quint32>;

/// The one counter of the process, shared by all library objects, also those of different threads.
DefaultNameCounter &processDefaultNameCounter();

/// Named links, one URL for each name, in ascending order of the names' UTF-16 units.
///
/// add() and rename() keep names and URLs from being empty; what setUrls() brings in is taken as it is. A refused
/// change changes nothing. A value type, used by one thread at a time.
class Bookmarks
{
public:
    /// Stores \a url under \a name, in place of the URL that is there.
    [[nodiscard]] BookmarkStatus add(const QString &name, const QString &url, quint16 limit);
    /// Gives a bookmark another name. Renaming to the same name succeeds, whether or not there is such a bookmark.
    /// \return false when a name is empty, when \a newName is taken or when there is no \a oldName
    [[nodiscard]] bool rename(const QString &oldName, const QString &newName);
    bool contains(const QString &name) const { return m_urls.contains(name); }
    /// Removes every bookmark whose name is in \a names; other names are passed over.
    void remove(const QStringList &names);
    QStringList names() const { return m_urls.keys(); }
    /// The URLs of the bookmarks named, each URL once, in the order of \a names; other names are passed over.
    QStringList urlsOf(const QStringList &names) const;
    /// A name that no bookmark has: "Bookmark" and the counter, which is moved on as far as needed.
    QString unusedName(DefaultNameCounter &counter) const;

    /// All bookmarks, from name to URL.
    const QMap<QString, QString> &urls() const { return m_urls; }
    /// Replaces all bookmarks, whatever their number.
    void setUrls(const QMap<QString, QString> &urls) { m_urls = urls; }

private:
    QMap<QString, QString> m_urls;
};

} // namespace marvola

#endif
