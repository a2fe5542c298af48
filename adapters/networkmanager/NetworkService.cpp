// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "NetworkService.h"

#include "BusNames.h"

#include <QtCore/QThread>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCallWatcher>

#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

constexpr int NoTimeLimit = std::numeric_limits<int>::max();
constexpr unsigned long PollMs = 1;

QVariant pathArgument(const QString &path)
{
    return QVariant::fromValue(QDBusObjectPath(path));
}

} // namespace

QDBusPendingCall NetworkService::profiles() const
{
    return send(bus::SettingsPath, bus::PropertiesInterface, "Get"_L1,
                {QString(bus::SettingsInterface), QString(bus::Profiles)});
}

QDBusPendingCall NetworkService::activeConnections() const
{
    return send(bus::RootPath, bus::PropertiesInterface, "Get"_L1,
                {QString(bus::RootInterface), QString(bus::ActiveConnections)});
}

QDBusPendingCall NetworkService::profileSettings(const QString &profile) const
{
    return send(profile, bus::ProfileInterface, "GetSettings"_L1);
}

QDBusPendingCall NetworkService::properties(const QString &object, QLatin1String interface) const
{
    return send(object, bus::PropertiesInterface, "GetAll"_L1, {QString(interface)});
}

QDBusPendingCall NetworkService::activate(const QString &profile) const
{
    // No device and no object are named, so that the service chooses what fits the profile.
    return send(bus::RootPath, bus::RootInterface, "ActivateConnection"_L1,
                {pathArgument(profile), pathArgument(bus::NoPath), pathArgument(bus::NoPath)});
}

QDBusPendingCall NetworkService::deactivate(const QString &activeConnection) const
{
    return send(bus::RootPath, bus::RootInterface, "DeactivateConnection"_L1, {pathArgument(activeConnection)});
}

QDBusPendingCall NetworkService::send(const QString &object, QLatin1String interface, QLatin1String method,
                                      const QVariantList &arguments) const
{
    QDBusMessage message = QDBusMessage::createMethodCall(m_name, object, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall call = m_bus.asyncCall(message, NoTimeLimit);
    // Without a connection Qt gives a call that counts as finished but never tells a watcher so.
    if (call.isFinished() && call.isError())
        return QDBusPendingCall::fromError(call.error());
    return call;
}

void whenAnswered(const QDBusPendingCall &call, QObject *context, std::function<void(const QDBusMessage &)> then)
{
    auto *watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [then = std::move(then)](QDBusPendingCallWatcher *finished) {
                         finished->deleteLater();
                         then(finished->reply());
                     });
}

bool isAnsweredBefore(const QDeadlineTimer &deadline, const QDBusPendingCall &call)
{
    // Qt's own wait ends with the call's time limit only, and these have none.
    while (!call.isFinished() && !deadline.hasExpired())
        QThread::msleep(PollMs);
    return call.isFinished();
}

} // namespace marvola
