// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"

#include <QtCore/QEventLoop>

#include <cstdio>
#include <utility>

namespace {

using Library = MP_MyLibrary;

void show(const QStringList &entries)
{
    int position = 0;
    for (const QString &entry : entries)
        say(QString::number(position++) + QLatin1String("  ") + entry);
    if (entries.isEmpty())
        say(QStringLiteral("nothing"));
}

void show(bool done)
{
    say(done ? QStringLiteral("yes") : QStringLiteral("no"));
}

void show(const QString &text)
{
    say(text.isNull() ? QStringLiteral("none") : text);
}

void show(int code)
{
    say(QString::number(code));
}

bool isOn(const QString &text)
{
    return text == QLatin1String("on");
}

/// "A = B" as A and B.
std::pair<QString, QString> twoOf(const QString &text)
{
    return {text.section(QLatin1String(" = "), 0, 0), text.section(QLatin1String(" = "), 1)};
}

QStringList wordsOf(const QString &text)
{
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// While a refresh rewrites the index it is not to be queried.
std::function<void(Library &, const QString &)> query(QStringList (Library::*ask)())
{
    return [ask](Library &library, const QString &) {
        if (library.isMyLibraryRefreshing())
            say(QStringLiteral("the index is being made"));
        else
            show((library.*ask)());
    };
}

std::function<void(Library &, const QString &)> query(QStringList (Library::*ask)(const QString &))
{
    return [ask](Library &library, const QString &text) { show((library.*ask)(text)); };
}

/// Gives the interface its time until the worker has ended.
void waitForRefresh(Library &library)
{
    QEventLoop loop;
    QObject::connect(
        &library, &Library::refreshContinue, &loop,
        [&](UINT8) {
            if (!library.isMyLibraryRefreshing())
                loop.quit();
        },
        Qt::QueuedConnection);
    if (library.isMyLibraryRefreshing())
        loop.exec();
}

QList<Command> libraryScreen()
{
    return {
        {"refresh", "", "make the index anew", [](Library &l, const QString &) { l.refreshMyLibrary(); }},
        {"wait", "", "until it is made", [](Library &l, const QString &) { waitForRefresh(l); }},
        {"cancel", "", "stop; shows the places that were done",
         [](Library &l, const QString &) { show(l.cancelRefreshMyLibrary()); }},
        {"order", "PLACE,PLACE", "which places to scan, in order",
         [](Library &l, const QString &text) {
             if (!text.isEmpty())
                 l.setRefreshFlag(text.split(QLatin1Char(',')));
             show(l.getRefreshFlag());
         }},
        {"media", "", "all files", query(&Library::getAllMedia)},
        {"audio", "", "", query(&Library::getAllAudio)},
        {"video", "", "", query(&Library::getAllVideo)},
        {"artists", "", "", query(&Library::getAllArtists)},
        {"albums", "", "", query(&Library::getAllAlbums)},
        {"genres", "", "", query(&Library::getAllGenres)},
        {"artist", "NAME", "files of an artist", query(&Library::getItemListOfArtist)},
        {"album", "NAME", "files of an album", query(&Library::getItemListOfAlbum)},
        {"genre", "NAME", "files of a genre", query(&Library::getItemListOfGenre)},
    };
}

QList<Command> playingScreen()
{
    return {
        {"set", "ITEM", "play one item",
         [](Library &l, const QString &text) {
             l.setCurrentPlayingList(text);
             show(l.getActiveItem());
         }},
        {"setall", "ITEM ITEM", "play these",
         [](Library &l, const QString &text) {
             l.setCurrentPlayingList(wordsOf(text));
             l.setActiveItem(0, true); // the list does not choose its active item
             show(l.getActiveItem());
         }},
        {"add", "ITEM ITEM", "append items",
         [](Library &l, const QString &text) {
             QStringList items = wordsOf(text);
             show(l.addItemsToPlayList(items));
         }},
        {"pick", "N N", "append from the list shown last",
         [](Library &l, const QString &text) {
             QValueList<unsigned short> positions;
             const QStringList words = wordsOf(text);
             for (const QString &word : words)
                 positions.append(word.toUShort());
             show(l.addItemsToPlayList(positions));
         }},
        {"addbookmarks", "NAME NAME", "append the links of bookmarks",
         [](Library &l, const QString &text) {
             QStringList names = wordsOf(text);
             show(l.addBookmarksToPlayList(names));
         }},
        {"list", "", "what is being played",
         [](Library &l, const QString &) {
             say(QStringLiteral("%1 items, from \"%2\"%3%4")
                     .arg(l.getCurrentPlayingListNumber())
                     .arg(l.getCurrentPlayingListName(),
                          l.getTemporaryPlaylistState() ? QStringLiteral(", temporary") : QString(),
                          l.getCurrentPlaylistChangedState() ? QStringLiteral(", changed") : QString()));
             show(l.getCurrentPlayingList());
         }},
        {"clear", "", "empty it", [](Library &l, const QString &) { l.clearCurrentPlayingList(); }},
        {"remove", "N", "", [](Library &l, const QString &text) { show(l.removeItemFromPlayList(text.toUShort())); }},
        {"up", "N", "", [](Library &l, const QString &text) { show(l.itemUp(text.toUShort())); }},
        {"down", "N", "", [](Library &l, const QString &text) { show(l.itemDown(text.toUShort())); }},
        {"randomize", "", "the items themselves", [](Library &l, const QString &) { show(l.randomizePlayList()); }},
        {"edit", "URL = URL", "change a link's text",
         [](Library &l, const QString &text) {
             l.editUrl(twoOf(text).first, twoOf(text).second);
             show(l.hasItem(twoOf(text).second));
         }},
        {"kind", "N KIND", "note what an item is",
         [](Library &l, const QString &text) {
             const QString item = l.getItemContent(text.section(QLatin1Char(' '), 0, 0).toUShort());
             l.setItemFlag(item, static_cast<MP_MEDIA_FILE_TYPE_T>(text.section(QLatin1Char(' '), 1).toInt()));
             show(static_cast<int>(l.getItemFlag(item)));
         }},
        {"temporary", "on|off", "", [](Library &l, const QString &text) { l.setTemporaryPlaylistState(isOn(text)); }},
        {"changed", "on|off", "",
         [](Library &l, const QString &text) { l.setCurrentPlaylistChangedState(isOn(text)); }},
        {"play", "N", "",
         [](Library &l, const QString &text) {
             l.setActiveItem(text.toUShort(), true);
             show(l.getActiveItem());
         }},
        {"now", "", "what is playing",
         [](Library &l, const QString &) {
             const QString item = l.getActiveItem();
             show(item);
             const int position = l.getItemIndex(item);
             if (position < 0)
                 return;
             say(QStringLiteral("%1%2%3%4")
                     .arg(l.isClip(static_cast<unsigned short>(position)) ? QStringLiteral("a file")
                                                                          : QStringLiteral("a stream"),
                          l.isLastItem(item) ? QStringLiteral(", the last") : QString(),
                          l.hasPrevItem() ? QStringLiteral(", one before") : QString(),
                          l.hasNextItem() ? QStringLiteral(", one behind") : QString()));
         }},
        {"next", "", "", [](Library &l, const QString &) { show(l.getNextItem()); }},
        {"prev", "", "", [](Library &l, const QString &) { show(l.getPrevItem()); }},
    };
}

QList<Command> playlistScreen()
{
    return {
        {"playlists", "", "their names", query(&Library::getAllPlayLists)},
        {"new", "", "store the list and start an empty one",
         [](Library &l, const QString &) { show(int(l.newPlayList())); }},
        {"save", "NAME", "the list being played",
         [](Library &l, const QString &text) {
             show(int(l.savePlayList(text.isEmpty() ? l.getDefaultPlayListName() : text)));
         }},
        {"load", "NAME", "", [](Library &l, const QString &text) { show(l.loadPlayList(text)); }},
        {"rename", "OLD = NEW", "",
         [](Library &l, const QString &text) { show(l.renamePlayList(twoOf(text).first, twoOf(text).second)); }},
        {"delete", "NAME", "",
         [](Library &l, const QString &text) {
             // A name that is not there would cost the catalogue its entries.
             show(l.hasPlayList(text) && l.deletePlayList(text));
         }},
        {"deleteall", "", "", [](Library &l, const QString &) { show(l.deleteAllPlayLists()); }},
        {"name", "NAME", "the playlist that the list is from",
         [](Library &l, const QString &text) { l.setCurrentPlayingListName(text); }},
    };
}

QList<Command> linkScreen()
{
    return {
        {"bookmarks", "", "", [](Library &l, const QString &) { show(l.getItemListOfBookmark()); }},
        {"bookmark", "URL", "keep it under a new name",
         [](Library &l, const QString &text) { show(l.addItemToBookmark(l.getDefaultBookmarkName(), text)); }},
        {"renamebookmark", "OLD = NEW", "",
         [](Library &l, const QString &text) { show(l.renameBookmarName(twoOf(text).first, twoOf(text).second)); }},
        {"forget", "NAME", "remove a bookmark",
         [](Library &l, const QString &text) {
             QStringList names(text);
             l.removeItemsFromBookmark(names);
             show(!l.hasBookmark(text));
         }},
        {"played", "URL", "put a link into the history",
         [](Library &l, const QString &text) { l.addItemToHistory(text); }},
        {"history", "", "", query(&Library::getItemListOfHistory)},
        {"presets", "", "", [](Library &l, const QString &) { show(l.getItemListOfPreconfig()); }},
        {"shop", "", "the shop's link", [](Library &l, const QString &) { show(l.getMusicShopURL()); }},
        {"profile", "NAME", "network profile",
         [](Library &l, const QString &text) {
             l.setProfileName(text);
             show(l.getProfileName());
         }},
        {"connect", "", "open the data link", [](Library &l, const QString &) { show(l.setupConnection()); }},
    };
}

QList<Command> settingsScreen()
{
    return {
        {"settings", "", "all of them",
         [](Library &l, const QString &) {
             say(QStringLiteral("volume %1, mute %2, repeat %3, shuffle %4, video mode %5, codec %6")
                     .arg(l.getVolume())
                     .arg(l.getMute())
                     .arg(l.getRepeat())
                     .arg(l.getShuffle())
                     .arg(l.getVideoMode())
                     .arg(l.getCodecForClip()));
             say(QStringLiteral("proxy %1 %2:%3").arg(l.getProxy()).arg(l.getProxyIp()).arg(l.getProxyPort()));
         }},
        {"volume", "0-255", "",
         [](Library &l, const QString &text) { l.setVolume(static_cast<unsigned char>(text.toUShort())); }},
        {"mute", "on|off", "", [](Library &l, const QString &text) { l.setMute(isOn(text)); }},
        {"repeat", "on|off", "", [](Library &l, const QString &text) { l.setRepeat(isOn(text)); }},
        {"shuffle", "on|off", "", [](Library &l, const QString &text) { l.setShuffle(isOn(text)); }},
        {"videomode", "N", "",
         [](Library &l, const QString &text) { l.setVideoMode(static_cast<unsigned char>(text.toUShort())); }},
        {"proxy", "on|off", "", [](Library &l, const QString &text) { l.setProxy(isOn(text)); }},
        {"proxyip", "ADDRESS", "", [](Library &l, const QString &text) { l.setProxyIp(text); }},
        {"proxyport", "N", "", [](Library &l, const QString &text) { l.setProxyPort(text.toUShort()); }},
        {"cards", "", "memory cards with room", [](Library &l, const QString &) { show(l.getAvailableDirectory()); }},
        {"room", "DIR", "is there room for the index?",
         [](Library &l, const QString &text) { show(l.hasEnoughSpace(text)); }},
        {"work", "DIR", "where the index is kept",
         [](Library &l, const QString &text) {
             if (!text.isEmpty())
                 show(l.setWorkDirectory(text));
             show(l.getWorkDirectory());
         }},
        {"store", "", "keep settings and lists", [](Library &l, const QString &) { l.storeMyLibrary(); }},
    };
}

} // namespace

void say(const QString &line)
{
    std::printf("%s\n", qUtf8Printable(line));
    std::fflush(stdout);
}

QList<ScreenCommands> allScreens()
{
    return {{"Library", libraryScreen()},
            {"Playing", playingScreen()},
            {"Playlists", playlistScreen()},
            {"Links", linkScreen()},
            {"Settings", settingsScreen()}};
}
