// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLAYLIST_CURRENTLIST_H
#define MARVOLA_PLAYLIST_CURRENTLIST_H

#include "playlist/CursorRule.h"
#include "playlist/ItemList.h"
#include "playlist/PlayMode.h"
#include "playlist/RandomOrder.h"

#include <marvola/Types.h>

#include <QtCore/QStringList>

namespace marvola {

/// The list being played: items, a flag for each, the order in which they are played, and the active item.
///
/// Two kinds of number: an *index* is a position in the list, a *place* is a position in the play order. The order
/// holds indices; the cursor is a place. The active item is items[order[cursor]].
///
/// As long as no text is in the list twice, items, flags and order have one length and the order holds each index once.
/// Legal all the same: a cursor left over from a longer list, a text that is in the list twice, an order longer than
/// the items. Every read is safe against them and then gives a null text or NoPosition; the cursor is never below -1.
/// Modes and limits come in as arguments. A value type, used by one thread at a time; nothing fails but by its result.
class CurrentList
{
public:
    static constexpr int MaxItems = 65535;

    /// \a reseed is where shuffles get their random numbers.
    explicit CurrentList(Reseed reseed = reseedFromClock);

    /// The playlist that the list was taken from, with the prefix; null when there is none.
    QString storedName() const { return m_storedName; }
    void setStoredName(const QString &storedName) { m_storedName = storedName; }
    /// The name without the prefix.
    QString name() const;
    /// Names the playlist, without the prefix; a null name changes nothing, an empty one is a name.
    void setName(const QString &name);

    // Contents: CurrentList.cpp

    int count() const { return static_cast<int>(m_items.size()); }
    bool isEmpty() const { return m_items.isEmpty(); }
    QStringList items() const { return m_items.texts(); }
    QList<MP_MEDIA_FILE_TYPE_T> flags() const { return m_flags; }
    QList<quint32> order() const { return m_order; }
    int cursor() const { return m_cursor; }
    /// The item at \a index, null when there is none.
    QString itemAt(int index) const;
    /// The first index that holds \a item, or NoPosition.
    int indexOf(const QString &item) const;
    bool contains(const QString &item) const { return indexOf(item) != NoPosition; }
    /// Whether the item at \a index is a file, as opposed to a stream.
    bool isClip(int index) const;
    MP_MEDIA_FILE_TYPE_T flag(const QString &item) const;
    void setFlag(const QString &item, MP_MEDIA_FILE_TYPE_T flag);
    /// Makes \a item the only one, and active; the list then has no name. An empty item changes nothing.
    void setItem(const QString &item);
    /// Replaces the items by what append() takes of \a items; the list then has no name. No items change nothing.
    void setItems(const QStringList &items, quint16 maxItems, Shuffle shuffle);
    /// Replaces the text of the first item \a oldUrl, unless \a newUrl is in the list already.
    void editUrl(const QString &oldUrl, const QString &newUrl);
    /// Removes all items; the name stays.
    void clear();
    /// Told by the player and kept for it.
    bool isTemporary() const { return m_temporary; }
    void setTemporary(bool temporary) { m_temporary = temporary; }
    /// Set by append() and remove(); only the player clears it.
    bool isChanged() const { return m_changed; }
    void setChanged(bool changed) { m_changed = changed; }

    // Filling: CurrentList_fill.cpp

    /// Appends the entries that are not in the list yet.
    /// \return false when \a maxItems stopped it; what was accepted before stays
    [[nodiscard]] bool append(const QStringList &entries, quint16 maxItems, Shuffle shuffle);
    /// Makes a stored playlist the list. \a storedCount is the number of items that it claims to have.
    void load(const QString &storedName, const QStringList &items, int storedCount, Shuffle shuffle);
    /// Appends what was saved at the end of an earlier run; \a activeIndex is the index that was active.
    void restore(const QString &storedName, const QStringList &items, int activeIndex, Shuffle shuffle);

    // Order: CurrentList_order.cpp

    /// Rebuilds the order for a new shuffle mode; the active item stays active. Nothing happens when nothing changes.
    void setShuffle(Shuffle current, Shuffle wanted);
    /// Shuffles the items themselves, and their flags; the order stays, and the cursor follows the active text.
    QStringList randomizeItems();
    /// Replaces the cursor by the index that it stands for, and gives it; NoPosition when it stands for none.
    int turnCursorIntoIndex();

    // Moving: CurrentList_navigate.cpp; null texts when there is no such item

    QString active() const;
    void setActive(int index, Shuffle shuffle, PickFirst pickFirst);
    QString next(Repeat repeat, Shuffle shuffle);
    QString previous(Repeat repeat);
    bool hasNext(Repeat repeat) const;
    bool hasPrevious(Repeat repeat) const;
    /// Whether \a item is the one that the play order has last.
    bool isLast(const QString &item) const;

    // Editing: CurrentList_edit.cpp; false when there is no item at the index

    [[nodiscard]] bool remove(int index);
    [[nodiscard]] bool moveUp(int index, Shuffle shuffle);
    [[nodiscard]] bool moveDown(int index, Shuffle shuffle);

private:
    bool isIndex(int index) const { return index >= 0 && index < count(); }
    int lastPlace() const { return count() - 1; }
    int placeOf(int index) const;
    int indexAt(int place) const;
    void empty();
    void appendIndices(int count);
    void putFirst(int index);
    void moveItem(int index, int target);
    void followMove(int index, int target, Shuffle shuffle);
    void removeFromOrder(int index);

    Reseed m_reseed;
    QString m_storedName;
    ItemList m_items;
    QList<MP_MEDIA_FILE_TYPE_T> m_flags; // at least as many as items
    QList<quint32> m_order;
    int m_cursor = NoPosition;
    bool m_temporary = false;
    bool m_changed = false;
};

} // namespace marvola

#endif
