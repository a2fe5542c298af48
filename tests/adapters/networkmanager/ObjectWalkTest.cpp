// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ObjectWalk.h"

#include "SessionFixture.h"

#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

using namespace Qt::StringLiterals;
using marvola::NetworkService;
using marvola::ObjectWalk;
using marvola::OpenError;
using testing::ElementsAre;
using testing::Optional;

namespace {

struct Walk : SessionFixture
{
    NetworkService calls{client, QString(marvola::bus::Service)};
    QString second = service->addProfile(u"Second"_s);
    QStringList visited;
    QString stopAt;
    QObject owner;
    bool isDone = false;
    std::optional<OpenError> error;

    void start()
    {
        ObjectWalk::Steps steps;
        steps.ask = [this](const QString &path) { return calls.profileSettings(path); };
        steps.visit = [this](const QString &path, const QDBusMessage &) {
            visited.append(path);
            return path == stopAt ? ObjectWalk::Next::Stop : ObjectWalk::Next::Continue;
        };
        steps.done = [this](std::optional<OpenError> why) {
            EXPECT_FALSE(isDone);
            isDone = true;
            error = why;
        };
        new ObjectWalk(calls.profiles(), std::move(steps), &owner);
        EXPECT_FALSE(isDone);
    }
    void walk()
    {
        start();
        EXPECT_TRUE(QTest::qWaitFor([&] { return isDone; }));
        settle();
    }
};

} // namespace

TEST_F(Walk, VisitsEachObjectInTurn)
{
    walk();
    EXPECT_THAT(visited, ElementsAre(profile, second));
    EXPECT_EQ(error, std::nullopt);
}

TEST_F(Walk, VisitsInTurnWhenTheLastIsAnsweredFirst)
{
    const QString both = u"GetSettings"_s;
    service->hold(both);
    start();
    ASSERT_TRUE(awaitCall(both, 2));
    service->answerHeld(both);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    EXPECT_THAT(visited, ElementsAre(profile, second));
}

TEST_F(Walk, StopsWhenToldTo)
{
    stopAt = profile;
    walk();
    EXPECT_THAT(visited, ElementsAre(profile)) << "whatever else was asked for is not heard";
    EXPECT_EQ(error, std::nullopt);
}

TEST_F(Walk, AsksManyObjectsAtOnceButNoMoreThanABusAllows)
{
    const QString many = u"GetSettings"_s;
    constexpr int Most = ObjectWalk::MostAtOnce;
    for (int number = 0; number < 2 * Most; ++number)
        service->addProfile(QString::number(number));
    service->hold(many);
    start();
    ASSERT_TRUE(awaitCall(many, Most));
    settle();
    EXPECT_EQ(service->count(many), Most);
    service->answerHeld(many);
    ASSERT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    EXPECT_EQ(service->count(many), 2 * Most + 2);
    EXPECT_EQ(visited.size(), 2 * Most + 2);
}

TEST_F(Walk, TakesAsManyLooksAtTheEventsForManyObjectsAsForFew)
{
    constexpr int Profiles = 50;
    for (int number = 0; number < Profiles; ++number)
        service->addProfile(QString::number(number));
    start();
    int looks = 0;
    for (; !isDone && looks < Profiles; ++looks) {
        letAnswersComeInUnheard();
        QCoreApplication::processEvents();
    }
    EXPECT_LT(looks, 5) << "each costs a quarter of a second while the library waits for a link";
}

TEST_F(Walk, AnEmptyListIsDoneAtOnce)
{
    service->answer(u"Get Connections"_s, [](const QDBusMessage &call) {
        return call.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(QList<QDBusObjectPath>()))));
    });
    walk();
    EXPECT_TRUE(visited.isEmpty());
    EXPECT_EQ(error, std::nullopt);
}

TEST_F(Walk, GoesOnWithoutAnObjectThatRefuses)
{
    service->answer(u"GetSettings"_s, [this](const QDBusMessage &call) {
        return call.path() == profile ? call.createErrorReply(u"any.Error"_s, u"no"_s) : call.createReply();
    });
    walk();
    EXPECT_THAT(visited, ElementsAre(second));
    EXPECT_EQ(error, std::nullopt);
}

TEST_F(Walk, EndsWhenTheServiceIsGone)
{
    service->hold(u"GetSettings"_s);
    start();
    ASSERT_TRUE(awaitCall(u"GetSettings"_s));
    service->leave();
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDone; }));
    EXPECT_THAT(error, Optional(OpenError::ServiceVanished));
    EXPECT_TRUE(visited.isEmpty());
}

TEST_F(Walk, EndsWhenTheListIsRefused)
{
    service->refuse(u"Get Connections"_s, u"org.freedesktop.DBus.Error.AccessDenied"_s);
    walk();
    EXPECT_THAT(error, Optional(OpenError::NotPermitted));
}

TEST_F(Walk, EndsWhenTheListIsNone)
{
    service->answer(u"Get Connections"_s, [](const QDBusMessage &call) { return call.createReply(u"/1"_s); });
    walk();
    EXPECT_THAT(error, Optional(OpenError::UnexpectedAnswer));
}

TEST_F(Walk, IsSilentWhenItsOwnerGoes)
{
    auto brief = std::make_unique<QObject>();
    bool isTold = false;
    new ObjectWalk(calls.profiles(),
                   {[this](const QString &path) { return calls.profileSettings(path); },
                    [](const QString &, const QDBusMessage &) { return ObjectWalk::Next::Continue; },
                    [&isTold](std::optional<OpenError>) { isTold = true; }},
                   brief.get());
    brief.reset();
    settle();
    EXPECT_FALSE(isTold);
}
