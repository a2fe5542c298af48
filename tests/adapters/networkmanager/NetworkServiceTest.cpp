// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "NetworkService.h"

#include "Answers.h"
#include "SessionFixture.h"

using namespace Qt::StringLiterals;
using marvola::NetworkService;

namespace {

struct NetworkServiceCalls : SessionFixture
{
    NetworkService calls{client, QString(marvola::bus::Service)};
};

} // namespace

TEST_F(NetworkServiceCalls, AreAnsweredFromTheEventLoop)
{
    std::optional<QStringList> paths;
    marvola::whenAnswered(calls.profiles(), session.get(),
                          [&](const QDBusMessage &answer) { paths = marvola::objectPaths(answer); });
    EXPECT_EQ(paths, std::nullopt);
    EXPECT_TRUE(QTest::qWaitFor([&] { return paths.has_value(); }));
    EXPECT_EQ(paths, QStringList(profile));
}

TEST_F(NetworkServiceCalls, AreAnsweredWithAnErrorWhereThereIsNoBus)
{
    const NetworkService nowhere(QDBusConnection(u"no such connection"_s), QString(marvola::bus::Service));
    bool isError = false;
    marvola::whenAnswered(nowhere.profiles(), session.get(),
                          [&](const QDBusMessage &answer) { isError = answer.type() == QDBusMessage::ErrorMessage; });
    EXPECT_FALSE(isError);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isError; }));
}

TEST_F(NetworkServiceCalls, AnswersAreForNobodyOnceTheAskerIsGone)
{
    auto asker = std::make_unique<QObject>();
    bool isAnswered = false;
    marvola::whenAnswered(calls.profiles(), asker.get(), [&](const QDBusMessage &) { isAnswered = true; });
    asker.reset();
    settle();
    EXPECT_FALSE(isAnswered);
}

TEST_F(NetworkServiceCalls, CanBeWaitedForWithoutAnEventLoop)
{
    const QDBusPendingCall call = calls.profileSettings(profile);
    ASSERT_TRUE(marvola::isAnsweredBefore(QDeadlineTimer(std::chrono::seconds(5)), call));
    const auto read = marvola::profileOf(profile, call.reply());
    ASSERT_TRUE(read);
    EXPECT_EQ(read->id, u"Operator"_s);
    EXPECT_EQ(read->uuid, u"u"_s);
}

TEST_F(NetworkServiceCalls, AreWaitedForNoLongerThanTheDeadline)
{
    service->hold(u"GetSettings"_s);
    const QDBusPendingCall call = calls.profileSettings(profile);
    EXPECT_FALSE(marvola::isAnsweredBefore(QDeadlineTimer(std::chrono::milliseconds(20)), call));
}
