// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "OpenErrors.h"

#include <QtDBus/QDBusMessage>

#include <gmock/gmock.h>

using namespace Qt::StringLiterals;
using marvola::OpenError;

TEST(OpenErrors, ByTheNameOfTheError)
{
    const struct
    {
        const char *name;
        OpenError error;
    } rows[] = {
        {"org.freedesktop.DBus.Error.ServiceUnknown", OpenError::ServiceMissing},
        {"org.freedesktop.DBus.Error.NameHasNoOwner", OpenError::ServiceMissing},
        {"org.freedesktop.DBus.Error.Spawn.ChildExited", OpenError::ServiceMissing},
        {"org.freedesktop.DBus.Error.TimedOut", OpenError::ServiceMissing},
        {"org.freedesktop.systemd1.NoSuchUnit", OpenError::ServiceMissing},
        {"org.freedesktop.systemd10", OpenError::Refused},
        {"org.freedesktop.DBus.Error.NoReply", OpenError::ServiceVanished},
        {"org.freedesktop.DBus.Error.Disconnected", OpenError::BusUnavailable},
        {"org.freedesktop.DBus.Error.NoServer", OpenError::BusUnavailable},
        {"org.freedesktop.DBus.Error.AccessDenied", OpenError::NotPermitted},
        {"org.freedesktop.NetworkManager.PermissionDenied", OpenError::NotPermitted},
        {"org.freedesktop.NetworkManager.UnknownConnection", OpenError::ProfileNotFound},
        {"org.freedesktop.NetworkManager.UnknownDevice", OpenError::NoDevice},
        {"org.freedesktop.DBus.Error.UnknownMethod", OpenError::UnexpectedAnswer},
        {"org.freedesktop.DBus.Error.UnknownMethodX", OpenError::Refused},
        {"org.freedesktop.DBus.Error.Spawn", OpenError::Refused},
        {"org.freedesktop.NetworkManager.ConnectionNotAvailable", OpenError::Refused},
        {"any.other", OpenError::Refused},
    };
    for (const auto &row : rows) {
        const QDBusMessage error = QDBusMessage::createError(QString::fromLatin1(row.name), u"no"_s);
        EXPECT_EQ(marvola::openErrorOf(error), row.error) << row.name;
    }
}

TEST(OpenErrors, NobodyIsLeftToAskWithoutServiceOrBus)
{
    for (const OpenError gone : {OpenError::ServiceMissing, OpenError::ServiceVanished, OpenError::BusUnavailable})
        EXPECT_TRUE(marvola::isServiceGone(gone)) << gone;
    for (const OpenError other : {OpenError::ProfileNotFound, OpenError::NotPermitted, OpenError::Refused,
                                  OpenError::UnexpectedAnswer, OpenError::Closed})
        EXPECT_FALSE(marvola::isServiceGone(other)) << other;
}

TEST(OpenErrors, SecretsAreToldFromOtherFailures)
{
    for (const uint secrets : {7U, 34U, 46U, 47U, 59U})
        EXPECT_EQ(marvola::openErrorOfReason(secrets), OpenError::SecretsRejected) << secrets;
    for (const uint other : {0U, 1U, 5U, 6U, 8U, 36U, 45U, 48U, 60U, 4000000000U})
        EXPECT_EQ(marvola::openErrorOfReason(other), OpenError::ActivationFailed) << other;
}
