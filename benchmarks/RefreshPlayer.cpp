// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// refresh_player FOLDER WORK: takes in the media files of a folder as a player does that has the library and its FFmpeg
// engine and nothing else, no command line, no link service. Settings and lists lie in WORK, which is made. Prints how
// many files the index then holds.

#include <marvola/ConfigFile.h>
#include <marvola/FFmpegPlayerEngine.h>
#include <marvola/MP_MyLibrary.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int MostFiles = 10000;

bool makeSettings(const QString &work)
{
    if (!QDir().mkpath(work + u"/setup"_s))
        return false;
    ConfigFile settings(work + u"/setup/juv_marvola.cfg"_s, false);
    return settings.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, MostFiles) && settings.flush();
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fputs("usage: refresh_player FOLDER WORK\n", stderr);
        return 2;
    }
    const QCoreApplication application(argc, argv);
    if (!makeSettings(QString::fromLocal8Bit(argv[2]))) {
        std::fputs("refresh_player: cannot write the settings\n", stderr);
        return 1;
    }
    qputenv("JUV_APP_WRITE_PATH", argv[2]);
    qputenv("TROVE_DATA_PATH", argv[1]);
    FFmpegPlayerEngine engine;
    FFmpegPlayerEngine::registerExtensions();
    MP_MyLibrary library(&engine);
    engine.setTextCodec(library.getCodecForClip());
    engine.setCrashNote(QString::fromLocal8Bit(argv[2]) + u"/crash-note"_s);
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &application,
        [&](UINT8) {
            if (!library.isMyLibraryRefreshing())
                QCoreApplication::quit();
        },
        Qt::QueuedConnection);
    library.refreshMyLibrary();
    QCoreApplication::exec();
    library.cancelRefreshMyLibrary(); // waits for the last steps of the worker
    std::printf("%lld files\n", static_cast<long long>(library.getAllMedia().size()));
    return 0;
}
