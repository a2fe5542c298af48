// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_FAKEMODEMMANAGER_H
#define MARVOLA_TESTS_NETWORKMANAGER_FAKEMODEMMANAGER_H

#include "PrivateBus.h"

#include <QtCore/QMap>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVirtualObject>

/// As much of ModemManager as the real NetworkManager needs: one modem, registered with its operator, whose data comes
/// over an interface that is there already. It answers from the event loop.
///
/// What a connection is asked for decides what becomes of it: with one of the APNs that refuse() names it fails.
class FakeModemManager : public QDBusVirtualObject
{
    Q_OBJECT

public:
    FakeModemManager(const PrivateBus &bus, const QString &dataInterface);
    ~FakeModemManager() override;
    FakeModemManager(const FakeModemManager &) = delete;
    FakeModemManager &operator=(const FakeModemManager &) = delete;

    /// Fails each connection to \a apn with ModemManager's error \a name.
    void refuse(const QString &apn, const QString &name) { m_refused.insert(apn, name); }
    /// The operator ends the connection.
    void loseNetwork();

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;
    QString introspect(const QString &) const override { return {}; }

    using Interfaces = QMap<QString, QVariantMap>;
    using Objects = QMap<QDBusObjectPath, Interfaces>;

private:
    QDBusMessage answer(const QDBusMessage &call);
    QDBusMessage connectAs(const QDBusMessage &call);
    void change(const QString &path, const QString &interface, const QVariantMap &values);
    void changeState(int state, uint reason);

    QDBusConnection m_bus;
    QString m_dataInterface;
    Objects m_objects;
    QMap<QString, QString> m_refused;
};

#endif
