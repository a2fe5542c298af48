// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// A player's data link on a phone with NetworkManager: brings up the profile that the user chooses (here: that is named
// on the command line), says over which interface, and takes it down again at the end.

#include <marvola/MP_MyLibrary.h>
#include <marvola/NetworkManagerSession.h>
#include <marvola/NetworkProfile.h>
#include <marvola/PlayerEngine.h>

#include <QtCore/QCoreApplication>

#include <cstdio>

namespace {

/// This player plays nothing; a real one has FFmpegPlayerEngine or its own.
class NoEngine : public PlayerEngine
{
public:
    int exchangeScanSettingA(int) override { return 0; }
    int exchangeScanSettingB(int) override { return 0; }
    bool getMediaKind(const QByteArray &, UINT8 &, UINT8 &) override { return false; }
    bool getClipInfo(const QByteArray &, ClipInfo &) override { return false; }
    void finishScan() override {}
};

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList profiles = NetworkManagerSession().profileNames();
    if (argc != 2) {
        std::fprintf(stderr, "usage: networkmanager-link PROFILE, one of: %s\n",
                     qPrintable(profiles.join(QLatin1String(", "))));
        return 2;
    }

    DataSessionManager::setFactory([] { return new NetworkManagerSession; });
    setNetworkProfileChooser([&](QString &profile) {
        profile = QString::fromLocal8Bit(argv[1]);
        return profiles.contains(profile) ? 0 : 1;
    });

    NoEngine engine;
    MP_MyLibrary library(&engine);
    const bool isUp = library.setupConnection(); // runs the event loop until the link is up or has failed
    std::puts(isUp ? "The link is up." : "There is no link.");
    return isUp ? 0 : 1;
}
