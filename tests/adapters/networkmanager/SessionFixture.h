// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_SESSIONFIXTURE_H
#define MARVOLA_TESTS_NETWORKMANAGER_SESSIONFIXTURE_H

#include "FakeNetworkManager.h"
#include "PrivateBus.h"
#include "SessionNotes.h"

#include <QtCore/QEventLoop>
#include <QtCore/qtestsupport_core.h>
#include <QtDBus/QDBusPendingCallWatcher>

#include <gmock/gmock.h>

#include <chrono>
#include <memory>

/// A session with a fake NetworkManager that has the profile "Operator" and a modem with the interface wwan0.
struct SessionFixture : testing::Test
{
    using Session = NetworkManagerSession;

    PrivateBus bus;
    std::unique_ptr<FakeNetworkManager> service = std::make_unique<FakeNetworkManager>(bus);
    QDBusConnection client = bus.connect();
    std::unique_ptr<Session> session = std::make_unique<Session>(client, QString(marvola::bus::Service));
    QStringList events;
    QString profile = service->addProfile(QStringLiteral("Operator"));
    QString modem = service->addDevice(QStringLiteral("wwan0"));

    SessionFixture()
    {
        service->activateWith(modem, marvola::bus::ActiveActivated);
        note(*session, events);
    }

    ~SessionFixture() override
    {
        service->leave(); // the session has nobody to wait for at its end
    }
    SessionFixture(const SessionFixture &) = delete;
    SessionFixture &operator=(const SessionFixture &) = delete;

    int open(const QString &name = QStringLiteral("Operator")) { return session->openLink(name); }
    /// The active connection that was made first; they are numbered on after profile and modem.
    QString active(int number = 3) const
    {
        return QStringLiteral("/org/freedesktop/NetworkManager/ActiveConnection/%1").arg(number);
    }
    /// Begins an activation that stays "activating".
    int openSlowly()
    {
        service->activateWith(modem, marvola::bus::ActiveActivating);
        const int id = open();
        EXPECT_TRUE(awaitCall(QStringLiteral("GetAll Active")));
        settle();
        return id;
    }
    int openFully()
    {
        const int id = open();
        EXPECT_EQ(awaitEvent(), QStringLiteral("connected %1 Operator wwan0").arg(id));
        return id;
    }

    bool awaitCall(const QString &call, int times = 1)
    {
        return QTest::qWaitFor([&] { return service->count(call) >= times; });
    }
    /// The next event, taken out of the list.
    QString awaitEvent()
    {
        if (!QTest::qWaitFor([&] { return !events.isEmpty(); }))
            return QStringLiteral("nothing");
        return events.takeFirst();
    }
    static QString failed(int id, Session::OpenError error, int detail = 0)
    {
        return QStringLiteral("failed %1 %2 %3").arg(id).arg(error).arg(detail);
    }
    /// Comes back when all that was sent before has been heard, and all that it set off.
    void settle()
    {
        constexpr int LongestChainOfCalls = 10;
        const QDBusMessage question = QDBusMessage::createMethodCall(
            marvola::bus::Service, marvola::bus::RootPath, marvola::bus::RootInterface, FakeNetworkManager::Ping);
        for (int round = 0; round < LongestChainOfCalls; ++round) {
            QEventLoop loop;
            const QDBusPendingCallWatcher call(client.asyncCall(question));
            QObject::connect(&call, &QDBusPendingCallWatcher::finished, &loop, &QEventLoop::quit);
            loop.exec();
            QCoreApplication::sendPostedEvents();
        }
    }
    /// Comes back when the service's answers so far are in, but nobody has been told of them.
    void letAnswersComeInUnheard()
    {
        const QDBusMessage question = QDBusMessage::createMethodCall(
            marvola::bus::Service, marvola::bus::RootPath, marvola::bus::RootInterface, FakeNetworkManager::Ping);
        EXPECT_EQ(client.call(question).type(), QDBusMessage::ReplyMessage);
    }
    QStringList eventsWhenSettled()
    {
        settle();
        return events;
    }
};

#endif
