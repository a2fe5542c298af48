// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// qt-signals DIR: the library's signals in a program with an event loop. The refresh of DIR runs on a thread of its
// own; its progress is shown on the thread of the user interface, which stays free meanwhile.

#include "Screen.h"

#include <marvola/PlayerEngine.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>

#include <atomic>
#include <cstdio>

namespace {

/// An engine that finds everything to be audio.
class AudioEngine : public PlayerEngine
{
public:
    int exchangeScanSettingA(int) override { return 0; }
    int exchangeScanSettingB(int) override { return 0; }
    bool getMediaKind(const QByteArray &, UINT8 &hasAudio, UINT8 &hasVideo) override
    {
        hasAudio = 1;
        hasVideo = 0;
        return true;
    }
    bool getClipInfo(const QByteArray &, ClipInfo &) override { return false; }
    void finishScan() override {}
};

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: qt-signals DIR\n", stderr);
        return 2;
    }
    const QCoreApplication application(argc, argv);
    const QTemporaryDir settings; // a player has a directory that stays
    qputenv("JUV_APP_WRITE_PATH", settings.path().toUtf8());
    qputenv("TROVE_DATA_PATH", argv[1]);

    AudioEngine engine;
    MP_MyLibrary library(&engine);
    Screen screen(library);
    QObject::connect(&screen, &Screen::done, &application, &QCoreApplication::quit, Qt::QueuedConnection);

    // A function that is connected without an object of the interface's thread runs on the worker: it must touch
    // nothing but what threads may share.
    std::atomic<int> calls = 0;
    QObject::connect(&library, &MP_MyLibrary::refreshContinue, [&calls](UINT8) { ++calls; });

    library.refreshMyLibrary(); // returns at once
    const int result = QCoreApplication::exec();
    library.cancelRefreshMyLibrary(); // before the engine goes
    std::printf("%s\n", calls > 0 ? "the worker called, too" : "the worker never called");
    return result;
}
