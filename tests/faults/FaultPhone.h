// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_FAULTPHONE_H
#define MARVOLA_TESTS_FAULTS_FAULTPHONE_H

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What is on disk, as a library sees it: lists by name. Each is a thing that may be lost.
using LibraryState = QMap<QString, QStringList>;

/// A phone in a folder of any filesystem, with everything on it that a library keeps, and the environment naming it.
/// Some of its media files are not in the index yet.
class FaultPhone
{
public:
    /// Fills \a folder, which is empty.
    explicit FaultPhone(const QString &folder);

    QString folder() const { return m_folder; }
    QString card() const { return m_folder + QStringLiteral("/card"); }
    QString settingsFolder() const { return m_folder + QStringLiteral("/write/setup"); }
    QString settingsFile() const { return settingsFolder() + QStringLiteral("/juv_marvola.cfg"); }
    QString listFile() const { return m_folder + QStringLiteral("/write/.marvola.list"); }
    QString infoFile() const { return m_folder + QStringLiteral("/write/.marvola.info"); }
    QString cacheFile() const { return m_folder + QStringLiteral("/cache/answers"); }
    QString statusFile() const { return m_folder + QStringLiteral("/status/link"); }

    /// Every media file, in the order in which they came.
    QStringList media() const;

    /// What is there now is what putBack() puts back.
    void keep();
    void putBack() const;

    /// Makes \a path hold \a bytes, or nothing when these are null.
    static void put(const QString &path, const QByteArray &bytes);
    /// Null when there is no such file.
    static QByteArray get(const QString &path);

    /// As a library finds it that starts now.
    LibraryState state() const;
    /// Files that a library makes for the moment and has not removed.
    QStringList temporaryFiles() const;

private:
    using Content = QMap<QString, QByteArray>;

    void fill() const;
    Content content() const;

    QString m_folder;
    Content m_kept;
};

#endif
