// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "net/DataConnection.h"

#include "support/FakeSessionManager.h"
#include "support/NextTurn.h"

#include <marvola/NetworkProfile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gmock/gmock.h>

#include <vector>

using namespace Qt::StringLiterals;
using marvola::DataConnection;
using marvola::LinkEvent;
using marvola::LinkStatus;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const QString Operator = u"Operator"_s;

struct Connection : testing::Test
{
    Connection()
    {
        FakeSessionManager *service = log.last;
        QObject::connect(service, &DataSessionManager::connected, service,
                         [this](int id) { connection->handle(LinkEvent::Connected, id); });
        QObject::connect(service, &DataSessionManager::openFailed, service,
                         [this](int id) { connection->handle(LinkEvent::OpenFailed, id); });
        QObject::connect(service, &DataSessionManager::broken, service,
                         [this](int id) { connection->handle(LinkEvent::Broken, id); });
        log.calls.clear();
    }
    ~Connection() override
    {
        setNetworkProfileChooser({});
        connection.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// Has \a event happen in the next wait's first turn.
    void next(std::function<void()> event) { inNextTurn(context, std::move(event)); }
    bool setUp() const { return connection->setUp(Operator); }
    bool openLink(int id)
    {
        log.nextId = id;
        next([this, id] { log.last->emitConnected(id); });
        return setUp();
    }
    /// Lets go of the connection, as the end of its owner does.
    void destroy()
    {
        connection->close();
        connection.reset();
    }
    QByteArray statusFileContent() const
    {
        QFile file(statusFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    QObject context;
    QTemporaryDir dir;
    QString statusFile = dir.filePath(u"link"_s);
    FakeSessionManager::Log log;
    QList<int> statuses;
    QStringList chosenProfiles;
    std::function<void(LinkStatus)> onStatus;
    std::vector<std::chrono::microseconds::rep> sleeps; ///< that a wait would have had
    std::shared_ptr<DataConnection> connection = std::make_shared<DataConnection>(
        std::make_unique<FakeSessionManager>(log),
        marvola::LinkOwner{[this](LinkStatus status) {
                               statuses.append(static_cast<int>(status));
                               if (onStatus)
                                   onStatus(status);
                           },
                           [this](const QString &name) { chosenProfiles.append(name); }},
        statusFile, [this](std::chrono::microseconds time) { sleeps.push_back(time.count()); });
};

using ConnectionOpening = Connection;
using ConnectionProfile = Connection;
using ConnectionEvents = Connection;
using ConnectionReentry = Connection;
using ConnectionClosing = Connection;

} // namespace

TEST(ConnectionStart, InitialisesTheLinkServiceWithFalse)
{
    FakeSessionManager::Log log;
    const auto connection =
        std::make_shared<DataConnection>(std::make_unique<FakeSessionManager>(log), marvola::LinkOwner{});
    EXPECT_EQ(log.calls, QStringList({u"made"_s, u"init 0"_s}));
    EXPECT_EQ(connection->linkId(), -1);
}

TEST_F(ConnectionOpening, OpensWithTheProfileAndRecordsTheInterface)
{
    EXPECT_TRUE(openLink(5));
    EXPECT_EQ(connection->linkId(), 5);
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_EQ(log.calls, QStringList({u"open Operator"_s, u"device 5"_s}));
    EXPECT_EQ(statusFileContent(), "MyInterface=ppp0");
    EXPECT_THAT(chosenProfiles, IsEmpty());
}

TEST_F(ConnectionOpening, UnknownInterfaceIsRecordedAsNone)
{
    log.deviceResult = -1;
    EXPECT_TRUE(openLink(5));
    EXPECT_EQ(statusFileContent(), "No Interface");
}

TEST_F(ConnectionOpening, InterfaceOfSeveralLinesIsRecordedAsNone)
{
    log.interfaceName = u"ppp0\nMyInterface=eth0"_s;
    EXPECT_TRUE(openLink(5));
    EXPECT_EQ(statusFileContent(), "No Interface");
}

TEST_F(ConnectionOpening, SecondCallIsTrueAtOnceAndWritesNoFile)
{
    ASSERT_TRUE(openLink(5));
    ASSERT_TRUE(QFile::remove(statusFile));
    statuses.clear();
    log.calls.clear();
    EXPECT_TRUE(setUp());
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_THAT(log.calls, IsEmpty());
    EXPECT_FALSE(QFileInfo::exists(statusFile));
}

TEST_F(ConnectionOpening, StatusFileThatCannotBeOpenedCostsNothingButTheRecord)
{
    ASSERT_TRUE(QDir().mkdir(statusFile));
    EXPECT_TRUE(openLink(5));
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_EQ(log.calls, QStringList(u"open Operator"_s)) << "the interface is asked for in vain";
    EXPECT_TRUE(QFileInfo(statusFile).isDir());
}

TEST_F(ConnectionOpening, FailureForgetsTheLink)
{
    log.nextId = 5;
    next([this] { log.last->emitOpenFailed(5); });
    EXPECT_FALSE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    EXPECT_EQ(connection->linkId(), -1);
    EXPECT_FALSE(QFileInfo::exists(statusFile));
    EXPECT_EQ(log.calls, QStringList(u"open Operator"_s)) << "a link that failed is not closed";
}

TEST_F(ConnectionOpening, IdZeroIsDeliberatelyAFailureNowAndALinkAtTheNextCall)
{
    EXPECT_FALSE(openLink(0));
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    EXPECT_FALSE(QFileInfo::exists(statusFile));
    EXPECT_TRUE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3, 2)) << "the second call waits for nothing";
    destroy();
    EXPECT_EQ(log.calls, QStringList({u"open Operator"_s, u"deleted"_s})) << "and nothing is closed";
}

TEST_F(ConnectionOpening, NegativeIdOfAConfiguredProfileDeliberatelyWaitsForAnEventOfThatId)
{
    log.nextId = -7;
    next([this] {
        log.last->emitOpenFailed(-1);
        EXPECT_EQ(connection->linkId(), -7);
        log.last->emitOpenFailed(-7);
    });
    EXPECT_FALSE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    EXPECT_EQ(connection->linkId(), -1);
}

TEST_F(ConnectionOpening, ConnectedWithANegativeIdEndsTheWaitWithoutALink)
{
    EXPECT_FALSE(openLink(-7));
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    EXPECT_FALSE(QFileInfo::exists(statusFile));
}

TEST_F(ConnectionOpening, SleepsAQuarterSecondAfterEachLookAtTheEvents)
{
    log.nextId = 5;
    next([this] {
        EXPECT_THAT(sleeps, IsEmpty());
        next([this] {
            EXPECT_THAT(sleeps, ElementsAre(250000));
            log.last->emitConnected(5);
        });
    });
    EXPECT_TRUE(setUp());
    EXPECT_THAT(sleeps, ElementsAre(250000, 250000));
}

TEST_F(ConnectionOpening, OutcomeThatComesWhileTheStartIsToldEndsTheWait)
{
    log.nextId = 5;
    onStatus = [this](LinkStatus) { log.last->emitConnected(5); };
    EXPECT_TRUE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(ConnectionProfile, ChosenOneIsToldAndOpened)
{
    setNetworkProfileChooser([](QString &name) {
        EXPECT_TRUE(name.isEmpty());
        name = u"Chosen"_s;
        return 0;
    });
    log.inOpen = [this](FakeSessionManager &) { EXPECT_EQ(chosenProfiles, QStringList(u"Chosen"_s)); };
    log.nextId = 5;
    next([this] { log.last->emitConnected(5); });
    EXPECT_TRUE(connection->setUp(QString()));
    EXPECT_EQ(chosenProfiles, QStringList(u"Chosen"_s));
    EXPECT_EQ(log.calls.value(0), u"open Chosen"_s);
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(ConnectionProfile, CancelledSelectionIsFalseAndSilent)
{
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_THAT(log.calls, IsEmpty());
    EXPECT_THAT(chosenProfiles, IsEmpty());
    EXPECT_EQ(connection->linkId(), -1);
}

TEST_F(ConnectionProfile, CancelledSelectionForgetsAFailedLinkId)
{
    setNetworkProfileChooser([](QString &) { return 0; });
    log.nextId = -7;
    ASSERT_FALSE(connection->setUp(QString()));
    ASSERT_EQ(connection->linkId(), -7);
    setNetworkProfileChooser([](QString &) { return 1; });
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_EQ(connection->linkId(), -1);
}

TEST_F(ConnectionProfile, NameThatACancelledChooserLeftIsToldToo)
{
    setNetworkProfileChooser([](QString &name) {
        name = u"Half chosen"_s;
        return 1;
    });
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_EQ(chosenProfiles, QStringList(u"Half chosen"_s));
    EXPECT_THAT(log.calls, IsEmpty());
}

TEST_F(ConnectionProfile, NegativeIdOfAChosenProfileIsFalseAtOnceUnlikeAConfiguredOnes)
{
    setNetworkProfileChooser([](QString &name) {
        name = u"Chosen"_s;
        return 0;
    });
    log.nextId = -7;
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_EQ(connection->linkId(), -7);
    EXPECT_EQ(chosenProfiles, QStringList(u"Chosen"_s));
}

TEST_F(ConnectionProfile, EmptyNameThatWasChosenIsOpenedAsItIs)
{
    setNetworkProfileChooser([](QString &) { return 0; });
    log.nextId = 0;
    next([this] { log.last->emitConnected(0); });
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_EQ(log.calls, QStringList(u"open "_s));
    EXPECT_THAT(chosenProfiles, IsEmpty());
}

TEST_F(ConnectionProfile, LinkOpenedWhileTheUserWasChoosingIsKept)
{
    log.nextId = 5;
    setNetworkProfileChooser([this](QString &) {
        next([this] { log.last->emitConnected(5); });
        EXPECT_TRUE(setUp());
        return 1;
    });
    EXPECT_TRUE(connection->setUp(QString()));
    EXPECT_EQ(connection->linkId(), 5);
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(ConnectionEvents, OfOtherLinksChangeNothing)
{
    log.nextId = 5;
    next([this] {
        log.last->emitConnected(6);
        log.last->emitBroken(4);
        log.last->emitOpenFailed(-1);
        EXPECT_EQ(connection->linkId(), 5);
        // A wait that one of them had ended would be over without a failure by now.
        next([this] { log.last->emitOpenFailed(5); });
    });
    EXPECT_FALSE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3, 2));
}

TEST_F(ConnectionEvents, BrokenIsToldBeforeTheLinkIsForgotten)
{
    ASSERT_TRUE(openLink(5));
    int seen = 0;
    onStatus = [&](LinkStatus) {
        seen = connection->linkId();
        EXPECT_TRUE(setUp()) << "inside the event, the link still counts as open";
    };
    log.last->emitBroken(5);
    EXPECT_EQ(seen, 5);
    EXPECT_THAT(statuses, ElementsAre(3, 4));
    EXPECT_EQ(connection->linkId(), -1);
}

TEST_F(ConnectionEvents, BrokenLinkIsDeliberatelyNotClosed)
{
    ASSERT_TRUE(openLink(5));
    log.calls.clear();
    log.last->emitBroken(5);
    destroy();
    EXPECT_EQ(log.calls, QStringList(u"deleted"_s));
    EXPECT_EQ(statusFileContent(), "MyInterface=ppp0") << "nor is its record removed";
}

TEST_F(ConnectionEvents, BrokenLinkIsFollowedByANewOne)
{
    ASSERT_TRUE(openLink(5));
    log.last->emitBroken(5);
    log.interfaceName = u"p1"_s;
    EXPECT_TRUE(openLink(6));
    EXPECT_EQ(connection->linkId(), 6);
    EXPECT_THAT(statuses, ElementsAre(3, 4, 3));
    EXPECT_EQ(statusFileContent(), "MyInterface=p1");
}

TEST_F(ConnectionEvents, BrokenTwiceIsToldOnce)
{
    ASSERT_TRUE(openLink(5));
    log.last->emitBroken(5);
    log.last->emitBroken(5);
    EXPECT_THAT(statuses, ElementsAre(3, 4));
}

TEST_F(ConnectionEvents, LinkThatAHandlerOfBrokenOpensIsKept)
{
    onStatus = [this](LinkStatus status) {
        if (status == LinkStatus::Broken) {
            EXPECT_TRUE(openLink(5));
        }
    };
    // The id of no link at all; whatever has it is for this connection as long as it has no link.
    log.last->emitBroken(-1);
    EXPECT_EQ(connection->linkId(), 5);
    EXPECT_THAT(statuses, ElementsAre(4, 3));
}

TEST_F(ConnectionEvents, BrokenDuringTheWaitDeliberatelyDoesNotEndIt)
{
    log.nextId = 5;
    next([this] {
        log.last->emitBroken(5);
        EXPECT_TRUE(openLink(6)) << "but the next call opens another link";
        EXPECT_THAT(statuses, ElementsAre(3, 4, 3));
    });
    EXPECT_TRUE(setUp()) << "whose outcome is that of both";
    EXPECT_EQ(connection->linkId(), 6);
    EXPECT_THAT(statuses, ElementsAre(3, 4, 3));
}

TEST_F(ConnectionEvents, BrokenDuringTheWaitDeliberatelyLeavesItToAnEventWithoutALink)
{
    bool waitedOn = false;
    log.nextId = 5;
    next([&, this] {
        log.last->emitBroken(5);
        next([&, this] {
            waitedOn = true;
            log.last->emitConnected(-1);
        });
    });
    EXPECT_FALSE(setUp());
    EXPECT_TRUE(waitedOn);
    EXPECT_THAT(statuses, ElementsAre(3, 4, 2));
}

TEST_F(ConnectionEvents, BeforeTheIdIsGivenAreKeptUntilItIs)
{
    log.nextId = 5;
    log.inOpen = [](FakeSessionManager &service) { service.emitConnected(5); };
    EXPECT_TRUE(setUp());
    EXPECT_EQ(connection->linkId(), 5);
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(ConnectionEvents, BeforeTheIdIsGivenKeepTheirOrder)
{
    log.nextId = 5;
    log.inOpen = [](FakeSessionManager &service) {
        service.emitConnected(5);
        service.emitBroken(5);
    };
    EXPECT_FALSE(setUp());
    EXPECT_EQ(connection->linkId(), -1);
    EXPECT_THAT(statuses, ElementsAre(3, 4, 2));
}

TEST_F(ConnectionEvents, BeforeTheIdIsGivenCountForThatIdOnly)
{
    log.nextId = 5;
    log.inOpen = [this](FakeSessionManager &service) {
        service.emitOpenFailed(-1);
        service.emitOpenFailed(4);
        next([this] {
            EXPECT_EQ(connection->linkId(), 5);
            log.last->emitConnected(5);
        });
    };
    EXPECT_TRUE(setUp());
}

TEST_F(ConnectionEvents, OfAnEarlierOpeningAreNotKeptForTheNext)
{
    setNetworkProfileChooser([](QString &) { return 0; });
    log.nextId = -7;
    log.inOpen = [](FakeSessionManager &service) { service.emitOpenFailed(5); };
    ASSERT_FALSE(connection->setUp(QString()));
    log.inOpen = {};
    EXPECT_TRUE(openLink(5));
}

TEST_F(ConnectionReentry, WhileALinkWithAnIdIsBeingOpenedIsTrueAtOnce)
{
    log.nextId = 5;
    next([this] {
        EXPECT_TRUE(setUp());
        EXPECT_THAT(statuses, ElementsAre(3));
        log.last->emitOpenFailed(5);
    });
    EXPECT_FALSE(setUp());
    EXPECT_EQ(log.calls, QStringList(u"open Operator"_s));
}

TEST_F(ConnectionReentry, WhileWaitingForANegativeIdOpensAnew)
{
    log.nextId = -7;
    next([this] { EXPECT_TRUE(openLink(5)); });
    EXPECT_TRUE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3, 3));
    EXPECT_EQ(connection->linkId(), 5);
}

TEST_F(ConnectionReentry, InsideOpenLinkIsFalseWithoutATry)
{
    log.nextId = 5;
    log.inOpen = [this](FakeSessionManager &service) {
        EXPECT_FALSE(setUp());
        service.emitConnected(5);
    };
    EXPECT_TRUE(setUp());
    EXPECT_EQ(log.calls, QStringList({u"open Operator"_s, u"device 5"_s}));
}

TEST_F(ConnectionReentry, IsBoundedWhenEachStartIsAnsweredByACall)
{
    log.nextId = -7;
    onStatus = [this](LinkStatus) {
        EXPECT_FALSE(setUp());
        // The innermost call comes here first, and ends them all.
        connection->close();
    };
    EXPECT_FALSE(setUp());
    EXPECT_EQ(log.calls.count(u"open Operator"_s), DataConnection::MaxCallDepth);
    EXPECT_EQ(statuses.size(), DataConnection::MaxCallDepth) << "a refused call tells nothing";
}

TEST_F(ConnectionReentry, IsBoundedWhenEachFailureIsAnsweredByACall)
{
    log.nextId = 5;
    log.inOpen = [](FakeSessionManager &service) { service.emitOpenFailed(5); };
    onStatus = [this](LinkStatus status) {
        if (status == LinkStatus::Failed) {
            EXPECT_FALSE(setUp());
        }
    };
    EXPECT_FALSE(setUp());
    EXPECT_EQ(log.calls.count(u"open Operator"_s), DataConnection::MaxCallDepth);
    onStatus = {};
    log.inOpen = {};
    EXPECT_TRUE(openLink(6)) << "and calls are possible again afterwards";
}

TEST_F(ConnectionClosing, WithoutALinkClosesNothing)
{
    destroy();
    EXPECT_EQ(log.calls, QStringList(u"deleted"_s));
}

TEST_F(ConnectionClosing, ClosesAnOpenLinkBeforeDeletingTheService)
{
    ASSERT_TRUE(openLink(7));
    log.calls.clear();
    connection.reset();
    EXPECT_EQ(log.calls, QStringList({u"close 7"_s, u"deleted"_s}));
}

TEST_F(ConnectionClosing, EventThatItBringsAboutIsNotTold)
{
    ASSERT_TRUE(openLink(7));
    log.brokenInClose = true;
    connection->close();
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_EQ(log.last, nullptr) << "and does not put the deletion off";
}

TEST_F(ConnectionClosing, RefusesEverythingAfterwards)
{
    ASSERT_TRUE(openLink(7));
    statuses.clear();
    connection->close();
    log.calls.clear();
    connection->close();
    connection->handle(LinkEvent::Broken, -1);
    EXPECT_FALSE(setUp());
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_THAT(log.calls, IsEmpty());
}

TEST_F(ConnectionClosing, DuringTheWaitEndsIt)
{
    const std::weak_ptr<DataConnection> watched = connection;
    log.nextId = 5;
    next([this] { destroy(); });
    EXPECT_FALSE(setUp());
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_EQ(log.calls, QStringList({u"open Operator"_s, u"close 5"_s, u"deleted"_s}));
    EXPECT_TRUE(watched.expired());
}

TEST_F(ConnectionClosing, ByAHandlerOfTheStartEndsTheCallWithoutAWait)
{
    log.nextId = 5;
    onStatus = [this](LinkStatus) { destroy(); };
    EXPECT_FALSE(setUp());
    EXPECT_THAT(sleeps, IsEmpty());
    EXPECT_THAT(statuses, ElementsAre(3));
}

TEST_F(ConnectionClosing, ByAHandlerOfTheFailureIsSafe)
{
    onStatus = [this](LinkStatus status) {
        if (status == LinkStatus::Failed)
            destroy();
    };
    EXPECT_FALSE(openLink(-7));
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    EXPECT_EQ(log.last, nullptr);
}

TEST_F(ConnectionClosing, InsideOpenLinkClosesTheLinkThatItGivesAndOnlyThenDeletesTheService)
{
    log.nextId = 5;
    log.inOpen = [this](FakeSessionManager &) {
        destroy();
        EXPECT_NE(log.last, nullptr);
    };
    EXPECT_FALSE(setUp());
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_EQ(log.calls, QStringList({u"open Operator"_s, u"close 5"_s, u"deleted"_s}));
}

TEST_F(ConnectionClosing, WhileTheInterfaceIsAskedForRecordsNothing)
{
    log.inDeviceInfo = [this] {
        destroy();
        EXPECT_NE(log.last, nullptr);
    };
    EXPECT_FALSE(openLink(5));
    EXPECT_EQ(statusFileContent(), QByteArray());
    EXPECT_EQ(log.calls.last(), u"deleted"_s);
}

TEST_F(ConnectionClosing, WhileTheUserIsChoosingOpensNothing)
{
    setNetworkProfileChooser([this](QString &name) {
        destroy();
        name = u"Chosen"_s;
        return 0;
    });
    EXPECT_FALSE(connection->setUp(QString()));
    EXPECT_THAT(chosenProfiles, IsEmpty());
    EXPECT_EQ(log.calls, QStringList(u"deleted"_s));
}

TEST_F(ConnectionClosing, ByAHandlerOfBrokenDeletesTheServiceOnceItsEventIsOver)
{
    ASSERT_TRUE(openLink(5));
    onStatus = [this](LinkStatus) { destroy(); };
    log.last->emitBroken(5);
    EXPECT_NE(log.last, nullptr);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(log.last, nullptr);
    EXPECT_EQ(log.calls.mid(2), QStringList({u"close 5"_s, u"deleted"_s}));
}
