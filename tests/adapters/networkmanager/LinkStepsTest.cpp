// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// An opening is a chain of calls. Each of them is answered with nonsense, late, not at all or too late.

#include "SessionFixture.h"

#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::IsEmpty;
using Session = NetworkManagerSession;

namespace {

struct Nonsense
{
    const char *name;
    const char *call;
    FakeNetworkManager::Answer answer;
    QString event;
};

QVariant variant(const QVariant &value)
{
    return QVariant::fromValue(QDBusVariant(value));
}

FakeNetworkManager::Answer with(const QVariantList &values)
{
    return [values](const QDBusMessage &call) { return call.createReply(values); };
}

QString failedWith(Session::OpenError error)
{
    return SessionFixture::failed(1, error);
}

struct LinkNonsense : SessionFixture, testing::WithParamInterface<Nonsense>
{
};

const QString NoInterface = u"connected 1 Operator "_s;
const QVariant NoPath = QVariant::fromValue(QDBusObjectPath(u"/"_s));

const Nonsense Answers[] = {
    {"ListWithoutValue", "Get Connections", with({}), failedWith(Session::UnexpectedAnswer)},
    {"ListIsText", "Get Connections", with({variant(u"/1"_s)}), failedWith(Session::UnexpectedAnswer)},
    {"ListOfTexts", "Get Connections", with({variant(QStringList(u"/1"_s))}), failedWith(Session::UnexpectedAnswer)},
    {"ListAndMore", "Get Connections", with({variant(1), 2}), failedWith(Session::UnexpectedAnswer)},
    {"SettingsEmpty", "GetSettings", with({}), failedWith(Session::ProfileNotFound)},
    {"SettingsFlat", "GetSettings", with({QVariantMap{{u"id"_s, u"Operator"_s}}}),
     failedWith(Session::ProfileNotFound)},
    {"ActiveListIsNumber", "Get ActiveConnections", with({variant(4)}), failedWith(Session::UnexpectedAnswer)},
    {"ActivatedNone", "ActivateConnection", with({NoPath}), failedWith(Session::UnexpectedAnswer)},
    {"ActivatedNothing", "ActivateConnection", with({}), failedWith(Session::UnexpectedAnswer)},
    {"ActivatedText", "ActivateConnection", with({u"/active"_s}), failedWith(Session::UnexpectedAnswer)},
    {"StateNone", "GetAll Active", with({QVariantMap()}), failedWith(Session::UnexpectedAnswer)},
    {"StateText", "GetAll Active", with({QVariantMap{{u"State"_s, u"2"_s}}}), failedWith(Session::UnexpectedAnswer)},
    {"StateSigned", "GetAll Active", with({QVariantMap{{u"State"_s, 2}}}), failedWith(Session::UnexpectedAnswer)},
    {"StateNoMap", "GetAll Active", with({2U}), failedWith(Session::UnexpectedAnswer)},
    {"DevicesNone", "GetAll Active", with({QVariantMap{{u"State"_s, 2U}}}), NoInterface},
    {"DevicesText", "GetAll Active", with({QVariantMap{{u"State"_s, 2U}, {u"Devices"_s, u"/d"_s}}}), NoInterface},
    {"DeviceEmpty", "GetAll Device", with({}), NoInterface},
    {"DeviceNumber", "GetAll Device", with({QVariantMap{{u"IpInterface"_s, 5}}}), NoInterface},
    {"InterfaceEmpty", "GetAll Device", with({QVariantMap{{u"IpInterface"_s, u""_s}}}), NoInterface},
    {"InterfaceTwoLines", "GetAll Device", with({QVariantMap{{u"IpInterface"_s, u"a\nb"_s}}}), NoInterface},
    {"InterfacePath", "GetAll Device", with({QVariantMap{{u"IpInterface"_s, u"../x"_s}}}), NoInterface},
    {"InterfaceLong", "GetAll Device", with({QVariantMap{{u"IpInterface"_s, QString(100000, u'x')}}}), NoInterface},
};

} // namespace

TEST_P(LinkNonsense, IsNotBelieved)
{
    service->answer(QString::fromLatin1(GetParam().call), GetParam().answer);
    const int id = open();
    EXPECT_EQ(awaitEvent(), GetParam().event);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    QString name;
    EXPECT_EQ(session->getDeviceInfo(id, name, nullptr), -1);
    // What was brought up all the same is taken down again.
    if (service->count(u"ActivateConnection"_s) == 1 && QLatin1String(GetParam().call) != "ActivateConnection"_L1) {
        session->closeLink(id);
        settle();
        EXPECT_EQ(service->count(u"DeactivateConnection"_s), 1);
    }
}

INSTANTIATE_TEST_SUITE_P(All, LinkNonsense, testing::ValuesIn(Answers),
                         [](const auto &row) { return std::string(row.param.name); });

namespace {

/// Each call of an opening, in turn.
const char *const Calls[] = {"Get Connections",    "GetSettings",   "Get ActiveConnections",
                             "ActivateConnection", "GetAll Active", "GetAll Device"};

struct LinkAtEachStep : SessionFixture, testing::WithParamInterface<const char *>
{
    QString call = QString::fromLatin1(GetParam());

    int openUntilTheCall()
    {
        service->hold(call);
        const int id = open();
        EXPECT_TRUE(awaitCall(call));
        EXPECT_THAT(eventsWhenSettled(), IsEmpty());
        return id;
    }
    int activations() const { return service->count(u"ActivateConnection"_s); }
};

std::string stepName(const testing::TestParamInfo<const char *> &info)
{
    return QString::fromLatin1(info.param).remove(u' ').toStdString();
}

} // namespace

TEST_P(LinkAtEachStep, ASlowAnswerIsWaitedFor)
{
    openUntilTheCall();
    service->answerHeld(call);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
}

TEST_P(LinkAtEachStep, AServiceThatLeavesEndsTheWait)
{
    openUntilTheCall();
    service->leave();
    EXPECT_EQ(awaitEvent(), failed(1, Session::ServiceVanished));
    session->closeLink(1);
    EXPECT_THAT(events, IsEmpty());
}

TEST_P(LinkAtEachStep, ABusThatDiesEndsTheWait)
{
    openUntilTheCall();
    bus.kill();
    EXPECT_EQ(awaitEvent(), failed(1, Session::BusUnavailable));
}

TEST_P(LinkAtEachStep, TheTimeLimitEndsTheWaitAndLeavesNothingUp)
{
    session->setTimeLimit(1s);
    service->hold(call);
    open();
    EXPECT_EQ(awaitEvent(), failed(1, Session::TimedOut));
    ASSERT_EQ(service->count(call), 1); // it was this call that did not come back
    service->answerHeld(call);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), activations());
}

TEST_P(LinkAtEachStep, ClosingEndsTheOpeningAndLeavesNothingUp)
{
    const int id = openUntilTheCall();
    session->closeLink(id);
    EXPECT_THAT(events, IsEmpty()); // not from inside the call
    EXPECT_EQ(awaitEvent(), failed(id, Session::Closed));
    service->answerHeld(call);
    session->closeLink(id);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), activations());
}

TEST_P(LinkAtEachStep, ClosingWhenTheAnswerIsInButUnheardLeavesNothingUp)
{
    const int id = openUntilTheCall();
    service->answerHeld(call);
    letAnswersComeInUnheard();
    session->closeLink(id);
    EXPECT_EQ(awaitEvent(), failed(id, Session::Closed));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), activations());
}

INSTANTIATE_TEST_SUITE_P(Calls, LinkAtEachStep, testing::ValuesIn(Calls), stepName);
