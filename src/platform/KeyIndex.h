// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_KEYINDEX_H
#define MARVOLA_PLATFORM_KEYINDEX_H

#include "platform/ListNumber.h"

#include <QtCore/QByteArrayView>

#include <vector>

namespace marvola {

/// Numbers byte strings 0, 1, 2 and so on, in the order in which they come, and finds them again in constant time. Made
/// for tens of thousands of short keys that are mostly asked for in their order, where it takes a fifth of the time
/// that a general hash takes. Keys that count, "1", "2" and so on, as those of lists do, are not even hashed.
///
/// The bytes are not copied: they must stay where they are as long as the index is used.
class KeyIndex
{
public:
    using Number = quint32;
    static constexpr Number None = 0xFFFF'FFFF;

    /// Makes room for \a count keys.
    void reserve(std::size_t count);

    /// The number of \a key, which gets the next one if it has none.
    Number insert(QByteArrayView key)
    {
        return insert(key, [key] { return key; });
    }
    /// The same; of a new key what \a keep gives is taken, the same bytes in a place where they stay.
    template<typename Keep>
    Number insert(QByteArrayView key, Keep keep)
    {
        const auto next = static_cast<Number>(m_keys.size());
        const Number number = enter(key, next);
        if (number == next)
            m_keys.push_back(keep());
        return number;
    }

    /// The number of \a key, or None.
    Number find(QByteArrayView key) const;

    std::size_t size() const { return m_keys.size(); }
    QByteArrayView key(Number number) const { return m_keys[number]; }

private:
    struct Slot
    {
        quint32 hash = 0;
        Number number = None;
    };

    bool is(Number number, QByteArrayView key) const { return number < m_keys.size() && m_keys[number] == key; }
    Number search(QByteArrayView key) const;
    Number enter(QByteArrayView key, Number next);
    bool isNextToCount(Number next) const { return m_counted == 0 || m_firstCounted + m_counted == next; }
    std::size_t slotOf(QByteArrayView key, quint32 hash) const;
    void resize(std::size_t slotCount);

    std::vector<QByteArrayView> m_keys;
    std::vector<Slot> m_slots; ///< a power of two of them, at most half of them taken
    mutable Number m_last = 0; ///< the one that was found last
    Number m_firstCounted = 0; ///< the number of "1"
    Number m_counted = 0;      ///< so many keys from there on count, and are not in the table
};

} // namespace marvola

#endif
