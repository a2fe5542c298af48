// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_APPS_CLI_CONNECTTEST_H
#define MARVOLA_TESTS_APPS_CLI_CONNECTTEST_H

#include "CliTest.h"
#include "OwnTmp.h"
#include "PrivateBus.h"

#include <csignal>

/// A test of the program on the way to a data link, on a bus of its own without NetworkManager.
class ConnectTest : public CliTest
{
protected:
    ConnectTest();
    void SetUp() override;

    /// A process that is ready to start, with a /tmp of its own, because the program leaves the interface's name there.
    std::unique_ptr<QProcess> inOwnTmp(const QString &program, const QStringList &arguments) const;
    std::unique_ptr<QProcess> connecting(const QStringList &arguments) const;
    CliResult connect(const QStringList &arguments) const;

    /// Reads until \a text has come.
    static bool awaitText(QProcess &program, QProcess::ProcessChannel channel, const QByteArray &text);
    static void signal(const QProcess &program, int number = SIGINT);

    PrivateBus m_bus;
    OwnTmp m_tmp;
};

#endif
