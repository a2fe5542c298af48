// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "SessionFixture.h"

#include <QtCore/QElapsedTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Session = NetworkManagerSession;
namespace bus = marvola::bus;

namespace {

struct SessionAsAWhole : SessionFixture
{
    /// Ends the session; gives the calls that the service has had by then.
    QStringList callsOnceDestroyed()
    {
        session.reset();
        return service->calls();
    }
};

} // namespace

TEST_F(SessionAsAWhole, IsALinkServiceOfTheLibrary)
{
    DataSessionManager::setFactory([this] { return new Session(client, QString(bus::Service)); });
    const std::unique_ptr<DataSessionManager> made(DataSessionManager::create());
    DataSessionManager::setFactory({});
    made->init(false);
    bool isConnected = false;
    QObject::connect(made.get(), &DataSessionManager::connected, [&] { isConnected = true; });
    EXPECT_GT(made->openLink(u"Operator"_s), 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isConnected; }));
}

TEST_F(SessionAsAWhole, IsOnTheSystemBusUnlessToldOtherwise)
{
    const QByteArray before = qgetenv("DBUS_SYSTEM_BUS_ADDRESS");
    const bool wasSet = qEnvironmentVariableIsSet("DBUS_SYSTEM_BUS_ADDRESS");
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", bus.address().toUtf8());
    EXPECT_THAT(Session().profileNames(), ElementsAre(u"Operator"_s));
    wasSet ? qputenv("DBUS_SYSTEM_BUS_ADDRESS", before) : qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

TEST_F(SessionAsAWhole, ServesAnyServiceName)
{
    session = std::make_unique<Session>(client, u"another.Name"_s);
    note(*session, events);
    open();
    EXPECT_EQ(awaitEvent(), failed(1, Session::ServiceMissing));
}

TEST_F(SessionAsAWhole, GivesALinkAMinute)
{
    EXPECT_EQ(session->timeLimit(), 60s);
}

TEST_F(SessionAsAWhole, ProfileNamesAreSortedAndEachOnce)
{
    service->addProfile(u"Zulu"_s);
    service->addProfile(u"Alpha"_s);
    service->addProfile(u"Operator"_s);
    EXPECT_THAT(session->profileNames(), ElementsAre(u"Alpha"_s, u"Operator"_s, u"Zulu"_s));
}

TEST_F(SessionAsAWhole, ProfilesThatAreNotForThisUserHaveNoName)
{
    service->refuse(u"GetSettings"_s, u"any.Error"_s);
    EXPECT_THAT(session->profileNames(), IsEmpty());
}

TEST_F(SessionAsAWhole, ThereAreNoProfileNamesWithoutTheService)
{
    service->leave();
    QElapsedTimer timer;
    timer.start();
    EXPECT_THAT(session->profileNames(), IsEmpty());
    EXPECT_LT(timer.elapsed(), 1500); // not by running out of patience
}

TEST_F(SessionAsAWhole, ProfileNamesAreWaitedForWithPatienceButNotForEver)
{
    service->addProfile(u"Zulu"_s);
    service->hold(u"Get Connections"_s);
    QElapsedTimer timer;
    timer.start();
    EXPECT_THAT(session->profileNames(50ms), IsEmpty());
    EXPECT_GE(timer.elapsed(), 45);
    EXPECT_THAT(session->profileNames(-1ms), IsEmpty());
    EXPECT_LT(timer.elapsed(), 3000);
    service->answerHeldAfter(u"Get Connections"_s, 50);
    EXPECT_THAT(session->profileNames(), ElementsAre(u"Operator"_s, u"Zulu"_s));
}

TEST_F(SessionAsAWhole, ProfileNamesReadInTimeAreGiven)
{
    service->addProfile(u"Zulu"_s);
    service->answer(u"GetSettings"_s, [first = profile](const QDBusMessage &call) {
        if (call.path() != first)
            return QDBusMessage(); // no answer
        const QMap<QString, QVariantMap> settings{{u"connection"_s, {{u"id"_s, u"Operator"_s}}}};
        return call.createReply(QVariant::fromValue(settings));
    });
    EXPECT_THAT(session->profileNames(1s), ElementsAre(u"Operator"_s));
}

TEST_F(SessionAsAWhole, ProfileNamesRunNoEventLoop)
{
    open();
    EXPECT_THAT(session->profileNames(), ElementsAre(u"Operator"_s));
    EXPECT_THAT(events, IsEmpty());
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
}

TEST_F(SessionAsAWhole, DestructionTakesTheLinksDownBeforeItReturns)
{
    openFully();
    EXPECT_EQ(callsOnceDestroyed().last(), u"DeactivateConnection "_s + active());
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(SessionAsAWhole, DestructionLeavesSomebodyElsesLinkUp)
{
    service->addActive(profile, bus::ActiveActivated, modem);
    openFully();
    EXPECT_THAT(callsOnceDestroyed().filter(u"Deactivate"_s), IsEmpty());
}

TEST_F(SessionAsAWhole, DestructionAfterClosingWaitsUntilTheServiceHasTakenNotice)
{
    service->hold(u"DeactivateConnection"_s);
    session->closeLink(openFully());
    service->answerHeldAfter(u"DeactivateConnection"_s, 60);
    QElapsedTimer timer;
    timer.start();
    session.reset();
    EXPECT_GE(timer.elapsed(), 50);
}

TEST_F(SessionAsAWhole, DestructionTakesDownWhatIsStillComingUp)
{
    service->hold(u"ActivateConnection"_s);
    open();
    ASSERT_TRUE(awaitCall(u"ActivateConnection"_s));
    service->answerHeldAfter(u"ActivateConnection"_s, 50);
    EXPECT_EQ(callsOnceDestroyed().last(), u"DeactivateConnection "_s + active());
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(SessionAsAWhole, DestructionWhileLookingUpSaysNothingMore)
{
    service->hold(u"GetSettings"_s);
    open();
    open(u"Other"_s);
    open();
    ASSERT_TRUE(awaitCall(u"GetSettings"_s, 2));
    session.reset();
    service->answerHeld(u"GetSettings"_s);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(service->count(u"ActivateConnection"_s), 0);
}

TEST_F(SessionAsAWhole, DestructionDoesNotHangWithTheService)
{
    service->hold(u"DeactivateConnection"_s);
    openFully();
    QElapsedTimer timer;
    timer.start();
    session.reset();
    EXPECT_GE(timer.elapsed(), 1900);
    EXPECT_LT(timer.elapsed(), 5000);
}

TEST_F(SessionAsAWhole, DestructionWithoutABusIsQuick)
{
    openFully();
    bus.kill();
    QElapsedTimer timer;
    timer.start();
    session.reset();
    EXPECT_LT(timer.elapsed(), 1500);
}
