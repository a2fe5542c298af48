// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_REALNETWORKMANAGER_H
#define MARVOLA_TESTS_NETWORKMANAGER_REALNETWORKMANAGER_H

#include "PrivateBus.h"

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

/// The machine's NetworkManager program, on a private bus and in network and mount namespaces without a name, which end
/// with their processes. It has one device, link0, whose other end is peer0, and no sight of the machine's network,
/// bus, settings or state. A modem's data can come over the interface ModemInterface, which is there for nothing else.
///
/// Its profiles: "Stream Link" comes up at once, "No Server" waits for DHCP in vain, "Waits" never gets a carrier,
/// "Operator GPRS" has no modem.
class RealNetworkManager
{
public:
    static constexpr QLatin1String ModemInterface = QLatin1String("wwan0");

    /// Says what this machine lacks for it; empty when there is nothing.
    static QString obstacle();

    explicit RealNetworkManager(const PrivateBus &bus);
    ~RealNetworkManager();
    RealNetworkManager(const RealNetworkManager &) = delete;
    RealNetworkManager &operator=(const RealNetworkManager &) = delete;

    /// Waits until link0 can be used.
    [[nodiscard]] bool isReady() const;
    /// Runs "ip ARGUMENTS" among its devices; gives what it prints.
    QString ip(const QString &arguments) const;
    /// Runs "nmcli ARGUMENTS" as another client of it.
    QString nmcli(const QStringList &arguments) const;
    /// Whether the connection of the profile \a id is up or coming up.
    bool isUp(const QString &id) const;
    /// Runs a program that finds it on the system bus; gives what it prints.
    QString run(const QString &program, const QStringList &arguments) const;
    /// Ends it as a crash would; its devices stay.
    void kill();
    /// What it said, for a test that fails.
    QByteArray log() const;

private:
    void addProfile(const QString &fileName, const QByteArray &content) const;
    void addProfiles() const;
    void addConfiguration() const;
    void makeNamespace();
    void start();

    const PrivateBus &m_bus;
    QTemporaryDir m_dir;
    QProcess m_keeper; ///< keeps the namespaces
    QProcess m_daemon;
};

#endif
