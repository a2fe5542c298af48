// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_PRIVATEBUS_H
#define MARVOLA_TESTS_NETWORKMANAGER_PRIVATEBUS_H

#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtDBus/QDBusConnection>

/// Starts \a process so that it dies with this one, even when that is killed.
void dieWithParent(QProcess &process);

/// A message bus of the test's own. It is gone, with everything of it, when this goes.
class PrivateBus
{
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    const QString &address() const { return m_address; }
    /// A connection that nobody else has.
    QDBusConnection connect() const;
    /// Ends the bus as a crash would.
    void kill();

private:
    QTemporaryDir m_dir;
    QProcess m_daemon;
    QString m_address;
    mutable QStringList m_connections;
};

#endif
