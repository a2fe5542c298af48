// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/NumberedGroup.h"

#include <marvola/ConfigFile.h>

namespace marvola {

NumberedGroup::NumberedGroup(ConfigFile &file, const QString &group) : m_file(file), m_group(group)
{
}

int NumberedGroup::count() const
{
    return qBound(0, m_file.readNumEntry(m_group, CounterKey, 0), MaxEntries);
}

QString NumberedGroup::entry(int number) const
{
    return m_file.readEntry(m_group, QString::number(number));
}

QStringList NumberedGroup::entries() const
{
    return m_file.readNumberedEntries(m_group, count());
}

bool NumberedGroup::writeCount(int count)
{
    return m_file.writeEntry(m_group, CounterKey, count);
}

bool NumberedGroup::writeEntry(int number, const QString &text)
{
    return m_file.writeEntry(m_group, QString::number(number), text);
}

int NumberedGroup::writeEntries(const QStringList &texts, int count)
{
    return m_file.writeNumberedEntries(m_group, 1, texts.mid(0, count));
}

bool NumberedGroup::removeEntry(int number)
{
    return m_file.removeEntry(m_group, QString::number(number));
}

void NumberedGroup::removeEntries(int first, int last)
{
    for (int number = first; number <= last; ++number)
        removeEntry(number);
}

bool NumberedGroup::replace(const QStringList &entries)
{
    const int oldCount = count();
    const int newCount = static_cast<int>(qMin<qsizetype>(entries.size(), MaxEntries));
    const bool isCounted = writeCount(newCount);
    const int written = isCounted ? writeEntries(entries, newCount) : 0;
    removeEntries(written + 1, oldCount);
    return isCounted && written == newCount;
}

} // namespace marvola
