// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ConnectTest.h"

using namespace Qt::StringLiterals;

ConnectTest::ConnectTest()
{
    // The bus and the program lie where they are in the program's own /tmp, too.
    m_tmp.share(m_bus.address().section(u'=', 1).section(u',', 0, 0));
    m_tmp.share(QStringLiteral(MARVOLA_PROGRAM));
    m_tmp.share(m_directory.path());
}

void ConnectTest::SetUp()
{
    CliTest::SetUp();
    m_environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, m_bus.address());
}

std::unique_ptr<QProcess> ConnectTest::inOwnTmp(const QString &program, const QStringList &arguments) const
{
    std::unique_ptr<QProcess> made = process(arguments);
    made->setProgram(program);
    m_tmp.give(*made);
    return made;
}

std::unique_ptr<QProcess> ConnectTest::connecting(const QStringList &arguments) const
{
    return inOwnTmp(QStringLiteral(MARVOLA_PROGRAM), places() + QStringList{u"connect"_s} + arguments);
}

CliResult ConnectTest::connect(const QStringList &arguments) const
{
    const std::unique_ptr<QProcess> program = connecting(arguments);
    program->start();
    return finish(*program);
}

bool ConnectTest::awaitText(QProcess &program, QProcess::ProcessChannel channel, const QByteArray &text)
{
    constexpr int Patience = 60'000;
    constexpr qint64 Plenty = 65536;
    program.setReadChannel(channel);
    while (!program.peek(Plenty).contains(text)) {
        if (!program.waitForReadyRead(Patience))
            return false;
    }
    return true;
}

void ConnectTest::signal(const QProcess &program, int number)
{
    ::kill(static_cast<pid_t>(program.processId()), number);
}
