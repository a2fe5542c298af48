// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_NUMBEREDGROUP_H
#define MARVOLA_PLATFORM_NUMBEREDGROUP_H

#include <QtCore/QLatin1String>
#include <QtCore/QString>
#include <QtCore/QStringList>

class ConfigFile;

namespace marvola {

/// A list kept as one group of a ConfigFile: the key "counter" holds n, the keys "1" to "n" hold the entries in order.
///
/// A view without state of its own; it must not outlive the file object.
class NumberedGroup
{
public:
    /// The key of the count; a name that no entry can have.
    static constexpr QLatin1String CounterKey = QLatin1String("counter");
    /// A list holds at most this many entries.
    static constexpr int MaxEntries = 65535;

    NumberedGroup(ConfigFile &file, const QString &group);

    /// The stored count, 0 when absent. The count is foreign data: one that is negative or no number is 0, and one that
    /// is too large is MaxEntries.
    int count() const;
    /// Entry \a number, counted from 1; null when its key is missing.
    QString entry(int number) const;
    /// The entries 1 to count(), null where a key is missing.
    QStringList entries() const;
    [[nodiscard]] bool writeCount(int count);
    [[nodiscard]] bool writeEntry(int number, const QString &text);
    /// Writes the first \a count of \a texts as the entries 1, 2 and so on.
    /// \return how many it wrote: all, or those before the first that was refused
    [[nodiscard]] int writeEntries(const QStringList &texts, int count);
    bool removeEntry(int number);
    /// Removes the entries 1 to count(); the count stays.
    void removeEntries() { removeEntries(1, count()); }
    /// Removes the entries \a first to \a last; the count stays.
    void removeEntries(int first, int last);
    /// Replaces the whole list; entries past MaxEntries are left out.
    [[nodiscard]] bool replace(const QStringList &entries);

private:
    ConfigFile &m_file;
    QString m_group;
};

} // namespace marvola

#endif
