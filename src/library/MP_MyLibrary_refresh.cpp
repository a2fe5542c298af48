// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/State.h"

#include "platform/FileNames.h"
#include "scan/IndexQueries.h"
#include "scan/MediaWalker.h"
#include "scan/NameFilter.h"

using namespace Qt::StringLiterals;

marvola::RefreshPlan MP_MyLibrary::State::refreshPlan() const
{
    return {workDirectory.listFile(),
            workDirectory.infoFile(),
            places.dataPath,
            places.card1Path,
            places.card2Path,
            settings.searchOrder,
            tr("TXT_RID_DTITLE_PHONE", "Phone"),
            tr("TXT_RID_DTITLE_MEMORY_CARD", "Memory Card"),
            u'<' + tr("TXT_RID_MENU_UNKNOWN", "Unknown") + u'>',
            settings.limits.mediaFiles,
            engine};
}

void MP_MyLibrary::refreshMyLibrary()
{
    d->refresh.start(d->refreshPlan());
}

QStringList MP_MyLibrary::cancelRefreshMyLibrary()
{
    return d->refresh.cancelAndWait();
}

bool MP_MyLibrary::isMyLibraryRefreshing() const
{
    return d->refresh.isRunning();
}

void MP_MyLibrary::setRefreshFlag(const QStringList &places)
{
    d->settings.searchOrder = places;
}

QStringList MP_MyLibrary::getRefreshFlag() const
{
    return d->settings.searchOrder;
}

void MP_MyLibrary::getAllFiles(const QString &dir, const QString &filter, QStringList &files) const
{
    marvola::MediaWalker(marvola::NameFilter(filter)).walk(dir, files);
}

bool MP_MyLibrary::refreshMediaList(unsigned int &offset, const QStringList &files, QStringList &artists,
                                    QStringList &albums, QStringList &genres)
{
    return d->refresh.indexFiles(d->refreshPlan(), offset, files, artists, albums, genres);
}

QStringList MP_MyLibrary::getAllMedia()
{
    return getItemListFromInfoFile(u"media"_s, QString());
}

QStringList MP_MyLibrary::getAllAudio()
{
    return getItemListFromInfoFile(u"audio"_s, QString());
}

QStringList MP_MyLibrary::getAllVideo()
{
    return getItemListFromInfoFile(u"video"_s, QString());
}

QStringList MP_MyLibrary::getAllArtists()
{
    return getItemListFromListFile(marvola::ArtistGroup);
}

QStringList MP_MyLibrary::getAllAlbums()
{
    return getItemListFromListFile(marvola::AlbumGroup);
}

QStringList MP_MyLibrary::getAllGenres()
{
    return getItemListFromListFile(marvola::GenreGroup);
}

QStringList MP_MyLibrary::getAllPlayLists()
{
    return getItemListFromListFile(marvola::CatalogueGroup);
}

QStringList MP_MyLibrary::getItemListOfArtist(const QString &artist)
{
    return getItemListFromInfoFile(u"artist"_s, artist);
}

QStringList MP_MyLibrary::getItemListOfAlbum(const QString &album)
{
    return getItemListFromInfoFile(u"album"_s, album);
}

QStringList MP_MyLibrary::getItemListOfGenre(const QString &genre)
{
    return getItemListFromInfoFile(u"genre"_s, genre);
}

QStringList MP_MyLibrary::getItemListFromListFile(const QString &group)
{
    const marvola::PlacedFile listFile = d->workDirectory.listFile();
    if (group.isEmpty() || listFile.isEmpty())
        return {};
    d->lastItemList = marvola::readListGroup(listFile, group);
    return d->lastItemList;
}

QStringList MP_MyLibrary::getItemListFromInfoFile(const QString &kind, const QString &value)
{
    const QString infoFile = d->workDirectory.infoFile();
    if (kind.isEmpty() || infoFile.isEmpty())
        return {};
    d->lastItemList = marvola::readInfoFile(infoFile, kind, value);
    return d->lastItemList;
}
