// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_NETWORKMANAGER_SESSIONNOTES_H
#define MARVOLA_TESTS_NETWORKMANAGER_SESSIONNOTES_H

#include <marvola/NetworkManagerSession.h>

#include <QtCore/QStringList>

/// Notes what a session tells, one line each.
inline void note(NetworkManagerSession &session, QStringList &events)
{
    using Session = NetworkManagerSession;
    QObject::connect(&session, &Session::connected, [&events](int id, const LinkInfo &info) {
        events.append(QStringLiteral("connected %1 %2 %3").arg(id).arg(info.profileName, info.interfaceName));
    });
    QObject::connect(&session, &Session::openFailed, [&events](int id, unsigned short error, unsigned short detail) {
        events.append(QStringLiteral("failed %1 %2 %3").arg(id).arg(error).arg(detail));
    });
    QObject::connect(&session, &Session::broken, [&events](int id, const LinkInfo &info) {
        events.append(QStringLiteral("broken %1 %2 %3").arg(id).arg(info.profileName, info.interfaceName));
    });
}

#endif
