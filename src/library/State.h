// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_LIBRARY_STATE_H
#define MARVOLA_LIBRARY_STATE_H

#include <marvola/MP_MyLibrary.h>

#include "library/Settings.h"
#include "library/StorageLocation.h"
#include "links/Bookmarks.h"
#include "links/History.h"
#include "net/DataConnection.h"
#include "playlist/CurrentList.h"
#include "playlist/PlaylistGroups.h"
#include "playlist/SavedLists.h"
#include "scan/LibraryRefresh.h"

#include <functional>
#include <map>
#include <memory>

/// Where the device keeps media and settings, as its environment says; empty where it says nothing.
struct StoragePlaces
{
    QString dataPath;
    QString card1Path;
    QString card2Path;
    QString writePath;
};

/// All that a library object holds: one member for each responsibility, in the order of construction.
struct MP_MyLibrary::State
{
    State(PlayerEngine *playerEngine, std::function<void(quint8)> progress);

    PlayerEngine *engine; // not owned
    StoragePlaces places;
    QString settingsFile;
    bool isSettingsFileUnread = false; ///< it is there, but what it holds is not known
    marvola::Settings settings;
    marvola::WorkDirectory workDirectory;
    std::map<QString, marvola::KnownLists> knownLists; ///< of each directory that was the work directory
    marvola::LibraryRefresh refresh;
    QStringList lastItemList;
    marvola::Bookmarks bookmarks;
    marvola::History history;
    marvola::CurrentList list;
    std::shared_ptr<marvola::DataConnection> connection; // kept alive by its own running calls, too

    /// A copy of all that a refresh works on, as it stands now.
    marvola::RefreshPlan refreshPlan() const;
    /// Makes \a dir the work directory if it exists and has room.
    bool adoptWorkDirectory(const QString &dir);
    marvola::PlaylistLimits playlistLimits() const;
    /// Makes the link service, and has \a library hear it and be heard.
    void makeConnection(MP_MyLibrary &library);
};

#endif
