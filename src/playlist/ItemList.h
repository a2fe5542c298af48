// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_ITEMLIST_H
#define MARVOLA_PLAYLIST_ITEMLIST_H

#include <QtCore/QStringList>

#include <vector>

namespace marvola {

/// The items of a list, with an index of them as long as nothing but additions is done to the list: so filling a list
/// with tens of thousands of items that must not be in it twice takes a few times what copying them takes, in one call
/// or in as many. Editing drops the index; the next addition makes it anew.
///
/// A text may be in the list twice; it is then found at its first place.
class ItemList
{
public:
    enum class Room { Enough, TooLittle };

    const QStringList &texts() const { return m_texts; }
    qsizetype size() const { return m_texts.size(); }
    bool isEmpty() const { return m_texts.isEmpty(); }
    const QString &at(qsizetype place) const { return m_texts.at(place); }
    /// The first place of \a text, or -1.
    qsizetype indexOf(const QString &text) const;

    /// Appends those of \a texts that are not there yet, until the next one would make more than \a maxSize texts.
    [[nodiscard]] Room add(const QStringList &texts, qsizetype maxSize);
    /// Appends all of \a texts.
    void append(const QStringList &texts);
    void assign(const QStringList &texts) { edited() = texts; }

    void replace(qsizetype place, const QString &text) { edited()[place] = text; }
    void insert(qsizetype place, const QString &text) { edited().insert(place, text); }
    void removeAll(const QString &text) { edited().removeAll(text); }
    void swap(qsizetype place, qsizetype other) { edited().swapItemsAt(place, other); }
    void clear() { edited().clear(); }

private:
    struct Slot
    {
        quint32 hash = 0;
        quint32 place = 0; ///< counted from 1; 0: nothing
    };

    QStringList &edited();
    void makeIndex(qsizetype count);
    Room add(const QString &text, quint32 hash, qsizetype maxSize);
    /// Where \a text is in m_slots, or would be put.
    std::size_t slotOf(const QString &text, quint32 hash) const;

    QStringList m_texts;
    std::vector<Slot> m_slots; ///< a power of two of them, at most half of them taken; none: no index
};

} // namespace marvola

#endif
