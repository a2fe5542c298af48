// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Deactivations.h"

#include "SessionFixture.h"

#include <QtCore/QElapsedTimer>

using namespace Qt::StringLiterals;
using marvola::Deactivations;
using marvola::NetworkService;
using namespace std::chrono_literals;

namespace {

struct Deactivating : SessionFixture
{
    NetworkService calls{client, QString(marvola::bus::Service)};
    std::unique_ptr<Deactivations> deactivations = std::make_unique<Deactivations>(calls, 5s);
    std::unique_ptr<QDBusPendingCallWatcher> activation()
    {
        return std::make_unique<QDBusPendingCallWatcher>(calls.activate(profile));
    }
    QString up = service->addActive(profile, marvola::bus::ActiveActivated, modem);
};

} // namespace

TEST_F(Deactivating, LastsUntilTheServiceHasAnswered)
{
    service->hold(u"DeactivateConnection"_s);
    deactivations->deactivate(up);
    settle();
    EXPECT_TRUE(deactivations->isGoing(up));
    service->answerHeld(u"DeactivateConnection"_s);
    settle();
    EXPECT_FALSE(deactivations->isGoing(up));
}

TEST_F(Deactivating, ARefusalEndsItToo)
{
    service->refuse(u"DeactivateConnection"_s, u"any.Error"_s);
    deactivations->deactivate(up);
    EXPECT_TRUE(deactivations->isGoing(up));
    settle();
    EXPECT_FALSE(deactivations->isGoing(up));
}

TEST_F(Deactivating, TakesDownWhatComesUpLate)
{
    service->hold(u"ActivateConnection"_s);
    bool hasArrived = false;
    QObject::connect(deactivations.get(), &Deactivations::activationsArrived, [&] { hasArrived = true; });
    deactivations->deactivateOnceActive(activation());
    settle();
    EXPECT_TRUE(deactivations->isExpectingActivations());
    EXPECT_FALSE(hasArrived);
    service->answerHeld(u"ActivateConnection"_s);
    settle();
    EXPECT_FALSE(deactivations->isExpectingActivations());
    EXPECT_TRUE(hasArrived);
    EXPECT_EQ(service->calls().last(), u"DeactivateConnection "_s + active(4));
}

TEST_F(Deactivating, TakesNothingDownWhenNothingCameUp)
{
    service->refuse(u"ActivateConnection"_s, u"any.Error"_s);
    deactivations->deactivateOnceActive(activation());
    settle();
    EXPECT_FALSE(deactivations->isExpectingActivations());
    EXPECT_EQ(service->count(u"DeactivateConnection"_s), 0);
}

TEST_F(Deactivating, DestructionWaitsForTheAnswer)
{
    service->hold(u"DeactivateConnection"_s);
    deactivations->deactivate(up);
    service->answerHeldAfter(u"DeactivateConnection"_s, 50);
    QElapsedTimer timer;
    timer.start();
    deactivations.reset();
    EXPECT_GE(timer.elapsed(), 40);
    EXPECT_LT(timer.elapsed(), 5000);
}

TEST_F(Deactivating, DestructionTakesDownWhatComesUpMeanwhile)
{
    service->hold(u"ActivateConnection"_s);
    deactivations->deactivateOnceActive(activation());
    service->answerHeldAfter(u"ActivateConnection"_s, 50);
    deactivations.reset();
    EXPECT_EQ(service->calls().last(), u"DeactivateConnection "_s + active(4));
}

TEST_F(Deactivating, DestructionWaitsNoLongerThanItsPatience)
{
    service->hold(u"DeactivateConnection"_s);
    service->hold(u"ActivateConnection"_s);
    auto hasty = std::make_unique<Deactivations>(calls, 60ms);
    hasty->deactivateOnceActive(activation());
    hasty->deactivate(up);
    QElapsedTimer timer;
    timer.start();
    hasty.reset();
    EXPECT_GE(timer.elapsed(), 50);
    EXPECT_LT(timer.elapsed(), 4000);
}
