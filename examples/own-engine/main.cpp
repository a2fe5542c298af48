// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// own-engine DIR: a player back end with an engine of its own. Indexes the collection in DIR and plays it artist by
// artist, in print.

#include "FolderEngine.h"

#include <marvola/MP_MyLibrary.h>
#include <marvola/MediaTypeRegistry.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>

#include <cstdio>

namespace {

void play(const QString &item)
{
    std::printf("    %s\n", qPrintable(item)); // a real player has sound
}

} // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: own-engine DIR\n", stderr);
        return 2;
    }
    QCoreApplication application(argc, argv);
    const QTemporaryDir settings; // a player has a directory that stays
    qputenv("JUV_APP_WRITE_PATH", settings.path().toUtf8());
    qputenv("TROVE_DATA_PATH", argv[1]);
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer,
                                              {QStringLiteral("mp3"), QStringLiteral("ogg"), QStringLiteral("mp4")});

    FolderEngine engine; // outlives the library and its refreshes
    MP_MyLibrary library(&engine);
    // Queued, so that the loop runs by the time the end is told, and the worker is done by the time it is looked at.
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &application,
        [&](UINT8) {
            if (!library.isMyLibraryRefreshing())
                application.quit();
        },
        Qt::QueuedConnection);
    library.refreshMyLibrary();
    application.exec();
    library.cancelRefreshMyLibrary(); // waits for the last steps of the worker

    const QStringList artists = library.getAllArtists();
    for (const QString &artist : artists) {
        std::printf("%s\n", qPrintable(artist));
        library.setCurrentPlayingList(library.getItemListOfArtist(artist));
        library.setActiveItem(0, true); // the list does not choose its active item
        for (QString item = library.getActiveItem(); !item.isNull(); item = library.getNextItem())
            play(item);
    }
    return 0;
}
