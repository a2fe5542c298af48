// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CONFIGFILE_H
#define MARVOLA_CONFIGFILE_H

#include <marvola/Export.h>

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

namespace marvola {
class PlacedFile;
}

/// A text file of groups and keys (INI style), used for the settings file and for the list file.
///
/// Reading sees the file as it was when this object first read it, with the object's own writes on top. Writes are kept
/// in memory until flush() or destruction commits them. A commit is all or nothing, takes what is on disk by then and
/// applies only this object's own changes, so several objects on one file, in one process or in several, lose nothing
/// of one another's. A file never gets shorter. Every group, key and value round-trips exactly, and an empty value is
/// not the same as an absent one. What the reader cannot understand is kept as it stands.
///
/// An object is used by one thread at a time; different objects on one file may be used by different threads. Nothing
/// throws: a file that is missing or unreadable reads as empty.
class MARVOLA_EXPORT ConfigFile
{
public:
    /// Names the file; nothing is opened yet. \a flag is reserved and has no effect.
    ConfigFile(const QString &path, bool flag);

    /// Commits what was written and not yet flushed, unless the last flush() failed and nothing was written since.
    ~ConfigFile();

    ConfigFile(const ConfigFile &) = delete;
    ConfigFile &operator=(const ConfigFile &) = delete;

    /// The value of \a key in \a group, or \a defaultValue when the key is absent.
    QString readEntry(const QString &group, const QString &key, const QString &defaultValue = QString()) const;

    /// The value as a decimal integer, or \a defaultValue when the key is absent or is no integer in the range of int.
    int readNumEntry(const QString &group, const QString &key, int defaultValue = 0) const;

    /// The value as a truth value: "1", "true", "yes", "on" and "0", "false", "no", "off" in any case; otherwise, or
    /// when the key is absent, \a defaultValue.
    bool readBoolEntry(const QString &group, const QString &key, bool defaultValue = false) const;

    /// Sets \a key in \a group to \a value. A null text is stored as an empty one.
    /// \return false when the write is refused: the file cannot be written (no path, a directory in its place, a medium
    /// that is read-only), or a text is longer than the format takes (65,535 UTF-16 units for names, 16,777,215 for
    /// values). A refused write changes nothing.
    bool writeEntry(const QString &group, const QString &key, const QString &value);

    /// The same with a decimal integer.
    bool writeEntry(const QString &group, const QString &key, int value);

    /// Removes \a key from \a group.
    /// \return false when the file cannot be written; true otherwise, also when there was no such key.
    bool removeEntry(const QString &group, const QString &key);

    /// Removes the whole of \a group.
    /// \return false when the file cannot be written; true otherwise, also when there was no such group.
    bool clearGroup(const QString &group);

    /// Every entry of \a group, as a map from key to value.
    QMap<QString, QString> getGroupEntriesKeyList(const QString &group) const;

    /// The values of the keys "1", "2" and so on to \a count in \a group; null where there is none. The same as asking
    /// for each of them, in a fraction of the time. \a count may come from a file of others: a negative one counts as
    /// 0, and one above 65,535, the most entries that a list has, as 65,535.
    /// \return as many values as that
    QStringList readNumberedEntries(const QString &group, int count) const;

    /// Writes \a values, the first as the value of the key \a first, a number, and each further one as that of the next
    /// number. The same as writing each of them, in a fraction of the time.
    /// \return how many it wrote: all, or those before the first that writeEntry() would refuse
    int writeNumberedEntries(const QString &group, int first, const QStringList &values);

    /// Whether there is a file that could not be read when this object first read it. What was read then says nothing
    /// of the file, so all writes are refused.
    bool isUnreadable() const;

    /// Commits what was written since the last flush: afterwards it is on the medium.
    /// \return false when it could not be committed, also when another has kept the file's folder locked for ten
    ///         seconds, since it was stopped in the middle; the file is then as it was, the changes stay in this
    ///         object, and a further flush() tries again (destruction does so only when something was written since)
    bool flush();

    /// Makes what follows one step as seen by others: waits until no other object is committing to this file or has it
    /// locked, reads the file anew, and keeps all others from committing to it until this object is destroyed. For
    /// changes that depend on what was read. Locking twice is the same as once.
    /// \return false when the file's folder cannot be locked, or another has held it for ten seconds, since it was
    ///         stopped in the middle; reads and writes then work as without a lock
    bool lockForUpdate();

private:
    friend class marvola::PlacedFile;
    Q_DECL_HIDDEN explicit ConfigFile(const marvola::PlacedFile &file);

    class Q_DECL_HIDDEN Private;
    std::unique_ptr<Private> d;
};

#endif
