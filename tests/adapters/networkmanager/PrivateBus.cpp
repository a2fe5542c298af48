// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "PrivateBus.h"

#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <csignal>

#include <sys/prctl.h>

void dieWithParent(QProcess &process)
{
    process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
}

PrivateBus::PrivateBus()
{
    EXPECT_TRUE(m_dir.isValid());
    QFile configuration(m_dir.filePath(QStringLiteral("bus.conf")));
    EXPECT_TRUE(configuration.open(QIODevice::WriteOnly));
    configuration.write("<busconfig><listen>unix:path=" + QFile::encodeName(m_dir.filePath(QStringLiteral("bus"))) +
                        "</listen><auth>EXTERNAL</auth><policy context=\"default\"><allow send_destination=\"*\"/>"
                        "<allow receive_sender=\"*\"/><allow own=\"*\"/><allow user=\"*\"/></policy></busconfig>");
    configuration.close();

    dieWithParent(m_daemon);
    m_daemon.start(QStringLiteral("dbus-daemon"),
                   {QStringLiteral("--config-file=") + configuration.fileName(), QStringLiteral("--nofork"),
                    QStringLiteral("--nopidfile"), QStringLiteral("--print-address")});
    EXPECT_TRUE(m_daemon.waitForStarted()) << "is dbus-daemon installed?";
    while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead())
        continue;
    m_address = QString::fromLocal8Bit(m_daemon.readLine().trimmed());
    EXPECT_FALSE(m_address.isEmpty()) << m_daemon.readAllStandardError().constData();
}

PrivateBus::~PrivateBus()
{
    for (const QString &name : std::as_const(m_connections))
        QDBusConnection::disconnectFromBus(name);
    kill();
}

QDBusConnection PrivateBus::connect() const
{
    static int number = 0;
    const QString name = QStringLiteral("private-bus-%1").arg(++number);
    m_connections.append(name);
    QDBusConnection connection = QDBusConnection::connectToBus(m_address, name);
    EXPECT_TRUE(connection.isConnected());
    return connection;
}

void PrivateBus::kill()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}
