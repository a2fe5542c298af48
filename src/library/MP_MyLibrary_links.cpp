// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include "links/PresetLinks.h"

int MP_MyLibrary::addItemToBookmark(const QString &name, const QString &url)
{
    return static_cast<int>(d->bookmarks.add(name, url, d->settings.limits.bookmarks));
}

bool MP_MyLibrary::renameBookmarName(const QString &oldName, const QString &newName)
{
    return d->bookmarks.rename(oldName, newName);
}

bool MP_MyLibrary::hasBookmark(const QString &name) const
{
    return d->bookmarks.contains(name);
}

void MP_MyLibrary::removeItemsFromBookmark(QStringList &names)
{
    d->bookmarks.remove(names);
}

QStringList MP_MyLibrary::getItemListOfBookmark() const
{
    return d->bookmarks.names();
}

QString MP_MyLibrary::getDefaultBookmarkName() const
{
    return d->bookmarks.unusedName(marvola::processDefaultNameCounter());
}

void MP_MyLibrary::addItemToHistory(const QString &url)
{
    d->history.add(url, d->settings.limits.history);
}

QStringList MP_MyLibrary::getItemListOfHistory()
{
    d->lastItemList = d->history.entries();
    return d->lastItemList;
}

QStringList MP_MyLibrary::getItemListOfPreconfig() const
{
    return marvola::presetLinks(d->settings.presetUrls);
}
