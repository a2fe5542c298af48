// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/NetworkManagerSession.h>

#include "BusNames.h"
#include "Links.h"

#include <QtDBus/QDBusConnection>

#include <algorithm>

using namespace marvola;

namespace {

constexpr int Done = 0;
constexpr int NotKnown = -1;

} // namespace

NetworkManagerSession::NetworkManagerSession(QObject *parent)
    : NetworkManagerSession(QDBusConnection::systemBus(), bus::Service, parent)
{
}

NetworkManagerSession::NetworkManagerSession(const QDBusConnection &bus, const QString &serviceName, QObject *parent)
    : DataSessionManager(parent), d(std::make_unique<Links>(NetworkService(bus, serviceName), DefaultPatience))
{
    connect(d.get(), &Links::connected, this, &NetworkManagerSession::connected);
    connect(d.get(), &Links::openFailed, this, &NetworkManagerSession::openFailed);
    connect(d.get(), &Links::broken, this, &NetworkManagerSession::broken);
}

NetworkManagerSession::~NetworkManagerSession() = default;

std::chrono::milliseconds NetworkManagerSession::timeLimit() const
{
    return d->timeLimit;
}

void NetworkManagerSession::setTimeLimit(std::chrono::milliseconds limit)
{
    d->timeLimit = limit;
}

int NetworkManagerSession::openLink(const QString &profileName)
{
    return d->open(profileName);
}

void NetworkManagerSession::closeLink(int id)
{
    d->close(id);
}

int NetworkManagerSession::getDeviceInfo(int id, QString &interfaceName, unsigned long *value)
{
    const Link *link = d->openLink(id);
    if (!link || link->interfaceName().isEmpty())
        return NotKnown;
    interfaceName = link->interfaceName();
    if (value)
        *value = link->deviceType();
    return Done;
}

QStringList NetworkManagerSession::profileNames(std::chrono::milliseconds patience) const
{
    const NetworkService &service = d->service();
    const QDeadlineTimer deadline(std::max(patience, std::chrono::milliseconds(0)));
    const QDBusPendingCall list = service.profiles();
    if (!isAnsweredBefore(deadline, list))
        return {};
    QStringList names;
    const QStringList paths = objectPaths(list.reply()).value_or(QStringList());
    for (const QString &path : paths) {
        const QDBusPendingCall settings = service.profileSettings(path);
        if (!isAnsweredBefore(deadline, settings))
            break;
        if (const auto profile = profileOf(path, settings.reply()))
            names.append(profile->id);
    }
    names.removeDuplicates();
    names.sort();
    return names;
}
