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

bool NumberedGroup::removeEntry(int number)
{
    return m_file.removeEntry(m_group, QString::number(number));
}

void NumberedGroup::removeEntries()
{
    const int old = count();
    for (int number = 1; number <= old; ++number)
        removeEntry(number);
}

bool NumberedGroup::replace(const QStringList &entries)
{
    removeEntries();
    const int newCount = static_cast<int>(qMin<qsizetype>(entries.size(), MaxEntries));
    bool written = writeCount(newCount);
    for (int number = 1; written && number <= newCount; ++number)
        written = writeEntry(number, entries.at(number - 1));
    return written;
}

} // namespace marvola
