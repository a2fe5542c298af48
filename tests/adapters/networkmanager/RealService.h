// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_REALSERVICE_H
#define MARVOLA_TESTS_NETWORKMANAGER_REALSERVICE_H

#include "BusNames.h"
#include "RealNetworkManager.h"
#include "SessionNotes.h"

#include <QtCore/qtestsupport_core.h>

#include <gmock/gmock.h>

#include <memory>

/// A session with the real NetworkManager.
struct RealService : testing::Test
{
    using Session = NetworkManagerSession;
    static constexpr int PatienceMs = 15000;

    std::unique_ptr<PrivateBus> bus;
    std::unique_ptr<RealNetworkManager> service;
    std::unique_ptr<Session> session;
    QStringList events;

    void SetUp() override
    {
        const QString obstacle = RealNetworkManager::obstacle();
        if (!obstacle.isEmpty())
            GTEST_SKIP() << "not run: " << qPrintable(obstacle);
        bus = std::make_unique<PrivateBus>();
        addToBus();
        service = std::make_unique<RealNetworkManager>(*bus);
        ASSERT_TRUE(service->isReady());
        session = std::make_unique<Session>(bus->connect(), QString(marvola::bus::Service));
        note(*session, events);
    }
    void TearDown() override
    {
        if (HasFailure() && service)
            std::printf("%s\n", service->log().constData());
        session.reset();
    }

    /// Called before the service is started.
    virtual void addToBus() {}

    QString awaitEvent()
    {
        if (!QTest::qWaitFor([&] { return !events.isEmpty(); }, PatienceMs))
            return QStringLiteral("nothing");
        return events.takeFirst();
    }
    bool isUp(const QString &profile) const { return service->isUp(profile); }
    bool goesDown(const QString &profile) const
    {
        return QTest::qWaitFor([&] { return !isUp(profile); }, PatienceMs);
    }
    void openStreamLink()
    {
        const int id = session->openLink(QStringLiteral("Stream Link"));
        ASSERT_EQ(awaitEvent(), QStringLiteral("connected %1 Stream Link link0").arg(id));
    }
    static QString failed(int id, Session::OpenError error, int detail = 0)
    {
        return QStringLiteral("failed %1 %2 %3").arg(id).arg(error).arg(detail);
    }
};

#endif
