// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// What an integrator's first program does: make the library, refresh, list. Prints the work directory and what was
// found; exits 0 only when the one file of its own was found.

#include <marvola/ConfigFile.h>
#include <marvola/DataSessionManager.h>
#include <marvola/MP_MyLibrary.h>
#include <marvola/MediaTypeRegistry.h>
#include <marvola/NetworkProfile.h>
#include <marvola/PlayerEngine.h>
#include <marvola/TROVE_Global.h>
#include <marvola/Types.h>
#ifdef WITH_FFMPEG
#    include <marvola/FFmpegPlayerEngine.h>
#endif
#ifdef WITH_NETWORKMANAGER
#    include <marvola/NetworkManagerSession.h>
#endif

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <cstdio>
#include <utility>

class NameEngine : public PlayerEngine
{
public:
    int exchangeScanSettingA(int value) override { return std::exchange(m_settingA, value); }
    int exchangeScanSettingB(int value) override { return std::exchange(m_settingB, value); }
    bool getMediaKind(const QByteArray &, UINT8 &hasAudio, UINT8 &hasVideo) override
    {
        hasAudio = 1;
        hasVideo = 0;
        return true;
    }
    bool getClipInfo(const QByteArray &, ClipInfo &info) override
    {
        info.artist = QStringLiteral("An artist");
        return true;
    }
    void finishScan() override {}

private:
    int m_settingA = 1;
    int m_settingB = 1;
};

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QTemporaryDir dir;
    qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(dir.path()));
    qputenv("TROVE_DATA_PATH", QFile::encodeName(dir.path()));
    QFile song(dir.filePath(QStringLiteral("song.mp3")));
    if (!song.open(QIODevice::WriteOnly))
        return 1;
    song.close();

    NameEngine engine;
    MP_MyLibrary library(&engine);
    int last = -1;
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &library, [&last](UINT8 percent) { last = percent; },
        Qt::DirectConnection);
    library.refreshMyLibrary();
    while (library.isMyLibraryRefreshing())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    library.cancelRefreshMyLibrary();
    library.storeMyLibrary();
    const QStringList found = library.getItemListOfArtist(QStringLiteral("An artist"));
    std::printf("%s: %lld found, last progress %d\n", qPrintable(library.getWorkDirectory()),
                static_cast<long long>(found.size()), last);
#ifdef WITH_FFMPEG
    FFmpegPlayerEngine real;
    UINT8 audio = 0;
    UINT8 video = 0;
    if (real.getMediaKind(QFile::encodeName(song.fileName()), audio, video))
        return 1; // an empty file is no media
#endif
#ifdef WITH_NETWORKMANAGER
    QString interface;
    if (NetworkManagerSession().getDeviceInfo(1, interface, nullptr) == 0)
        return 1; // no link was opened
#endif
    return found == QStringList(song.fileName()) && last == 100 ? 0 : 1;
}
