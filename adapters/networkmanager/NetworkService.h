// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_NETWORKMANAGER_NETWORKSERVICE_H
#define MARVOLA_NETWORKMANAGER_NETWORKSERVICE_H

#include <QtCore/QDeadlineTimer>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>

#include <functional>

namespace marvola {

/// The calls that are made to NetworkManager. Each is sent at once and answered when the service does so; there is no
/// time limit in a call, because an answer that comes late must still be heard: it may tell that a link is up.
///
/// A call that cannot be sent is answered with an error, like any other.
class NetworkService
{
public:
    NetworkService(const QDBusConnection &bus, const QString &name) : m_bus(bus), m_name(name) {}

    const QDBusConnection &bus() const { return m_bus; }
    const QString &name() const { return m_name; }

    /// Answered as objectPaths() reads it.
    QDBusPendingCall profiles() const;
    QDBusPendingCall activeConnections() const;
    /// Answered as profileOf() reads it.
    QDBusPendingCall profileSettings(const QString &profile) const;
    /// Answered as propertiesOf() reads it.
    QDBusPendingCall properties(const QString &object, QLatin1String interface) const;
    /// Answered as activePathOf() reads it.
    QDBusPendingCall activate(const QString &profile) const;
    QDBusPendingCall deactivate(const QString &activeConnection) const;

private:
    QDBusPendingCall send(const QString &object, QLatin1String interface, QLatin1String method,
                          const QVariantList &arguments = {}) const;

    QDBusConnection m_bus;
    QString m_name;
};

/// Calls \a then with the answer of \a call, an error perhaps, from the event loop; not at all once \a context is gone.
void whenAnswered(const QDBusPendingCall &call, QObject *context, std::function<void(const QDBusMessage &)> then);

/// Waits for the answer of \a call without running the event loop.
/// \return whether it is there
[[nodiscard]] bool isAnsweredBefore(const QDeadlineTimer &deadline, const QDBusPendingCall &call);

} // namespace marvola

#endif
