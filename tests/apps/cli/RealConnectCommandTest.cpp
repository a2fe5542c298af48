// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The program with the real NetworkManager, in a network of its own.

#include "ConnectTest.h"
#include "RealNetworkManager.h"

#include <QtCore/qtestsupport_core.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int PatienceMs = 15000;

class RealConnectCommand : public ConnectTest
{
protected:
    void SetUp() override
    {
        if (!OwnTmp::isPossible())
            GTEST_SKIP() << "not run: this machine lets the test give the program no /tmp of its own";
        const QString obstacle = RealNetworkManager::obstacle();
        if (!obstacle.isEmpty())
            GTEST_SKIP() << "not run: " << qPrintable(obstacle);
        ConnectTest::SetUp();
        m_service = std::make_unique<RealNetworkManager>(m_bus);
        ASSERT_TRUE(m_service->isReady());
    }
    void TearDown() override
    {
        if (HasFailure() && m_service)
            std::printf("%s\n", m_service->log().constData());
    }

    std::unique_ptr<QProcess> held() const
    {
        std::unique_ptr<QProcess> program = connecting({u"--profile"_s, u"Stream Link"_s});
        program->start();
        EXPECT_TRUE(awaitText(*program, QProcess::StandardOutput, "connected: Stream Link on link0\n"));
        return program;
    }
    /// Expects what the program says and how it ends when there is no link.
    static void expectFailure(const CliResult &result, const QByteArray &why)
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.output.isEmpty()) << result.output.constData();
        EXPECT_EQ(result.errors, "marvola: connect: opening\n"
                                 "marvola: connect: failed\n"
                                 "marvola: cannot open a link with the profile " +
                                     why + '\n');
    }

    std::unique_ptr<RealNetworkManager> m_service;
};

} // namespace

TEST_F(RealConnectCommand, OpensRecordsHoldsAndClosesTheLinkHoweverItIsEnded)
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const std::unique_ptr<QProcess> program = held();
        EXPECT_EQ(m_tmp.read(u"Marvola_GPRS_Link"_s), "MyInterface=link0");
        EXPECT_TRUE(m_service->isUp(u"Stream Link"_s));
        signal(*program, number);
        EXPECT_EQ(finish(*program).status, 0);
        EXPECT_TRUE(QTest::qWaitFor([&] { return !m_service->isUp(u"Stream Link"_s); }, PatienceMs)) << number;
    }
}

TEST_F(RealConnectCommand, TellsOfADeviceThatIsTakenAway)
{
    const std::unique_ptr<QProcess> program = held();
    ASSERT_EQ(m_service->ip(u"link del link0"_s), QString());
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "marvola: connect: opening\n"
                             "marvola: connect: broken\n"
                             "marvola: the link with the profile 'Stream Link' was broken; connect again\n");
}

TEST_F(RealConnectCommand, TellsOfAProfileThatIsNotThere)
{
    expectFailure(connect({u"--profile"_s, u"Nobody's"_s}),
                  "'Nobody's': NetworkManager has no profile of that name for you; see 'nmcli connection'");
}

TEST_F(RealConnectCommand, TellsOfAnOperatorWithoutAModem)
{
    expectFailure(connect({u"--profile"_s, u"Operator GPRS"_s}),
                  "'Operator GPRS': no device is there that it fits; plug it in or switch it on");
}

TEST_F(RealConnectCommand, TellsOfAServiceThatIsKilledDuringTheWait)
{
    const std::unique_ptr<QProcess> program = connecting({u"--profile"_s, u"Waits"_s});
    program->start();
    ASSERT_TRUE(QTest::qWaitFor([&] { return m_service->isUp(u"Waits"_s); }, PatienceMs));
    m_service->kill();
    expectFailure(finish(*program), "'Waits': NetworkManager ended meanwhile; start it again");
}

TEST_F(RealConnectCommand, TheExampleOpensTheProfileThatItIsGivenAndClosesIt)
{
    m_tmp.share(QStringLiteral(MARVOLA_LINK_EXAMPLE));
    const std::unique_ptr<QProcess> program = inOwnTmp(QStringLiteral(MARVOLA_LINK_EXAMPLE), {u"Stream Link"_s});
    program->start();
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "status 3\nThe link is up.\n");
    EXPECT_EQ(m_tmp.read(u"Marvola_GPRS_Link"_s), "MyInterface=link0");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !m_service->isUp(u"Stream Link"_s); }, PatienceMs));
}
