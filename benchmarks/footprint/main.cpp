// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT
//
// marvola_footprint make DIR empty|phone|full: makes a device in DIR.
// marvola_footprint measure DIR empty|phone|full: prints, for each step of a player's life on it, how much memory the
// process then holds and the most that the step took, in KiB above what it had before there was a library.

#include "Collection.h"
#include "NumberedEngine.h"
#include "ProcessMemory.h"

#include <marvola/MP_MyLibrary.h>
#include <marvola/MediaTypeRegistry.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QThread>

#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>

namespace {

constexpr int Full = 65535;

struct Case
{
    const char *name;
    bool isIndexFull; ///< its size is fixed, and not all of the media files fit
    Amounts amounts;
};

/// What a device holds: nothing, what the limits allow where no settings file says otherwise, and the most there can
/// be.
constexpr Case Cases[] = {
    {"empty", false, {1, 1, 0, 0, 0, 0}},
    {"phone", false, {100, 5, 50, 2, 20, 20}},
    {"full", true, {Full, 1, Full, Full, Full, Full}},
};

const Case *caseOf(const char *name)
{
    for (const Case &each : Cases) {
        if (std::strcmp(each.name, name) == 0)
            return &each;
    }
    return nullptr;
}

void refresh(MP_MyLibrary &library)
{
    library.refreshMyLibrary();
    while (library.isMyLibraryRefreshing())
        QThread::msleep(5);
    library.cancelRefreshMyLibrary();
}

void measure(const char *step, const std::function<void()> &work)
{
    static const qint64 inUseAtFirst = ProcessMemory::inUse();
    static const qint64 heldAtFirst = ProcessMemory::held();
    static const qint64 residentAtFirst = ProcessMemory::statusOf("VmRSS");
    const bool hasPeak = ProcessMemory::forgetPeak();
    work();
    const qint64 peak = hasPeak ? ProcessMemory::peak() - residentAtFirst : -1;
    const qint64 inUse = ProcessMemory::inUse() - inUseAtFirst;
    std::printf("%-10s %8lld %8lld %8lld\n", step, static_cast<long long>(inUse),
                static_cast<long long>(ProcessMemory::held() - heldAtFirst), static_cast<long long>(peak));
}

/// Whether \a library turned out to hold what \a device has.
bool isWhole(MP_MyLibrary &library, const Case &device)
{
    const Amounts &amounts = device.amounts;
    const auto indexed = static_cast<int>(library.getAllMedia().size());
    const int artists = (indexed + amounts.filesPerArtist - 1) / amounts.filesPerArtist;
    const bool isIndexWhole =
        device.isIndexFull ? indexed > 0 && indexed < amounts.mediaFiles : indexed == amounts.mediaFiles;
    return isIndexWhole && library.getAllArtists().size() == artists &&
           library.getCurrentPlayingListNumber() == static_cast<unsigned>(amounts.items) &&
           library.getItemListOfBookmark().size() == amounts.bookmarks &&
           library.getItemListOfHistory().size() == amounts.history &&
           library.getAllPlayLists().size() == amounts.playlists;
}

bool run(NumberedEngine &engine, const Case &device)
{
    std::unique_ptr<MP_MyLibrary> library;
    std::printf("%-10s %8s %8s %8s\n", "step", "in use", "held", "peak");
    measure("none", [] {});
    measure("made", [&] { library = std::make_unique<MP_MyLibrary>(&engine); });
    measure("refreshed", [&] { refresh(*library); });
    measure("queried", [&] { library->getAllMedia(); });
    measure("stored", [&] { library->storeMyLibrary(); });
    const bool result = isWhole(*library, device);
    measure("gone", [&] { library.reset(); });
    return result;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const Case *chosen = argc == 4 ? caseOf(argv[3]) : nullptr;
    const QString dir = QDir(QString::fromLocal8Bit(argc == 4 ? argv[2] : ".")).absolutePath();
    if (chosen && std::strcmp(argv[1], "make") == 0)
        return makeCollection(dir, chosen->amounts) ? 0 : 1;
    if (!chosen || std::strcmp(argv[1], "measure") != 0) {
        std::fputs("usage: marvola_footprint make|measure DIR empty|phone|full\n", stderr);
        return 2;
    }
    qputenv("JUV_APP_WRITE_PATH", QFile::encodeName(dir));
    qputenv("TROVE_DATA_PATH", QFile::encodeName(dir));
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, {QStringLiteral("mp3")});
    NumberedEngine engine(chosen->amounts.filesPerArtist);
    if (!run(engine, *chosen)) {
        std::fputs("marvola_footprint: the library does not hold what the device has\n", stderr);
        return 1;
    }
    return 0;
}
