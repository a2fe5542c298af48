// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// One link from its opening to its end, in all the ways that the service can behave.

#include "Link.h"

#include "SessionFixture.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Session = NetworkManagerSession;
namespace bus = marvola::bus;

namespace {

constexpr uint SomeReason = 5;

struct LinkOpening : SessionFixture
{
    /// Is told in the answer to ActivateConnection's stead, before it, or not at all.
    void beforeActivationAnswers(const std::function<void(const QString &active)> &what)
    {
        service->hold(u"ActivateConnection"_s);
        open();
        ASSERT_TRUE(awaitCall(u"ActivateConnection"_s));
        what(active());
        settle();
        EXPECT_THAT(events, IsEmpty());
        service->answerHeld(u"ActivateConnection"_s);
    }
    QString interfaceOf(int id)
    {
        QString name = u"unchanged"_s;
        EXPECT_EQ(session->getDeviceInfo(id, name, nullptr), 0);
        return name;
    }
};

struct LinkBroken : LinkOpening
{
    int id = openFully();
};

} // namespace

TEST_F(LinkOpening, ConnectsAProfileByItsId)
{
    EXPECT_EQ(open(), 1);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
    EXPECT_THAT(service->calls(), testing::Contains(u"ActivateConnection "_s + profile));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkOpening, GivesTheIpInterfaceAndNotTheSerialPort)
{
    const int id = openFully();
    QString name;
    unsigned long type = 0;
    EXPECT_EQ(session->getDeviceInfo(id, name, &type), 0);
    EXPECT_EQ(name, u"wwan0"_s);
    EXPECT_EQ(type, 8UL);
}

TEST_F(LinkOpening, HasNoInterfaceBeforeConnected)
{
    const int id = openSlowly();
    unsigned long type = 99;
    QString name = u"before"_s;
    EXPECT_EQ(session->getDeviceInfo(id, name, &type), -1);
    EXPECT_EQ(name, u"before"_s);
    EXPECT_EQ(type, 99UL);
}

TEST_F(LinkOpening, KnowsTheInterfaceInTheSlotOfConnected)
{
    QString name;
    QObject::connect(session.get(), &Session::connected, [&](int id) { name = interfaceOf(id); });
    openFully();
    EXPECT_EQ(name, u"wwan0"_s);
}

TEST_F(LinkOpening, TellsNothingFromInsideTheCall)
{
    open();
    open(u"nobody's"_s);
    EXPECT_THAT(events, IsEmpty());
    session = std::make_unique<Session>(QDBusConnection(u"none"_s), QString(bus::Service));
    note(*session, events);
    open();
    EXPECT_THAT(events, IsEmpty());
    EXPECT_EQ(awaitEvent(), failed(1, Session::BusUnavailable));
}

TEST_F(LinkOpening, WaitsWhileActivating)
{
    openSlowly();
    EXPECT_THAT(events, IsEmpty());
    service->setActiveState(active(), bus::ActiveActivated);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
}

TEST_F(LinkOpening, AStateNotYetKnownIsWaitedFor)
{
    service->activateWith(modem, bus::ActiveUnknown);
    open();
    ASSERT_TRUE(awaitCall(u"GetAll Active"_s));
    service->setActiveState(active(), bus::ActiveActivating);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    service->setActiveState(active(), 77); // of a later version
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    service->setActiveState(active(), bus::ActiveActivated);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
}

TEST_F(LinkOpening, AChangeToldBeforeTheAnswerIsNotMissed)
{
    service->activateWith(modem, bus::ActiveActivated);
    beforeActivationAnswers([this](const QString &path) {
        service->emitSignal(path, bus::ActiveInterface, {bus::ActiveActivated, 0U});
    });
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
}

TEST_F(LinkOpening, AFailureToldBeforeTheAnswerIsNotMissed)
{
    service->answer(u"GetAll Active"_s, [](const QDBusMessage &call) {
        return call.createErrorReply(QDBusError::UnknownMethod, u"gone"_s);
    });
    beforeActivationAnswers([this](const QString &path) {
        service->tellDeviceState(modem, bus::DeviceFailed, bus::NoSecrets);
        service->emitSignal(path, bus::ActiveInterface, {bus::ActiveDeactivated, 3U});
    });
    EXPECT_EQ(awaitEvent(), failed(1, Session::SecretsRejected, bus::NoSecrets));
    settle();
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), 0);
}

TEST_F(LinkOpening, ConnectedIsToldOnceHoweverOftenTheStateIs)
{
    openSlowly();
    for (int i = 0; i < 3; ++i)
        service->setActiveState(active(), bus::ActiveActivated);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
    service->setActiveState(active(), bus::ActiveActivated);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkOpening, TheReasonIsTheDevices)
{
    openSlowly();
    service->tellDeviceState(modem, bus::DeviceFailed, SomeReason);
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, SomeReason));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkOpening, WrongSecretsAreTold)
{
    openSlowly();
    service->tellDeviceState(modem, bus::DeviceFailed, bus::NoSecrets);
    service->tellDeviceState(modem, bus::DeviceDisconnected, bus::NoReason);
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::SecretsRejected, bus::NoSecrets));
}

TEST_F(LinkOpening, ASecretThatIsWaitedForIsToldWhenTheTimeIsUp)
{
    session->setTimeLimit(2s);
    openSlowly();
    service->tellDeviceState(modem, bus::DeviceNeedsSecrets, bus::NoReason);
    EXPECT_EQ(awaitEvent(), failed(1, Session::SecretsRejected));
    EXPECT_TRUE(awaitCall(u"DeactivateConnection "_s + active()));
}

TEST_F(LinkOpening, ASecretThatHasComeIsNotWhatTookTooLong)
{
    constexpr uint Preparing = 40;
    session->setTimeLimit(2s);
    openSlowly();
    service->tellDeviceState(modem, bus::DeviceNeedsSecrets, bus::NoReason);
    service->tellDeviceState(modem, Preparing, bus::NoReason);
    EXPECT_EQ(awaitEvent(), failed(1, Session::TimedOut));
}

TEST_F(LinkOpening, ASecretThatAnotherDeviceWaitsForIsNotItsOwn)
{
    session->setTimeLimit(2s);
    openSlowly();
    service->tellDeviceState(u"/org/freedesktop/NetworkManager/Devices/99"_s, bus::DeviceNeedsSecrets, bus::NoReason);
    EXPECT_EQ(awaitEvent(), failed(1, Session::TimedOut));
}

TEST_F(LinkOpening, ADeviceTakenAwayGivesItsReason)
{
    openSlowly();
    service->tellDeviceState(modem, 10, 36);
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 36));
}

TEST_F(LinkOpening, MakingRoomForTheNewActivationIsNoFailure)
{
    openSlowly();
    service->tellDeviceState(modem, bus::DeviceDisconnected, bus::NewActivation);
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 0));
}

TEST_F(LinkOpening, TheFailureOfAnotherDeviceIsNotItsOwn)
{
    openSlowly();
    service->tellDeviceState(u"/org/freedesktop/NetworkManager/Devices/99"_s, bus::DeviceFailed, bus::NoSecrets);
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 0));
}

TEST_F(LinkOpening, AReasonThatTheSignalCannotHoldIsTheLargestItCan)
{
    openSlowly();
    service->tellDeviceState(modem, bus::DeviceFailed, 4000000000U);
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 65535));
}

TEST_F(LinkOpening, DownWhileTheInterfaceIsAskedForIsAFailure)
{
    service->hold(u"GetAll Device"_s);
    open();
    ASSERT_TRUE(awaitCall(u"GetAll Device"_s));
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 0));
    service->answerHeld(u"GetAll Device"_s);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkOpening, OnTheWayDownIsNotYetDown)
{
    openSlowly();
    service->setActiveState(active(), 3);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 0));
}

TEST_F(LinkOpening, FailsWithoutSuchAProfile)
{
    for (const QString &name : {u"operator"_s, u"Operator "_s, u""_s, QString()}) {
        const int id = open(name);
        EXPECT_EQ(awaitEvent(), failed(id, Session::ProfileNotFound)) << qPrintable(name);
    }
    EXPECT_EQ(service->count(u"ActivateConnection"_s), 0);
}

TEST_F(LinkOpening, AProfileThatIsNotForThisUserIsNotThere)
{
    service->refuse(u"GetSettings"_s, u"org.freedesktop.NetworkManager.Settings.PermissionDenied"_s);
    open();
    EXPECT_EQ(awaitEvent(), failed(1, Session::ProfileNotFound));
}

TEST_F(LinkOpening, OfTwoProfilesWithOneIdTheSmallestUuidIsTaken)
{
    service->addProfile(u"Twice"_s, u"b"_s);
    const QString smallest = service->addProfile(u"Twice"_s, u"a"_s);
    service->addProfile(u"Twice"_s, u"c"_s);
    open(u"Twice"_s);
    EXPECT_EQ(awaitEvent(), u"connected 1 Twice wwan0"_s);
    EXPECT_THAT(service->calls(), testing::Contains(u"ActivateConnection "_s + smallest));
}

TEST_F(LinkOpening, ARefusalSaysWhy)
{
    const std::pair<const char *, Session::OpenError> rows[] = {
        {"org.freedesktop.NetworkManager.UnknownDevice", Session::NoDevice},
        {"org.freedesktop.NetworkManager.UnknownConnection", Session::ProfileNotFound},
        {"org.freedesktop.NetworkManager.PermissionDenied", Session::NotPermitted},
        {"org.freedesktop.NetworkManager.Failed", Session::Refused},
    };
    for (const auto &[name, error] : rows) {
        service->refuse(u"ActivateConnection"_s, QString::fromLatin1(name));
        const int id = open();
        EXPECT_EQ(awaitEvent(), failed(id, error)) << name;
    }
    settle();
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), 0);
}

TEST_F(LinkOpening, FailsWithoutTheService)
{
    service->leave();
    open();
    EXPECT_EQ(awaitEvent(), failed(1, Session::ServiceMissing));
}

TEST_F(LinkOpening, SucceedsOnceTheServiceIsBack)
{
    service->leave();
    open();
    EXPECT_EQ(awaitEvent(), failed(1, Session::ServiceMissing));
    service = std::make_unique<FakeNetworkManager>(bus);
    service->addProfile(u"Operator"_s);
    service->activateWith(service->addDevice(u"wwan0"_s), bus::ActiveActivated);
    open();
    EXPECT_EQ(awaitEvent(), u"connected 2 Operator wwan0"_s);
}

TEST_F(LinkOpening, AServiceThatAppearsHasNotLeft)
{
    service->leave();
    service = std::make_unique<FakeNetworkManager>(bus);
    service->hold(u"Get Connections"_s);
    open(); // before it is heard that the service is there
    settle();
    service->answerHeld(u"Get Connections"_s);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ProfileNotFound));
}

TEST_F(LinkOpening, FailsWhenTheBusDies)
{
    openSlowly();
    bus.kill();
    EXPECT_EQ(awaitEvent(), failed(1, Session::BusUnavailable));
    open();
    EXPECT_EQ(awaitEvent(), failed(2, Session::BusUnavailable));
}

TEST_F(LinkOpening, NewsFromAnybodyButTheServiceAreNotBelieved)
{
    openSlowly();
    QDBusConnection stranger = bus.connect();
    QDBusMessage lie = QDBusMessage::createSignal(active(), bus::ActiveInterface, bus::StateChanged);
    for (const uint state : {bus::ActiveActivated, bus::ActiveDeactivated}) {
        lie.setArguments({state, 0U});
        stranger.send(lie);
    }
    QDBusMessage slander = QDBusMessage::createSignal(modem, bus::DeviceInterface, bus::StateChanged);
    slander.setArguments({bus::DeviceFailed, 70U, bus::NoSecrets});
    stranger.send(slander);
    // The bus has passed them on when it has answered who sent them.
    std::ignore = stranger.call(
        QDBusMessage::createMethodCall(bus::Service, bus::RootPath, bus::RootInterface, FakeNetworkManager::Ping));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ActivationFailed, 0));
}

TEST_F(LinkOpening, SignalsOfAnotherShapeAreIgnored)
{
    openSlowly();
    service->emitSignal(active(), bus::ActiveInterface, {});
    service->emitSignal(active(), bus::ActiveInterface, {u"4"_s, u"3"_s});
    service->emitSignal(active(), bus::ActiveInterface, {4U});
    service->emitSignal(modem, bus::DeviceInterface, {bus::DeviceFailed});
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkOpening, SignalsOfOtherObjectsAreIgnored)
{
    openSlowly();
    service->emitSignal(active(99), bus::ActiveInterface, {bus::ActiveActivated, 0U});
    service->emitSignal(active(99), bus::ActiveInterface, {bus::ActiveDeactivated, 0U});
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkOpening, AnActivationAnsweredAfterTheEndIsStillToBeTakenDown)
{
    service->hold(u"ActivateConnection"_s);
    const marvola::NetworkService calls(client, QString(bus::Service));
    const marvola::Deactivations none(calls, 0ms);
    marvola::Link link(calls, none, u"Operator"_s, 1s);
    bool hasFailed = false;
    QObject::connect(&link, &marvola::Link::failed, [&] { hasFailed = true; });
    link.start();
    EXPECT_TRUE(QTest::qWaitFor([&] { return hasFailed; }));
    EXPECT_FALSE(link.ownsActivation());
    service->answerHeld(u"ActivateConnection"_s);
    EXPECT_TRUE(QTest::qWaitFor([&] { return link.ownsActivation(); }));
    EXPECT_EQ(link.activeConnection(), active());
    EXPECT_EQ(link.takePendingActivation(), nullptr);
}

TEST_F(LinkOpening, ATimeLimitInThePastEndsItAtOnce)
{
    for (const std::chrono::milliseconds limit : {0ms, -1ms, std::chrono::milliseconds::min()}) {
        session->setTimeLimit(limit);
        EXPECT_EQ(session->timeLimit(), limit);
        service->hold(u"Get Connections"_s);
        const int id = open();
        EXPECT_THAT(events, IsEmpty());
        EXPECT_EQ(awaitEvent(), failed(id, Session::TimedOut));
    }
}

TEST_F(LinkOpening, TheLongestTimeLimitIsLong)
{
    session->setTimeLimit(std::chrono::milliseconds::max());
    openSlowly();
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(LinkOpening, TheTimeLimitIsOverOnceConnected)
{
    session->setTimeLimit(1s);
    openFully();
    session->setTimeLimit(1200ms);
    openSlowly(); // a second link on the first's activation, which is up: no news
    service->hold(u"Get Connections"_s);
    const int waiting = open(u"Other"_s);
    EXPECT_EQ(awaitEvent(), u"connected 2 Operator wwan0"_s);
    EXPECT_EQ(awaitEvent(), failed(waiting, Session::TimedOut)); // later than the first link's limit
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkBroken, WhenItGoesDown)
{
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator wwan0"_s);
    QString name;
    EXPECT_EQ(session->getDeviceInfo(id, name, nullptr), -1);
    service->setActiveState(active(), bus::ActiveDeactivated);
    session->closeLink(id);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), 0);
}

TEST_F(LinkBroken, NotWhileItIsMerelySuspended)
{
    service->tellDeviceState(modem, 90, 0);
    service->setActiveState(active(), bus::ActiveActivating);
    service->setActiveState(active(), bus::ActiveActivated);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(LinkBroken, WhenTheServiceLeaves)
{
    service->leave();
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator wwan0"_s);
}

TEST_F(LinkBroken, WhenTheBusDies)
{
    bus.kill();
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator wwan0"_s);
}

TEST_F(LinkBroken, NotWhenAStrangerSaysSo)
{
    QDBusConnection stranger = bus.connect();
    QDBusMessage lie = QDBusMessage::createSignal(active(), bus::ActiveInterface, bus::StateChanged);
    lie.setArguments({bus::ActiveDeactivated, 0U});
    stranger.send(lie);
    std::ignore = stranger.call(
        QDBusMessage::createMethodCall(bus::Service, bus::RootPath, bus::RootInterface, FakeNetworkManager::Ping));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}
