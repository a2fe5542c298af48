// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include "playlist/PlaylistCatalogue.h"
#include "playlist/PlaylistFile.h"
#include "playlist/SavedLists.h"

using marvola::shuffleOf;

marvola::PlaylistLimits MP_MyLibrary::State::playlistLimits() const
{
    return {settings.limits.playlists, settings.limits.items};
}

void MP_MyLibrary::storeAllList()
{
    marvola::storeSavedLists(d->workDirectory.listFile(), d->history.entries(), d->bookmarks.urls(), d->list,
                             d->knownLists[d->workDirectory.canonicalPath()]);
}

void MP_MyLibrary::restoreMyLibrary()
{
    QStringList history;
    QMap<QString, QString> bookmarks = d->bookmarks.urls();
    marvola::restoreSavedLists(d->workDirectory.listFile(), shuffleOf(d->settings.shuffle), history, bookmarks, d->list,
                               d->knownLists[d->workDirectory.canonicalPath()]);
    for (const QString &url : std::as_const(history))
        d->history.append(url);
    d->bookmarks.setUrls(bookmarks);
}

UINT8 MP_MyLibrary::newPlayList()
{
    return static_cast<UINT8>(marvola::newPlayList(d->workDirectory.listFile(), d->playlistLimits(), d->list));
}

UINT8 MP_MyLibrary::savePlayList(const QString &name)
{
    return static_cast<UINT8>(marvola::savePlayList(d->workDirectory.listFile(), name, d->playlistLimits(), d->list));
}

QStringList MP_MyLibrary::loadPlayList(const QString &name)
{
    return marvola::loadPlayList(d->workDirectory.listFile(), name, shuffleOf(d->settings.shuffle), d->list);
}

bool MP_MyLibrary::deletePlayList(const QString &name)
{
    return marvola::deletePlayList(d->workDirectory.listFile(), name);
}

bool MP_MyLibrary::deleteAllPlayLists()
{
    return marvola::deleteAllPlayLists(d->workDirectory.listFile());
}

bool MP_MyLibrary::renamePlayList(const QString &oldName, const QString &newName)
{
    return marvola::renamePlayList(d->workDirectory.listFile(), oldName, newName, d->list);
}

bool MP_MyLibrary::hasPlayList(const QString &name) const
{
    return marvola::hasPlayList(d->workDirectory.listFile(), name);
}

QString MP_MyLibrary::getDefaultPlayListName() const
{
    return marvola::getDefaultPlayListName(d->workDirectory.listFile());
}
