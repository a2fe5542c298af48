// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// What several links of a session, and the links of others, have to do with one another.

#include "SessionFixture.h"

using namespace Qt::StringLiterals;
using testing::ElementsAre;
using testing::IsEmpty;
using Session = NetworkManagerSession;
namespace bus = marvola::bus;

namespace {

struct SessionLinks : SessionFixture
{
    int activations() const { return service->count(u"ActivateConnection"_s); }
    int deactivations() const { return service->count(u"DeactivateConnection"_s); }
    QStringList sorted(QStringList list)
    {
        list.sort();
        return list;
    }
};

} // namespace

TEST_F(SessionLinks, IdsAreNeverGivenTwice)
{
    EXPECT_EQ(openFully(), 1);
    session->closeLink(1);
    EXPECT_EQ(open(u"nobody's"_s), 2);
    EXPECT_EQ(awaitEvent(), failed(2, Session::ProfileNotFound));
    EXPECT_EQ(openFully(), 3);
}

TEST_F(SessionLinks, ClosingTakesDownWhatWasActivated)
{
    session->closeLink(openFully());
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(service->calls().last(), u"DeactivateConnection "_s + active());
}

TEST_F(SessionLinks, ClosingTwiceOrWhatNeverWasDoesNothing)
{
    const int id = openFully();
    for (const int unknown : {0, -1, 99, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
        session->closeLink(unknown);
    settle();
    EXPECT_EQ(deactivations(), 0);
    session->closeLink(id);
    session->closeLink(id);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(deactivations(), 1);
}

TEST_F(SessionLinks, SomebodyElsesConnectionIsSharedAndLeftUp)
{
    service->addActive(profile, bus::ActiveActivated, modem);
    session->closeLink(openFully());
    settle();
    EXPECT_EQ(activations(), 0);
    EXPECT_EQ(deactivations(), 0);
}

TEST_F(SessionLinks, SomebodyElsesConnectionIsAwaitedAndLeftAlone)
{
    const QString theirs = service->addActive(profile, bus::ActiveActivating, modem);
    open();
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    service->setActiveState(theirs, bus::ActiveActivated);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
    EXPECT_EQ(activations(), 0);
}

TEST_F(SessionLinks, ASharedConnectionThatGoesDownIsBroken)
{
    const QString theirs = service->addActive(profile, bus::ActiveActivated, modem);
    openFully();
    service->setActiveState(theirs, bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator wwan0"_s);
}

TEST_F(SessionLinks, AConnectionOnItsWayDownIsNotShared)
{
    service->addActive(profile, 3, modem);
    openFully();
    EXPECT_EQ(activations(), 1);
}

TEST_F(SessionLinks, TheConnectionOfAnotherProfileIsNotShared)
{
    service->addActive(service->addProfile(u"Other"_s), bus::ActiveActivated, modem);
    openFully();
    EXPECT_EQ(activations(), 1);
}

TEST_F(SessionLinks, TwoLinksOfAProfileAreOneActivationUntilTheLastIsClosed)
{
    const int first = openFully();
    const int second = openFully();
    EXPECT_EQ(activations(), 1);
    session->closeLink(first);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(deactivations(), 0);
    session->closeLink(second);
    settle();
    EXPECT_EQ(deactivations(), 1);
}

TEST_F(SessionLinks, OpenedAtOnceTheyAreOneActivationToo)
{
    open();
    open();
    open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return events.size() == 3; }));
    EXPECT_THAT(sorted(events), ElementsAre(u"connected 1 Operator wwan0"_s, u"connected 2 Operator wwan0"_s,
                                            u"connected 3 Operator wwan0"_s));
    EXPECT_EQ(activations(), 1);
}

TEST_F(SessionLinks, AllOnAnActivationBreakTogether)
{
    openFully();
    openFully();
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_TRUE(QTest::qWaitFor([&] { return events.size() == 2; }));
    EXPECT_THAT(sorted(events), ElementsAre(u"broken 1 Operator wwan0"_s, u"broken 2 Operator wwan0"_s));
}

TEST_F(SessionLinks, ALinkThatWaitsForAnothersLookUpDoesNotWaitForItsFailure)
{
    service->refuse(u"ActivateConnection"_s, u"org.freedesktop.NetworkManager.UnknownDevice"_s);
    open();
    open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return events.size() == 2; }));
    EXPECT_THAT(sorted(events), ElementsAre(failed(1, Session::NoDevice), failed(2, Session::NoDevice)));
}

TEST_F(SessionLinks, ALinkMayBeClosedWhileItWaitsForAnothersLookUp)
{
    service->hold(u"Get Connections"_s);
    open();
    session->closeLink(open());
    EXPECT_EQ(awaitEvent(), failed(2, Session::Closed));
    service->answerHeld(u"Get Connections"_s);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator wwan0"_s);
}

TEST_F(SessionLinks, LinksOfOtherProfilesDoNotWait)
{
    service->hold(u"ActivateConnection"_s);
    open();
    ASSERT_TRUE(awaitCall(u"ActivateConnection"_s));
    open(u"nobody's"_s);
    EXPECT_EQ(awaitEvent(), failed(2, Session::ProfileNotFound));
}

TEST_F(SessionLinks, ReopenedAtOnceALinkIsNotOnTheConnectionThatGoesDown)
{
    const int first = openFully();
    service->hold(u"DeactivateConnection"_s); // the old one still says that it is up
    session->closeLink(first);
    openFully();
    EXPECT_EQ(activations(), 2);
    service->answerHeld(u"DeactivateConnection"_s);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(SessionLinks, ReopenedWhileActivatingALinkWaitsForTheEndOfTheFirst)
{
    service->hold(u"ActivateConnection"_s);
    const int first = open();
    ASSERT_TRUE(awaitCall(u"ActivateConnection"_s));
    session->closeLink(first);
    open();
    EXPECT_EQ(awaitEvent(), failed(first, Session::Closed));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(activations(), 1);
    service->answerHeld(u"ActivateConnection"_s);
    EXPECT_EQ(awaitEvent(), u"connected 2 Operator wwan0"_s);
    EXPECT_EQ(activations(), 2);
    EXPECT_EQ(deactivations(), 1);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}

TEST_F(SessionLinks, ClosedAfterConnectedWasDueButNotToldItEndsAsClosed)
{
    // The last answer is here, and what it sets off is due in the event loop.
    const int id = open();
    ASSERT_TRUE(awaitCall(u"GetAll Device"_s));
    session->closeLink(id);
    EXPECT_EQ(awaitEvent(), failed(id, Session::Closed));
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(deactivations(), 1);
}

TEST_F(SessionLinks, ASlotOfConnectedMayCloseTheLink)
{
    QObject::connect(session.get(), &Session::connected, [&](int id) { session->closeLink(id); });
    openFully();
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
    EXPECT_EQ(deactivations(), 1);
}

TEST_F(SessionLinks, ASlotOfBrokenMayOpenTheLinkAgain)
{
    QObject::connect(session.get(), &Session::broken, [&] { open(); });
    openFully();
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator wwan0"_s);
    EXPECT_EQ(awaitEvent(), u"connected 2 Operator wwan0"_s);
}

TEST_F(SessionLinks, ASlotOfOpenFailedMayOpenAnother)
{
    QObject::connect(session.get(), &Session::openFailed, [&] { open(); });
    open(u"nobody's"_s);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ProfileNotFound));
    EXPECT_EQ(awaitEvent(), u"connected 2 Operator wwan0"_s);
}

TEST_F(SessionLinks, TheSessionMayBeDeletedInASlotOfConnected)
{
    QObject::connect(session.get(), &Session::connected, [&] { session.reset(); });
    openFully();
    EXPECT_EQ(session, nullptr);
    EXPECT_EQ(deactivations(), 1);
}

TEST_F(SessionLinks, TheSessionMayBeDeletedInASlotOfOpenFailed)
{
    QObject::connect(session.get(), &Session::openFailed, [&] { session.reset(); });
    open(u"nobody's"_s);
    EXPECT_EQ(awaitEvent(), failed(1, Session::ProfileNotFound));
    EXPECT_EQ(session, nullptr);
}

TEST_F(SessionLinks, TheSessionMayBeDeletedInASlotOfBroken)
{
    QObject::connect(session.get(), &Session::broken, [&] { session.reset(); });
    openFully();
    openFully();
    service->setActiveState(active(), bus::ActiveDeactivated);
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator wwan0"_s);
    EXPECT_EQ(session, nullptr);
    EXPECT_THAT(eventsWhenSettled(), IsEmpty());
}
