// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "Session.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// One artist, album or genre with its audio files.
struct FileGroup
{
    QString name;
    QStringList files;
};

QList<FileGroup> groups(MP_MyLibrary &library, const QStringList &names,
                        QStringList (MP_MyLibrary::*files)(const QString &))
{
    QList<FileGroup> result;
    for (const QString &name : names) {
        result.append({name, (library.*files)(name)});
    }
    std::stable_sort(result.begin(), result.end(), [](const FileGroup &left, const FileGroup &right) {
        return left.name.compare(right.name, Qt::CaseInsensitive) < 0;
    });
    return result;
}

/// All that is shown.
struct Overview
{
    qsizetype media;
    qsizetype audio;
    QStringList video;
    QList<FileGroup> artists;
    QList<FileGroup> albums;
    QList<FileGroup> genres;
};

Overview overviewOf(MP_MyLibrary &library)
{
    return {library.getAllMedia().size(),
            library.getAllAudio().size(),
            library.getAllVideo(),
            groups(library, library.getAllArtists(), &MP_MyLibrary::getItemListOfArtist),
            groups(library, library.getAllAlbums(), &MP_MyLibrary::getItemListOfAlbum),
            groups(library, library.getAllGenres(), &MP_MyLibrary::getItemListOfGenre)};
}

QJsonArray toJson(const QStringList &texts)
{
    QJsonArray array;
    for (const QString &text : texts) {
        array.append(wellFormed(text));
    }
    return array;
}

QJsonArray toJson(const QList<FileGroup> &fileGroups)
{
    QJsonArray array;
    for (const FileGroup &group : fileGroups) {
        array.append(QJsonObject{{u"name"_s, wellFormed(group.name)}, {u"files"_s, toJson(group.files)}});
    }
    return array;
}

QString files(qsizetype count)
{
    return count == 1 ? u"1 file"_s : u"%1 files"_s.arg(count);
}

/// \a path as the name of its place and the way from there.
QString shortened(const QString &path, const QList<Place> &places)
{
    const qsizetype holder = placeHolding(path, places);
    if (holder < 0) {
        return path;
    }
    qsizetype length = 0;
    for (const QString &root : places.at(holder).roots) {
        if (liesBelow(path, root)) {
            length = std::max(length, root.endsWith(u'/') ? root.size() : root.size() + 1);
        }
    }
    return places.at(holder).name + u": "_s + path.mid(length);
}

void printHeading(const QString &word, qsizetype count)
{
    printLine();
    printLine(u"%1 (%2)"_s.arg(word).arg(count), Emphasis::Strong);
}

void printFiles(const QList<FileGroup> &fileGroups, const QList<Place> &places)
{
    for (const FileGroup &group : fileGroups) {
        printLine(u"  "_s + group.name);
        for (const QString &file : group.files) {
            printLine(u"      "_s + shortened(file, places));
        }
    }
}

void printCounts(const QList<FileGroup> &fileGroups)
{
    QList<QStringList> rows;
    for (const FileGroup &group : fileGroups) {
        rows.append({group.name, files(group.files.size())});
    }
    printTable(rows);
}

void print(const Overview &overview, const QList<Place> &places)
{
    printLine(u"%1 indexed: %2 audio, %3 video, %4 other"_s.arg(files(overview.media))
                  .arg(overview.audio)
                  .arg(overview.video.size())
                  .arg(overview.media - overview.audio - overview.video.size()));
    printHeading(u"Artists"_s, overview.artists.size());
    printFiles(overview.artists, places);
    printHeading(u"Albums"_s, overview.albums.size());
    printCounts(overview.albums);
    printHeading(u"Genres"_s, overview.genres.size());
    printCounts(overview.genres);
    printHeading(u"Videos"_s, overview.video.size());
    for (const QString &file : overview.video) {
        printLine(u"  "_s + shortened(file, places));
    }
}

ExitStatus showOverview(Session &session)
{
    if (session.library().getWorkDirectory().isEmpty()) {
        return fail(
            u"no room for the index in %1: see 'marvola status', or name another directory with --work DIR"_s.arg(
                session.places().work));
    }
    const Overview overview = overviewOf(session.library());
    if (session.wantsJson()) {
        printJson(QJsonObject{{u"media"_s, overview.media},
                              {u"audio"_s, overview.audio},
                              {u"video"_s, toJson(overview.video)},
                              {u"artists"_s, toJson(overview.artists)},
                              {u"albums"_s, toJson(overview.albums)},
                              {u"genres"_s, toJson(overview.genres)}});
        return ExitStatus::Done;
    }
    print(overview, libraryPlaces(session.places()));
    return ExitStatus::Done;
}

} // namespace

void declareShow(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("show", "Show the library by artist, album and genre");
    command->footer("Examples:\n"
                    "  marvola show\n"
                    "  marvola show --json");
    command->callback([&action] { action = showOverview; });
}

} // namespace marvola
