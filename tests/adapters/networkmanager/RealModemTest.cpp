// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The session with the real NetworkManager and a modem.

#include "FakeModemManager.h"
#include "RealService.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

struct RealOperator : RealService
{
    std::unique_ptr<FakeModemManager> modem;

    void addToBus() override
    {
        modem = std::make_unique<FakeModemManager>(*bus, QString(RealNetworkManager::ModemInterface));
    }
    void SetUp() override
    {
        RealService::SetUp();
        if (IsSkipped() || HasFatalFailure())
            return;
        ASSERT_TRUE(QTest::qWaitFor(
            [this] {
                return service->nmcli({u"-g"_s, u"TYPE,STATE"_s, u"dev"_s}).contains(u"gsm:disconnected"_s);
            },
            PatienceMs));
    }
    /// What becomes of the link when the modem answers with \a error.
    QString openingRefusedWith(const QString &error)
    {
        modem->refuse(u"internet"_s, u"org.freedesktop.ModemManager1.Error.MobileEquipment."_s + error);
        EXPECT_EQ(session->openLink(u"Operator GPRS"_s), 1);
        return awaitEvent();
    }
};

} // namespace

TEST_F(RealOperator, OpensALinkOverTheModemsInterfaceAndNotItsSerialPort)
{
    EXPECT_EQ(session->openLink(u"Operator GPRS"_s), 1);
    EXPECT_EQ(awaitEvent(), u"connected 1 Operator GPRS wwan0"_s);
    QString name;
    unsigned long type = 0;
    EXPECT_EQ(session->getDeviceInfo(1, name, &type), 0);
    EXPECT_EQ(name, u"wwan0"_s);
    EXPECT_EQ(type, 8UL);
    EXPECT_THAT(service->ip(u"addr show wwan0"_s).toStdString(), HasSubstr("10.64.0.2"));
    session->closeLink(1);
    EXPECT_TRUE(goesDown(u"Operator GPRS"_s));
    EXPECT_THAT(events, IsEmpty());
}

TEST_F(RealOperator, ThatEndsTheConnectionBreaksTheLink)
{
    session->openLink(u"Operator GPRS"_s);
    ASSERT_EQ(awaitEvent(), u"connected 1 Operator GPRS wwan0"_s);
    modem->loseNetwork();
    EXPECT_EQ(awaitEvent(), u"broken 1 Operator GPRS wwan0"_s);
}

TEST_F(RealOperator, ThatDoesNotKnowTheSubscriberFails)
{
    EXPECT_THAT(openingRefusedWith(u"GprsServiceOptionNotSubscribed"_s).toStdString(),
                StartsWith(u"failed 1 %1 "_s.arg(Session::ActivationFailed).toStdString()));
}

TEST_F(RealOperator, WrongPinIsARejectedSecret)
{
    EXPECT_EQ(openingRefusedWith(u"IncorrectPassword"_s),
              failed(1, Session::SecretsRejected, marvola::bus::SimPinIncorrect));
}

TEST_F(RealOperator, MissingPinIsARejectedSecretWhenTheTimeIsUp)
{
    session->setTimeLimit(2s); // the service waits without end for somebody to say it
    EXPECT_EQ(openingRefusedWith(u"SimPin"_s), failed(1, Session::SecretsRejected));
    EXPECT_TRUE(goesDown(u"Operator GPRS"_s));
}

TEST_F(RealOperator, LockedCardIsARejectedSecret)
{
    EXPECT_EQ(openingRefusedWith(u"SimPuk"_s), failed(1, Session::SecretsRejected, marvola::bus::GsmSimPukRequired));
}
