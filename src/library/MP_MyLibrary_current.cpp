// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

using marvola::pickFirstOf;
using marvola::repeatOf;
using marvola::shuffleOf;

void MP_MyLibrary::setCurrentPlayingListName(const QString &name)
{
    d->list.setName(name);
}

QString MP_MyLibrary::getCurrentPlayingListName() const
{
    return d->list.name();
}

void MP_MyLibrary::setCurrentPlayingList(const QString &item)
{
    d->list.setItem(item);
}

void MP_MyLibrary::setCurrentPlayingList(const QStringList &items)
{
    d->list.setItems(items, d->settings.limits.items, shuffleOf(d->settings.shuffle));
}

unsigned int MP_MyLibrary::getCurrentPlayingListNumber() const
{
    return static_cast<unsigned int>(d->list.count());
}

QStringList MP_MyLibrary::getCurrentPlayingList() const
{
    return d->list.items();
}

void MP_MyLibrary::clearCurrentPlayingList()
{
    d->list.clear();
}

bool MP_MyLibrary::hasItem(const QString &item) const
{
    return d->list.contains(item);
}

void MP_MyLibrary::editUrl(const QString &oldUrl, const QString &newUrl)
{
    d->list.editUrl(oldUrl, newUrl);
}

void MP_MyLibrary::setTemporaryPlaylistState(bool temporary)
{
    d->list.setTemporary(temporary);
}

bool MP_MyLibrary::getTemporaryPlaylistState() const
{
    return d->list.isTemporary();
}

void MP_MyLibrary::setCurrentPlaylistChangedState(bool changed)
{
    d->list.setChanged(changed);
}

bool MP_MyLibrary::getCurrentPlaylistChangedState() const
{
    return d->list.isChanged();
}

void MP_MyLibrary::setItemFlag(const QString &item, MP_MEDIA_FILE_TYPE_T flag)
{
    d->list.setFlag(item, flag);
}

MP_MEDIA_FILE_TYPE_T MP_MyLibrary::getItemFlag(const QString &item) const
{
    return d->list.flag(item);
}

bool MP_MyLibrary::addItemsToPlayList(QStringList &items)
{
    return d->list.append(items, d->settings.limits.items, shuffleOf(d->settings.shuffle));
}

bool MP_MyLibrary::addItemsToPlayList(QValueList<unsigned short> &indices)
{
    // Deliberate: no positions are a failure, while no items are none.
    if (indices.isEmpty())
        return false;
    QStringList items;
    for (const unsigned short index : std::as_const(indices)) {
        if (index < d->lastItemList.size())
            items.append(d->lastItemList.at(index));
    }
    return addItemsToPlayList(items);
}

bool MP_MyLibrary::addBookmarksToPlayList(QStringList &names)
{
    QStringList urls = d->bookmarks.urlsOf(names);
    return addItemsToPlayList(urls);
}

bool MP_MyLibrary::removeItemFromPlayList(unsigned short index)
{
    return d->list.remove(index);
}

bool MP_MyLibrary::itemUp(unsigned short index)
{
    return d->list.moveUp(index, shuffleOf(d->settings.shuffle));
}

bool MP_MyLibrary::itemDown(unsigned short index)
{
    return d->list.moveDown(index, shuffleOf(d->settings.shuffle));
}

void MP_MyLibrary::randomizeList(QValueList<unsigned int> &list) const
{
    marvola::randomizeList(list);
}

QStringList MP_MyLibrary::randomizePlayList()
{
    return d->list.randomizeItems();
}

QString MP_MyLibrary::getActiveItem() const
{
    return d->list.active();
}

void MP_MyLibrary::setActiveItem(unsigned short index, bool pickFirst)
{
    d->list.setActive(index, shuffleOf(d->settings.shuffle), pickFirstOf(pickFirst));
}

QString MP_MyLibrary::getNextItem()
{
    return d->list.next(repeatOf(d->settings.repeat), shuffleOf(d->settings.shuffle));
}

QString MP_MyLibrary::getPrevItem()
{
    return d->list.previous(repeatOf(d->settings.repeat));
}

bool MP_MyLibrary::hasNextItem() const
{
    return d->list.hasNext(repeatOf(d->settings.repeat));
}

bool MP_MyLibrary::hasPrevItem() const
{
    return d->list.hasPrevious(repeatOf(d->settings.repeat));
}

bool MP_MyLibrary::isLastItem(const QString &item) const
{
    return d->list.isLast(item);
}

int MP_MyLibrary::getItemIndex(const QString &item) const
{
    return d->list.indexOf(item);
}

QString MP_MyLibrary::getItemContent(unsigned short index) const
{
    return d->list.itemAt(index);
}

bool MP_MyLibrary::isClip(unsigned short index) const
{
    return d->list.isClip(index);
}
