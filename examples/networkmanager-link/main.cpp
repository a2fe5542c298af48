// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// A player's data link on a phone with NetworkManager: brings up the profile that the user chooses (here: that is named
// on the command line), says what becomes of it, and takes it down again at the end.

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

/// Where a real player shows a dialog.
bool askTheUser(const QStringList &profiles, QString &profile)
{
    profile = QCoreApplication::arguments().value(1);
    if (profiles.contains(profile))
        return true;
    std::fprintf(stderr, "usage: networkmanager-link PROFILE, one of: %s\n",
                 qPrintable(profiles.join(QLatin1String(", "))));
    return false;
}

void showStatus(int status)
{
    std::printf("status %d\n", status);
}

void playTheStream()
{
    std::puts("The link is up.");
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    NoEngine engine;

    DataSessionManager::setFactory([] { return new NetworkManagerSession; }); // before the library is made
    setNetworkProfileChooser([](QString &profile) {
        return askTheUser(NetworkManagerSession().profileNames(), profile) ? 0 : 1; // 0: one was chosen
    });
    MP_MyLibrary library(&engine);
    QObject::connect(&library, &MP_MyLibrary::dataConnectionStatus, showStatus); // 3 opening, 2 failed, 4 broken
    if (library.setupConnection()) // runs the event loop until the link is up or has failed
        playTheStream();           // over the interface that /tmp/Marvola_GPRS_Link names
}
