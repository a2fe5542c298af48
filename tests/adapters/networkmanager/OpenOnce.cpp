// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// Opens the profile that is named, says its interface, and ends at once, as a player does that is closed.

#include <marvola/NetworkManagerSession.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    NetworkManagerSession session;
    QObject::connect(&session, &NetworkManagerSession::connected, [&](int, const LinkInfo &info) {
        std::puts(qPrintable(info.interfaceName));
        QCoreApplication::quit();
    });
    QObject::connect(&session, &NetworkManagerSession::openFailed, [] { QCoreApplication::exit(1); });
    session.openLink(QString::fromLocal8Bit(argv[argc - 1]));
    return QCoreApplication::exec();
}
