// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/KeyIndex.h"

#include <QtCore/QHashFunctions>

#include <cstring>
#include <utility>

namespace marvola {

namespace {

constexpr std::size_t FirstSlots = 16;

quint64 mixed(quint64 a, quint64 b)
{
    a = (a ^ b) * Q_UINT64_C(0x9FB21C651E98DF25);
    a ^= a >> 35;
    a *= Q_UINT64_C(0xD6E8FEB86659FD93);
    return a ^ (a >> 32);
}

/// Seeded by the process, so that nobody can make a file whose keys all fall into one place.
quint32 hashOf(QByteArrayView key)
{
    static const quint64 seed = QHashSeed::globalSeed();
    quint64 hash = seed ^ static_cast<quint64>(key.size());
    const char *at = key.data();
    qsizetype left = key.size();
    for (; left >= 8; at += 8, left -= 8) {
        quint64 chunk = 0;
        std::memcpy(&chunk, at, 8);
        hash = mixed(hash, chunk);
    }
    quint64 rest = 0;
    for (qsizetype i = 0; i < left; ++i)
        rest = (rest << 8) | static_cast<quint8>(at[i]);
    return static_cast<quint32>(mixed(hash, rest));
}

} // namespace

void KeyIndex::reserve(std::size_t count)
{
    m_keys.reserve(count);
}

/// The number of \a key, which gets \a next if it has none.
KeyIndex::Number KeyIndex::enter(QByteArrayView key, Number next)
{
    const auto counted = static_cast<Number>(listNumber(key, m_counted + std::size_t(1)));
    if (counted > 0 && counted <= m_counted)
        return m_firstCounted + counted - 1;
    // It may have come before its turn.
    if (counted > 0 && isNextToCount(next) && search(key) == None) {
        if (m_counted == 0)
            m_firstCounted = next;
        ++m_counted;
        return next;
    }
    if ((m_keys.size() - m_counted + 1) * 2 > m_slots.size())
        resize(m_slots.empty() ? FirstSlots : m_slots.size() * 2);
    const quint32 hash = hashOf(key);
    Slot &slot = m_slots[slotOf(key, hash)];
    if (slot.number == None)
        slot = {hash, next};
    return slot.number;
}

KeyIndex::Number KeyIndex::find(QByteArrayView key) const
{
    if (const std::size_t counted = listNumber(key, m_counted); counted > 0)
        return m_firstCounted + static_cast<Number>(counted) - 1;
    // The same again or the next one: so most keys are asked for, and need no hash.
    if (is(m_last, key))
        return m_last;
    const Number number = is(m_last + 1, key) ? m_last + 1 : search(key);
    if (number != None)
        m_last = number;
    return number;
}

KeyIndex::Number KeyIndex::search(QByteArrayView key) const
{
    return m_keys.size() == m_counted ? None : m_slots[slotOf(key, hashOf(key))].number;
}

/// Where the key is, or would be put.
std::size_t KeyIndex::slotOf(QByteArrayView key, quint32 hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t at = hash & mask;
    while (m_slots[at].number != None && (m_slots[at].hash != hash || m_keys[m_slots[at].number] != key))
        at = (at + 1) & mask;
    return at;
}

void KeyIndex::resize(std::size_t slotCount)
{
    const std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(slotCount));
    for (const Slot &slot : old) {
        if (slot.number != None)
            m_slots[slotOf(m_keys[slot.number], slot.hash)] = slot;
    }
}

} // namespace marvola
