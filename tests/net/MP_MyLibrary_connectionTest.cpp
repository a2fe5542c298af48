// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "support/FakeSessionManager.h"
#include "support/InRoot.h"
#include "support/NextTurn.h"
#include "support/NullEngine.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>
#include <marvola/NetworkProfile.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>

#include <gmock/gmock.h>

#include <memory>

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct LibraryConnection : testing::Test
{
    LibraryConnection()
    {
        QObject::connect(library.get(), &MP_MyLibrary::dataConnectionStatus, &context, [this](int status) {
            statuses.append(status);
            if (onStatus)
                onStatus(status);
        });
        service.log.calls.clear();
        library->setProfileName(u"Operator"_s);
    }
    ~LibraryConnection() override
    {
        setNetworkProfileChooser({});
        library.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    void next(std::function<void()> event) { inNextTurn(context, std::move(event)); }
    bool openAndFail(int id)
    {
        service.log.nextId = id;
        next([this, id] { service.log.last->emitOpenFailed(id); });
        return library->setupConnection();
    }

    TestPhone phone;
    NullEngine engine;
    FakeSessionFactory service;
    QObject context;
    QList<int> statuses;
    std::function<void(int)> onStatus;
    std::unique_ptr<MP_MyLibrary> library = std::make_unique<MP_MyLibrary>(&engine);
};

} // namespace

TEST_F(LibraryConnection, ThatOpensIsRecordedInTheFileForTheStreamingPlayer)
{
    ASSERT_TRUE(QDir().mkdir(phone.path(u"tmp"_s)));
    EXPECT_TRUE(holdsInRoot(phone.path(QString()), [this] {
        service.log.nextId = 5;
        next([this] { service.log.last->emitConnected(5); });
        return library->setupConnection() && library->setupConnection() && statuses == QList<int>{3};
    }));
    QFile file(phone.path(u"tmp/Marvola_GPRS_Link"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "MyInterface=ppp0");
}

TEST_F(LibraryConnection, ThatCannotBeRecordedIsThereAllTheSame)
{
    EXPECT_TRUE(holdsInRoot(phone.path(QString()), [this] {
        service.log.nextId = 5;
        next([this] { service.log.last->emitConnected(5); });
        return library->setupConnection();
    }));
}

TEST_F(LibraryConnection, ThatFailsIsToldAndFalse)
{
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(openAndFail(5));
    EXPECT_GE(clock.elapsed(), 250) << "the event is looked for four times a second";
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    EXPECT_EQ(service.log.calls, QStringList(u"open Operator"_s));
}

TEST_F(LibraryConnection, ThatBreaksIsTold)
{
    LinkInfo info;
    service.log.nextId = 0;
    next([this] { service.log.last->emitConnected(0); });
    ASSERT_FALSE(library->setupConnection());
    ASSERT_TRUE(library->setupConnection());
    library->onSlotLinkBroken(1, info);
    EXPECT_THAT(statuses, ElementsAre(3, 2));
    service.log.last->emitBroken(0);
    EXPECT_THAT(statuses, ElementsAre(3, 2, 4));
    EXPECT_FALSE(openAndFail(6)) << "the next call opens a new link";
    EXPECT_THAT(statuses, ElementsAre(3, 2, 4, 3, 2));
}

TEST_F(LibraryConnection, TakesEventsOfItsSlotsToo)
{
    LinkInfo info;
    service.log.nextId = 5;
    next([&, this] {
        library->onSlotLinkOpenFailed(4, 0, 0);
        library->onSlotLinkConnected(4, info);
        library->onSlotLinkOpenFailed(5, 1, 2);
    });
    EXPECT_FALSE(library->setupConnection());
    EXPECT_THAT(statuses, ElementsAre(3, 2));
}

TEST_F(LibraryConnection, WithACancelledSelectionIsFalseAndSilent)
{
    library->setProfileName(QString());
    EXPECT_FALSE(library->setupConnection());
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_THAT(service.log.calls, IsEmpty());
}

TEST_F(LibraryConnection, WithAChosenProfileStoresItWithTheSettings)
{
    library->setProfileName(QString());
    setNetworkProfileChooser([](QString &name) {
        name = u"Chosen"_s;
        return 0;
    });
    EXPECT_FALSE(openAndFail(5));
    EXPECT_EQ(service.log.calls, QStringList(u"open Chosen"_s));
    EXPECT_EQ(library->getProfileName(), u"Chosen"_s);
    library->storeConfig();
    EXPECT_EQ(ConfigFile(phone.settingsFile(), false).readEntry(u"MediaProxyItem"_s, u"ProfileName"_s), u"Chosen"_s);
    setNetworkProfileChooser({});
    EXPECT_FALSE(openAndFail(6)) << "and does not ask again";
    EXPECT_EQ(service.log.calls.last(), u"open Chosen"_s);
}

TEST_F(LibraryConnection, WithoutALinkServiceFails)
{
    DataSessionManager::setFactory({});
    MP_MyLibrary unconnected(&engine);
    unconnected.setProfileName(u"Operator"_s);
    // Only an event of that id ends the wait, and a service that is none sends none.
    next([&] { unconnected.onSlotLinkOpenFailed(-1, 0, 0); });
    EXPECT_FALSE(unconnected.setupConnection());
}

TEST_F(LibraryConnection, WithTheIdZeroIsDeliberatelyNotClosedAtTheEnd)
{
    service.log.nextId = 0;
    next([this] { service.log.last->emitConnected(0); });
    ASSERT_FALSE(library->setupConnection());
    ASSERT_TRUE(library->setupConnection()) << "the id is the link's by now";
    library.reset();
    EXPECT_EQ(service.log.calls, QStringList({u"open Operator"_s, u"deleted"_s}));
}

TEST_F(LibraryConnection, WithTheIdOneIsClosedAtTheEnd)
{
    ASSERT_TRUE(QDir().mkdir(phone.path(u"tmp"_s)));
    EXPECT_TRUE(holdsInRoot(phone.path(QString()), [this] {
        service.log.nextId = 1;
        next([this] { service.log.last->emitConnected(1); });
        const bool isUp = library->setupConnection();
        library.reset();
        return isUp && service.log.calls == QStringList{u"open Operator"_s, u"device 1"_s, u"close 1"_s, u"deleted"_s};
    }));
}

TEST_F(LibraryConnection, SurvivesTheDeletionOfTheLibraryDuringTheWait)
{
    service.log.nextId = 5;
    next([this] { library.reset(); });
    EXPECT_FALSE(library->setupConnection());
    EXPECT_THAT(statuses, ElementsAre(3));
    EXPECT_EQ(service.log.calls, QStringList({u"open Operator"_s, u"close 5"_s, u"deleted"_s}));
}

TEST_F(LibraryConnection, SurvivesTheDeletionOfTheLibraryByAHandlerOfAnyStatus)
{
    for (const int fatal : {3, 2}) {
        library.reset();
        library = std::make_unique<MP_MyLibrary>(&engine);
        library->setProfileName(u"Operator"_s);
        QObject::connect(library.get(), &MP_MyLibrary::dataConnectionStatus, &context, [&, this](int status) {
            if (status == fatal)
                library.reset();
        });
        service.log.nextId = 5;
        next([this] {
            if (library)
                service.log.last->emitOpenFailed(5);
        });
        EXPECT_FALSE(library->setupConnection());
        EXPECT_EQ(library, nullptr);
        EXPECT_EQ(service.log.last, nullptr);
        QCoreApplication::processEvents();
    }
}

TEST_F(LibraryConnection, SurvivesTheDeletionOfTheLibraryByAHandlerOfABrokenLink)
{
    onStatus = [this](int status) {
        if (status == 4)
            library.reset();
    };
    service.log.nextId = 5;
    next([this] { service.log.last->emitBroken(5); });
    EXPECT_FALSE(library->setupConnection());
    EXPECT_THAT(statuses, ElementsAre(3, 4));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(service.log.last, nullptr);
}
