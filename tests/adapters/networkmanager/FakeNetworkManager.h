// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_FAKENETWORKMANAGER_H
#define MARVOLA_TESTS_NETWORKMANAGER_FAKENETWORKMANAGER_H

#include "BusNames.h"
#include "PrivateBus.h"

#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

#include <functional>
#include <memory>

/// A NetworkManager made of tables, which the test fills, spoils, slows down and kills. It answers on a thread of its
/// own, so that a caller that waits for it without an event loop is answered too.
///
/// Calls have names, by which they are logged and by which the test takes them over: "Get Connections",
/// "Get ActiveConnections", "GetSettings", "GetAll Active", "GetAll Device", "ActivateConnection",
/// "DeactivateConnection".
class FakeNetworkManager
{
public:
    /// A call that means nothing, is not logged, and is answered after all that came before it.
    static constexpr QLatin1String Ping = QLatin1String("Ping");
    using Answer = std::function<QDBusMessage(const QDBusMessage &call)>;

    explicit FakeNetworkManager(const PrivateBus &bus);
    ~FakeNetworkManager();
    FakeNetworkManager(const FakeNetworkManager &) = delete;
    FakeNetworkManager &operator=(const FakeNetworkManager &) = delete;

    // The tables. Each gives the path of what it adds.
    QString addProfile(const QString &id, const QString &uuid = QStringLiteral("u"));
    QString addDevice(const QString &ipInterface, uint type = 8);
    QString addActive(const QString &profile, uint state, const QString &device);
    /// The device that activations are carried by, and the state that they begin in.
    void activateWith(const QString &device, uint state);
    void setDeviceProperty(const QString &device, const QString &name, const QVariant &value);

    // What happens.
    /// Tells that an active connection is in a new state; one that is down is an object no more.
    void setActiveState(const QString &active, uint state);
    void tellDeviceState(const QString &device, uint state, uint reason);
    void emitSignal(const QString &path, QLatin1String interface, const QVariantList &arguments);
    /// Leaves the bus, as in a crash; it is off the bus when this comes back.
    void leave();

    // What goes wrong.
    void answer(const QString &call, Answer answer);
    void refuse(const QString &call, const QString &errorName);
    /// Leaves a call unanswered until answerHeld().
    void hold(const QString &call);
    /// The last that came is answered first.
    void answerHeld(const QString &call);
    void answerHeldAfter(const QString &call, int ms);

    /// The calls that came, by name; ActivateConnection and DeactivateConnection with their first argument.
    QStringList calls() const;
    int count(const QString &call) const;

private:
    class Object;
    void run(const std::function<void()> &task) const;

    QDBusConnection m_observer;
    bool m_hasLeft = false;
    QThread m_thread;
    std::unique_ptr<Object> m_object;
};

#endif
