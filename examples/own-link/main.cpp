// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// own-link PROFILE: a player's data link with a link service of its own, for devices without NetworkManager.

#include "ModemSession.h"

#include <marvola/MP_MyLibrary.h>
#include <marvola/NetworkProfile.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    // Both before the library is made.
    DataSessionManager::setFactory([] { return new ModemSession; });
    setNetworkProfileChooser([&](QString &profile) {
        profile = argc == 2 ? QString::fromLocal8Bit(argv[1]) : QString(); // a player asks its user
        return profile.isEmpty() ? 1 : 0;
    });

    MP_MyLibrary library(nullptr); // this program scans nothing, so it needs no engine
    QObject::connect(&library, &MP_MyLibrary::dataConnectionStatus,
                     [](int status) { std::printf("status %d\n", status); });
    const bool isUp = library.setupConnection(); // runs the event loop until the link is up or has failed
    std::puts(isUp ? "the link is up" : "there is no link");
    return isUp ? 0 : 1;
}
