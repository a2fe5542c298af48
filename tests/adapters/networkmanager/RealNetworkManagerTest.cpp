// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The session with the real NetworkManager, in a network of its own.

#include "RealService.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Session = NetworkManagerSession;

TEST_F(RealService, OpensALinkByItsProfilesId)
{
    openStreamLink();
    QString name;
    unsigned long type = 0;
    EXPECT_EQ(session->getDeviceInfo(1, name, &type), 0);
    EXPECT_EQ(name, u"link0"_s);
    EXPECT_GT(type, 0UL);
    EXPECT_THAT(service->ip(u"addr show link0"_s).toStdString(), HasSubstr("10.99.0.2/24"));
}

TEST_F(RealService, ClosingTakesTheLinkDown)
{
    openStreamLink();
    session->closeLink(1);
    EXPECT_TRUE(goesDown(u"Stream Link"_s));
    EXPECT_THAT(service->ip(u"addr show link0"_s).toStdString(), Not(HasSubstr("10.99.0.2")));
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(RealService, ReopenedAtOnceTheLinkIsUp)
{
    openStreamLink();
    session->closeLink(1);
    const int id = session->openLink(u"Stream Link"_s);
    EXPECT_EQ(awaitEvent(), u"connected %1 Stream Link link0"_s.arg(id));
    EXPECT_FALSE(QTest::qWaitFor([&] { return !events.isEmpty(); }, 300)); // the first one's end is not the second's
    EXPECT_TRUE(isUp(u"Stream Link"_s));
}

TEST_F(RealService, DestructionTakesTheLinkDown)
{
    openStreamLink();
    session.reset();
    EXPECT_TRUE(goesDown(u"Stream Link"_s));
}

TEST_F(RealService, AProgramThatEndsTakesItsLinkDown)
{
    // Without waiting for the answer it would stay up: the service refuses who cannot be looked up any more.
    EXPECT_EQ(service->run(QStringLiteral(OPEN_ONCE), {u"Stream Link"_s}), u"link0"_s);
    EXPECT_TRUE(goesDown(u"Stream Link"_s));
}

TEST_F(RealService, ALinkOfSomebodyElseIsSharedAndLeftUp)
{
    ASSERT_THAT(service->nmcli({u"con"_s, u"up"_s, u"Stream Link"_s}).toStdString(), HasSubstr("success"));
    const QString before = service->nmcli({u"-g"_s, u"ACTIVE-PATH"_s, u"con"_s, u"show"_s, u"--active"_s});
    openStreamLink();
    session->closeLink(1);
    session.reset();
    EXPECT_EQ(service->nmcli({u"-g"_s, u"ACTIVE-PATH"_s, u"con"_s, u"show"_s, u"--active"_s}), before);
}

TEST_F(RealService, ADeviceThatIsTakenAwayBreaksTheLink)
{
    openStreamLink();
    EXPECT_EQ(service->ip(u"link del link0"_s), QString());
    EXPECT_EQ(awaitEvent(), u"broken 1 Stream Link link0"_s);
}

TEST_F(RealService, ALinkTakenDownBySomebodyElseIsBroken)
{
    openStreamLink();
    service->nmcli({u"con"_s, u"down"_s, u"Stream Link"_s});
    EXPECT_EQ(awaitEvent(), u"broken 1 Stream Link link0"_s);
}

TEST_F(RealService, AProfileThatIsNotThereFails)
{
    EXPECT_EQ(session->openLink(u"Nobody's"_s), 1);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ProfileNotFound));
}

TEST_F(RealService, AnOperatorWithoutAModemFails)
{
    EXPECT_EQ(session->openLink(u"Operator GPRS"_s), 1);
    EXPECT_EQ(awaitEvent(), failed(1, Session::NoDevice));
}

TEST_F(RealService, ANetworkWithoutAServerFailsWithTheDevicesReason)
{
    constexpr int IpConfigUnavailable = 5;
    EXPECT_EQ(session->openLink(u"No Server"_s), 1);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, IpConfigUnavailable));
}

TEST_F(RealService, ADeviceThatIsTakenAwayEndsTheOpening)
{
    service->nmcli({u"con"_s, u"modify"_s, u"No Server"_s, u"ipv4.dhcp-timeout"_s, u"60"_s});
    session->openLink(u"No Server"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isUp(u"No Server"_s); }, PatienceMs));
    EXPECT_EQ(service->ip(u"link del link0"_s), QString());
    EXPECT_THAT(awaitEvent().toStdString(),
                testing::StartsWith(u"failed 1 %1 "_s.arg(Session::ActivationFailed).toStdString()));
}

TEST_F(RealService, WhatNeverComesUpIsGivenUpAndTakenDown)
{
    session->setTimeLimit(500ms);
    session->openLink(u"Waits"_s);
    EXPECT_EQ(awaitEvent(), failed(1, Session::TimedOut));
    EXPECT_TRUE(goesDown(u"Waits"_s));
}

TEST_F(RealService, ClosingEndsAnOpening)
{
    session->openLink(u"Waits"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isUp(u"Waits"_s); }, PatienceMs));
    session->closeLink(1);
    EXPECT_EQ(awaitEvent(), failed(1, Session::Closed));
    EXPECT_TRUE(goesDown(u"Waits"_s));
}

TEST_F(RealService, AServiceThatIsKilledEndsTheWait)
{
    session->openLink(u"Waits"_s);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isUp(u"Waits"_s); }, PatienceMs));
    service->kill();
    EXPECT_EQ(awaitEvent(), failed(1, Session::ServiceVanished));
    session->openLink(u"Waits"_s);
    EXPECT_EQ(awaitEvent(), failed(2, Session::ServiceMissing));
}

TEST_F(RealService, AServiceThatIsKilledBreaksTheLink)
{
    openStreamLink();
    service->kill();
    EXPECT_EQ(awaitEvent(), u"broken 1 Stream Link link0"_s);
}

TEST_F(RealService, ProfileNamesAreThoseOfItsProfiles)
{
    EXPECT_THAT(session->profileNames(),
                testing::IsSupersetOf({u"No Server"_s, u"Operator GPRS"_s, u"Stream Link"_s, u"Waits"_s}));
}

TEST_F(RealService, LeavesTheMachinesOwnNetworkAlone)
{
    openStreamLink();
    EXPECT_FALSE(QFile::exists(u"/sys/class/net/link0"_s));
    EXPECT_FALSE(QFile::exists(u"/run/NetworkManager/NetworkManager.pid"_s));
}
