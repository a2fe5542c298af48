// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Operation.h"

#include "RememberingEngine.h"

#include "net/LinkStatusFile.h"
#include "support/TableEngine.h"

#include <marvola/MP_MyLibrary.h>

#include <QtCore/QDir>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Outlives the operation: a process that has ended its operation ends at once.
struct Session
{
    TableEngine engine;
    std::unique_ptr<MP_MyLibrary> library;

    MP_MyLibrary &start()
    {
        library = std::make_unique<MP_MyLibrary>(&engine);
        return *library;
    }
};

int answer(bool done)
{
    return static_cast<int>(done ? Said::Done : Said::Failed);
}

int nothing()
{
    return static_cast<int>(Said::Nothing);
}

/// An operation of a library that has started and has had \a change made to it, in memory.
TracedRun::Steps steps(std::function<void(MP_MyLibrary &)> change, std::function<int(MP_MyLibrary &)> operation)
{
    const auto session = std::make_shared<Session>();
    return {[session, change = std::move(change)] { change(session->start()); },
            [session, operation = std::move(operation)] { return operation(*session->library); }};
}

void leaveAlone(const FaultPhone &)
{
}

void unchanged(MP_MyLibrary &)
{
}

void changeCurrentList(MP_MyLibrary &library)
{
    library.setCurrentPlayingList(QStringList{u"/new/1"_s, u"/new/2"_s});
}

void changeSettings(MP_MyLibrary &library)
{
    library.setVolume(7);
    library.setProxyIp(u"192.168.0.1"_s);
    library.setShuffle(false);
}

void changeLists(MP_MyLibrary &library)
{
    changeCurrentList(library);
    library.addItemToHistory(u"http://new"_s);
    library.addItemToBookmark(u"more"_s, u"http://more"_s);
}

TracedRun::Steps playlistStep(std::function<bool(MP_MyLibrary &)> operation)
{
    return steps(changeCurrentList,
                 [operation = std::move(operation)](MP_MyLibrary &library) { return answer(operation(library)); });
}

int refreshLibrary(MP_MyLibrary &library)
{
    quint8 last = 0;
    QObject::connect(
        &library, &MP_MyLibrary::refreshContinue, &library, [&last](UINT8 percent) { last = percent; },
        Qt::DirectConnection);
    library.refreshMyLibrary();
    while (library.isMyLibraryRefreshing())
        ::usleep(100);
    library.cancelRefreshMyLibrary();
    // A refresh that fails says so to nobody, but it ends, and says that.
    return last == 100 ? nothing() : answer(false);
}

TracedRun::Steps refresh(const FaultPhone &)
{
    return steps(unchanged, refreshLibrary);
}

TracedRun::Steps refreshRemembering(const FaultPhone &phone)
{
    struct RememberingSession
    {
        explicit RememberingSession(const QString &cacheFile) : engine(cacheFile) {}
        RememberingEngine engine;
        std::unique_ptr<MP_MyLibrary> library;
    };
    const auto session = std::make_shared<RememberingSession>(phone.cacheFile());
    return {[session] { session->library = std::make_unique<MP_MyLibrary>(&session->engine); },
            [session] { return refreshLibrary(*session->library); }};
}

/// While records are written the index reads as empty; a medium that takes no more of them leaves the first ones, and a
/// folder that cannot be read has no files.
bool isShorterIndex(const QString &list, const QStringList &found, const LibraryState &, const LibraryState &after)
{
    const QStringList index{u"media"_s, u"artists"_s, u"albums"_s, u"genres"_s};
    const auto isNew = [all = after.value(list)](const QString &entry) { return all.contains(entry); };
    return index.contains(list) && std::all_of(found.begin(), found.end(), isNew);
}

/// Nothing is remembered of what could not be looked at; what is remembered is true.
bool isForgetful(const QString &list, const QStringList &found, const LibraryState &before, const LibraryState &after)
{
    const auto isTrue = [all = after.value(list) + before.value(list)](const QString &entry) {
        return all.contains(entry);
    };
    return isShorterIndex(list, found, before, after) ||
           (list == u"answers"_s && std::all_of(found.begin(), found.end(), isTrue));
}

/// The interface of a link that was is worth nothing, and must not be taken for that of the new one.
bool isNoStatus(const QString &list, const QStringList &found, const LibraryState &, const LibraryState &)
{
    return list == u"status file"_s && found == QStringList(QString());
}

/// The two files are made one after the other.
bool isOneOfTheFiles(const QString &list, const QStringList &found, const LibraryState &before,
                     const LibraryState &after)
{
    return list == u"card"_s && found == QStringList{after.value(list).at(0), before.value(list).at(1)};
}

TracedRun::Steps writeStatus(const FaultPhone &phone)
{
    return {[] {},
            [path = phone.statusFile()] {
                auto file = marvola::LinkStatusFile::open(path);
                return answer(file && file->write(marvola::linkStatusLine(u"ppp0"_s)));
            }};
}

TracedRun::Steps saveNew(const FaultPhone &)
{
    return playlistStep([](MP_MyLibrary &library) { return library.savePlayList(u"night"_s) == 0; });
}

TracedRun::Steps saveOver(const FaultPhone &)
{
    return playlistStep([](MP_MyLibrary &library) { return library.savePlayList(u"evening"_s) == 0; });
}

TracedRun::Steps newPlaylist(const FaultPhone &)
{
    return steps(
        [](MP_MyLibrary &library) {
            library.loadPlayList(u"morning"_s);
            QStringList items{u"/new/1"_s};
            library.addItemsToPlayList(items);
        },
        [](MP_MyLibrary &library) { return answer(library.newPlayList() == 0); });
}

TracedRun::Steps renamePlaylist(const FaultPhone &)
{
    return playlistStep([](MP_MyLibrary &library) { return library.renamePlayList(u"evening"_s, u"late"_s); });
}

TracedRun::Steps deletePlaylist(const FaultPhone &)
{
    return playlistStep([](MP_MyLibrary &library) { return library.deletePlayList(u"evening"_s); });
}

TracedRun::Steps deleteAll(const FaultPhone &)
{
    return playlistStep([](MP_MyLibrary &library) { return library.deleteAllPlayLists(); });
}

TracedRun::Steps storeSettings(const FaultPhone &)
{
    return steps(changeSettings, [](MP_MyLibrary &library) {
        library.storeConfig();
        return nothing();
    });
}

TracedRun::Steps storeLists(const FaultPhone &)
{
    return steps(changeLists, [](MP_MyLibrary &library) {
        library.storeAllList();
        return nothing();
    });
}

TracedRun::Steps chooseCard(const FaultPhone &phone)
{
    return steps(unchanged, [card = phone.card()](MP_MyLibrary &library) {
        const QString before = library.getWorkDirectory();
        const bool done = library.setWorkDirectory(card);
        // A directory that was not taken must not be the work directory.
        return library.getWorkDirectory() == (done ? card : before) ? answer(done) : -1;
    });
}

TracedRun::Steps chooseAgain(const FaultPhone &)
{
    return steps(unchanged,
                 [](MP_MyLibrary &library) { return answer(library.setWorkDirectory(library.getWorkDirectory())); });
}

TracedRun::Steps probeSpace(const FaultPhone &phone)
{
    return steps(unchanged, [card = phone.card()](MP_MyLibrary &library) {
        static_cast<void>(library.hasEnoughSpace(card));
        return nothing();
    });
}

/// All that a player does in its life: faults while reading must not have what was not read overwritten.
TracedRun::Steps startAndStop(const FaultPhone &)
{
    const auto session = std::make_shared<Session>();
    return {[] {},
            [session] {
                MP_MyLibrary &library = session->start();
                changeSettings(library);
                changeLists(library);
                library.storeMyLibrary();
                return nothing();
            }};
}

/// The answers about some files are remembered already.
void rememberSome(const FaultPhone &phone)
{
    RememberingEngine(phone.cacheFile()).scan(phone.media().first(2));
}

void removeSettings(const FaultPhone &phone)
{
    QDir(phone.settingsFolder()).removeRecursively();
}

/// The power was cut during a rename: the new copy is whole, the file's space went to nobody.
void blankListBesideItsCopy(const FaultPhone &phone)
{
    const QByteArray list = FaultPhone::get(phone.listFile());
    FaultPhone::put(phone.listFile() + u".new"_s, list);
    FaultPhone::put(phone.listFile(), QByteArray(list.size(), '\0'));
}

} // namespace

const std::vector<Operation> &operations()
{
    static const std::vector<Operation> all = {
        {"setWorkDirectory, new", Changes::NoneOfThem, leaveAlone, chooseCard, isOneOfTheFiles},
        {"setWorkDirectory, again", Changes::NoneOfThem, leaveAlone, chooseAgain, nullptr},
        {"hasEnoughSpace", Changes::NoneOfThem, leaveAlone, probeSpace, nullptr},
        {"storeConfig", Changes::Them, leaveAlone, storeSettings, nullptr},
        // Makes the file, by a rename over nothing.
        {"storeConfig, first", Changes::NewSettings, removeSettings, storeSettings, nullptr},
        {"storeAllList", Changes::ListFile, leaveAlone, storeLists, nullptr},
        {"savePlayList, new", Changes::ListFile, leaveAlone, saveNew, nullptr},
        {"savePlayList, over", Changes::ListFile, leaveAlone, saveOver, nullptr},
        {"newPlayList", Changes::ListFile, leaveAlone, newPlaylist, nullptr},
        {"renamePlayList", Changes::ListFile, leaveAlone, renamePlaylist, nullptr},
        {"deletePlayList", Changes::ListFile, leaveAlone, deletePlaylist, nullptr},
        {"deleteAllPlayLists", Changes::ListFile, leaveAlone, deleteAll, nullptr},
        {"refresh", Changes::Them, leaveAlone, refresh, isShorterIndex},
        {"refresh, remembering answers", Changes::Answers, rememberSome, refreshRemembering, isForgetful},
        {"status file", Changes::NoneOfThem, leaveAlone, writeStatus, isNoStatus},
        {"start and stop", Changes::Them, leaveAlone, startAndStop, nullptr},
        // Begins with a copy, which is none of the files whose sectors a power cut can mix.
        {"start after a power cut", Changes::NoneOfThem, blankListBesideItsCopy, startAndStop, nullptr},
    };
    return all;
}
