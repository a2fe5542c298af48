// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "OpenErrors.h"

#include "BusNames.h"

#include <QtDBus/QDBusMessage>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct ErrorName
{
    QLatin1String name;
    OpenError error;
};

constexpr ErrorName ErrorNames[] = {
    {"org.freedesktop.DBus.Error.ServiceUnknown"_L1, OpenError::ServiceMissing},
    {"org.freedesktop.DBus.Error.NameHasNoOwner"_L1, OpenError::ServiceMissing},
    // Calls carry no time limit of their own, so this is the bus telling that the service took too long to start.
    {"org.freedesktop.DBus.Error.TimedOut"_L1, OpenError::ServiceMissing},
    // Likewise that the service left without an answer.
    {"org.freedesktop.DBus.Error.NoReply"_L1, OpenError::ServiceVanished},
    {"org.freedesktop.DBus.Error.Disconnected"_L1, OpenError::BusUnavailable},
    {"org.freedesktop.DBus.Error.NoServer"_L1, OpenError::BusUnavailable},
    {"org.freedesktop.DBus.Error.AccessDenied"_L1, OpenError::NotPermitted},
    {"org.freedesktop.NetworkManager.PermissionDenied"_L1, OpenError::NotPermitted},
    {"org.freedesktop.NetworkManager.UnknownConnection"_L1, OpenError::ProfileNotFound},
    {"org.freedesktop.NetworkManager.UnknownDevice"_L1, OpenError::NoDevice},
    {"org.freedesktop.DBus.Error.UnknownObject"_L1, OpenError::UnexpectedAnswer},
    {"org.freedesktop.DBus.Error.UnknownInterface"_L1, OpenError::UnexpectedAnswer},
    {"org.freedesktop.DBus.Error.UnknownMethod"_L1, OpenError::UnexpectedAnswer},
    {"org.freedesktop.DBus.Error.UnknownProperty"_L1, OpenError::UnexpectedAnswer},
    {"org.freedesktop.DBus.Error.InvalidArgs"_L1, OpenError::UnexpectedAnswer},
};

// The bus tried to start the service, by itself or through systemd, and could not.
constexpr QLatin1String StartErrors[] = {"org.freedesktop.DBus.Error.Spawn."_L1, "org.freedesktop.systemd1."_L1};

} // namespace

OpenError openErrorOf(const QDBusMessage &error)
{
    const QString name = error.errorName();
    for (const ErrorName &known : ErrorNames) {
        if (name == known.name)
            return known.error;
    }
    const bool isNotStarted = std::any_of(std::begin(StartErrors), std::end(StartErrors),
                                          [&name](QLatin1String group) { return name.startsWith(group); });
    return isNotStarted ? OpenError::ServiceMissing : OpenError::Refused;
}

bool isServiceGone(OpenError error)
{
    return error == OpenError::ServiceMissing || error == OpenError::ServiceVanished ||
           error == OpenError::BusUnavailable;
}

OpenError openErrorOfReason(uint reason)
{
    switch (reason) {
    case bus::NoSecrets:
    case bus::GsmPinCheckFailed:
    case bus::GsmSimPinRequired:
    case bus::GsmSimPukRequired:
    case bus::SimPinIncorrect:
        return OpenError::SecretsRejected;
    default:
        return OpenError::ActivationFailed;
    }
}

} // namespace marvola
