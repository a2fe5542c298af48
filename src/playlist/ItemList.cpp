// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "playlist/ItemList.h"

#include <QtCore/QHashFunctions>

#include <array>
#include <utility>

namespace marvola {

namespace {

constexpr std::size_t FirstSlots = 64;

/// So many texts are hashed before they are looked up, so that the memory for the look-ups is on its way meanwhile.
constexpr qsizetype TextsInAStep = 64;

/// Seeded by the process, so that nobody can make names that all fall into one place.
quint32 hashOf(const QString &text)
{
    static const size_t seed = QHashSeed::globalSeed();
    return static_cast<quint32>(qHash(QStringView(text), seed));
}

} // namespace

qsizetype ItemList::indexOf(const QString &text) const
{
    if (m_slots.empty())
        return m_texts.indexOf(text);
    return static_cast<qsizetype>(m_slots[slotOf(text, hashOf(text))].place) - 1;
}

ItemList::Room ItemList::add(const QStringList &texts, qsizetype maxSize)
{
    const qsizetype room = qBound<qsizetype>(0, maxSize - size(), texts.size());
    makeIndex(size() + room + 1);
    m_texts.reserve(size() + room);
    std::array<quint32, TextsInAStep> hashes{};
    for (qsizetype begin = 0; begin < texts.size(); begin += TextsInAStep) {
        const qsizetype count = qMin(TextsInAStep, texts.size() - begin);
        for (qsizetype i = 0; i < count; ++i) {
            hashes[static_cast<std::size_t>(i)] = hashOf(texts.at(begin + i));
            __builtin_prefetch(&m_slots[hashes[static_cast<std::size_t>(i)] & (m_slots.size() - 1)], 1);
        }
        for (qsizetype i = 0; i < count; ++i) {
            if (add(texts.at(begin + i), hashes[static_cast<std::size_t>(i)], maxSize) == Room::TooLittle)
                return Room::TooLittle;
        }
    }
    return Room::Enough;
}

ItemList::Room ItemList::add(const QString &text, quint32 hash, qsizetype maxSize)
{
    Slot &slot = m_slots[slotOf(text, hash)];
    if (slot.place != 0)
        return Room::Enough;
    if (size() >= maxSize)
        return Room::TooLittle;
    m_texts.append(text);
    slot = {hash, static_cast<quint32>(size())};
    return Room::Enough;
}

void ItemList::append(const QStringList &texts)
{
    QStringList &mine = edited();
    // Into an empty list nothing is copied.
    if (mine.isEmpty())
        mine = texts;
    else
        mine += texts;
}

QStringList &ItemList::edited()
{
    m_slots.clear();
    return m_texts;
}

/// Makes the index, or one with room for \a count texts of the one that there is.
void ItemList::makeIndex(qsizetype count)
{
    std::size_t slotCount = FirstSlots;
    while (slotCount < static_cast<std::size_t>(count) * 2)
        slotCount *= 2;
    if (slotCount <= m_slots.size())
        return;
    const std::vector<Slot> old = std::exchange(m_slots, std::vector<Slot>(slotCount));
    // In the order of places where there is no index yet, so that the first of equal texts is the one that is found.
    for (qsizetype place = 0; old.empty() && place < m_texts.size(); ++place) {
        const quint32 hash = hashOf(m_texts.at(place));
        Slot &slot = m_slots[slotOf(m_texts.at(place), hash)];
        if (slot.place == 0)
            slot = {hash, static_cast<quint32>(place + 1)};
    }
    for (const Slot &slot : old) {
        if (slot.place != 0)
            m_slots[slotOf(m_texts.at(slot.place - 1), slot.hash)] = slot;
    }
}

std::size_t ItemList::slotOf(const QString &text, quint32 hash) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t at = hash & mask;
    while (m_slots[at].place != 0 && (m_slots[at].hash != hash || m_texts.at(m_slots[at].place - 1) != text))
        at = (at + 1) & mask;
    return at;
}

} // namespace marvola
