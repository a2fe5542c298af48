// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Collection.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

constexpr int FilesPerFolder = 200;

QString pathOf(const QString &dir, int number)
{
    return u"%1/music/Folder %2/%3 - a track with a name.mp3"_s.arg(dir)
        .arg(number / FilesPerFolder)
        .arg(number, 5, 10, QChar(u'0'));
}

bool makeFiles(const QString &dir, int count)
{
    for (int number = 0; number < count; ++number) {
        const QString path = pathOf(dir, number);
        if (number % FilesPerFolder == 0 && !QDir().mkpath(path.left(path.lastIndexOf(u'/'))))
            return false;
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return false;
    }
    return true;
}

bool makeSettings(const QString &dir, const Amounts &amounts)
{
    if (!QDir().mkpath(dir + u"/setup"_s))
        return false;
    ConfigFile file(dir + u"/setup/juv_marvola.cfg"_s, false);
    const QString group = u"MediaLimitationItem"_s;
    return file.writeEntry(group, u"MaxNumOfList"_s, amounts.playlists) &&
           file.writeEntry(group, u"MaxNumOfItem"_s, amounts.items) &&
           file.writeEntry(group, u"MaxNumOfBookmark"_s, amounts.bookmarks) &&
           file.writeEntry(group, u"MaxNumOfHistory"_s, amounts.history) &&
           file.writeEntry(group, u"MaxNumOfMediaFile"_s, amounts.mediaFiles) && file.flush();
}

bool writeGroup(ConfigFile &file, const QString &group, int count, const std::function<QString(int)> &entry)
{
    bool isWritten = file.writeEntry(group, u"counter"_s, count);
    for (int number = 0; number < count && isWritten; ++number)
        isWritten = file.writeEntry(group, QString::number(number + 1), entry(number));
    return isWritten;
}

bool makeLists(const QString &dir, const Amounts &amounts)
{
    const auto path = [&dir](int number) { return pathOf(dir, number); };
    const auto link = [](int number) { return u"rtsp://media.example/streams/channel %1.3gp"_s.arg(number); };
    const auto playlist = [](int number) { return u"pl-Playlist number %1"_s.arg(number); };
    ConfigFile file(dir + u"/.marvola.list"_s, false);
    const QString bookmarks = u"bookmark"_s;
    bool isWritten = writeGroup(file, u"history"_s, amounts.history, link) &&
                     writeGroup(file, u"currentplaylist"_s, amounts.items, path) &&
                     writeGroup(file, u"allplaylist"_s, amounts.playlists, playlist) &&
                     writeGroup(file, playlist(0), amounts.items, path) &&
                     file.writeEntry(bookmarks, u"counter"_s, amounts.bookmarks);
    for (int number = 0; number < amounts.bookmarks && isWritten; ++number)
        isWritten = file.writeEntry(bookmarks, u"Bookmark number %1"_s.arg(number), link(number));
    return isWritten && file.flush();
}

} // namespace

bool makeCollection(const QString &dir, const Amounts &amounts)
{
    return makeFiles(dir, amounts.mediaFiles) && makeSettings(dir, amounts) && makeLists(dir, amounts);
}
