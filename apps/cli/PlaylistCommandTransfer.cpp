// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "PlaylistCommand.h"

#include "KeptLists.h"
#include "Limits.h"
#include "M3uFile.h"
#include "M3uText.h"
#include "Session.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct TransferOptions
{
    std::string name;
    std::string file;
    bool replace = false;
};

/// What was carried over, and what was not.
struct Transfer
{
    QString name;
    QString file;
    qsizetype itemCount;
    QList<M3uSkipped> skipped;
    qsizetype skippedCount;
    QString unit; ///< that what was skipped is counted in
};

QString wholePath(const std::string &file)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(QFile::decodeName(file.c_str())));
}

QJsonObject toJson(const Transfer &transfer)
{
    QJsonArray skipped;
    for (const M3uSkipped &each : transfer.skipped) {
        skipped.append(
            QJsonObject{{transfer.unit, each.number}, {u"text"_s, wellFormed(each.text)}, {u"reason"_s, each.reason}});
    }
    return {{u"playlist"_s, wellFormed(transfer.name)},
            {u"file"_s, wellFormed(transfer.file)},
            {u"items"_s, transfer.itemCount},
            {u"skipped"_s, skipped},
            {u"skippedCount"_s, transfer.skippedCount}};
}

void noteSkipped(const Transfer &transfer)
{
    for (const M3uSkipped &each : transfer.skipped) {
        note(u"%1 %2 left out: %3: %4"_s.arg(transfer.unit).arg(each.number).arg(each.reason, each.text));
    }
    const qsizetype more = transfer.skippedCount - transfer.skipped.size();
    if (more > 0) {
        note(u"%1 more left out"_s.arg(more));
    }
}

ExitStatus print(Session &session, const Transfer &transfer)
{
    if (session.wantsJson()) {
        printJson(toJson(transfer));
        return ExitStatus::Done;
    }
    noteSkipped(transfer);
    confirm(u"%1: %2 items"_s.arg(transfer.name).arg(transfer.itemCount));
    return ExitStatus::Done;
}

ExitStatus exportPlaylist(Session &session, const TransferOptions &options)
{
    const QString text = QString::fromStdString(options.name);
    const QString name = playlistMeant(session, text);
    if (name.isNull()) {
        return failUnknownPlaylist(text);
    }
    const QString path = wholePath(options.file);
    const Places &places = session.places();
    const M3uBytes m3u =
        formatM3u(itemsOfPlaylist(session, name), QFileInfo(path).path(), {places.data, places.card1, places.card2});
    QString problem;
    if (!writeM3uFile(path, m3u.bytes, options.replace ? Overwrite::Yes : Overwrite::No, problem)) {
        return fail(problem);
    }
    return print(session, {name, path, m3u.itemCount, m3u.skipped, m3u.skipped.size(), u"item"_s});
}

/// The entries of the file; none with a line for the user when there are none to import.
std::optional<M3uEntries> entriesOf(Session &session, const QString &path, QString &problem)
{
    const std::optional<QByteArray> bytes = readM3uFile(path, problem);
    if (!bytes) {
        return std::nullopt;
    }
    const QString codec = session.library().getCodecForClip();
    const std::optional<QString> text = decodeM3u(*bytes, codec);
    if (!text) {
        problem = u"%1 is not UTF-8, and there is no codec '%2' to read it by; correct CodecName in %3"_s.arg(
            path, codec, session.settingsFile());
        return std::nullopt;
    }
    M3uEntries entries = parseM3u(*text, QFileInfo(path).path());
    if (entries.items.isEmpty()) {
        problem = u"there is nothing to import in %1: %2 lines were left out; name a playlist file"_s.arg(path).arg(
            entries.skippedCount);
        return std::nullopt;
    }
    return entries;
}

/// Stores \a items as a playlist by way of the list being played, which is not stored and so, for the next run, stays
/// what it was.
/// \return how many the limit lets in, or why it failed
std::optional<qsizetype> storePlaylist(Session &session, const QString &name, const QStringList &items,
                                       PlaylistResult &result)
{
    MP_MyLibrary &library = session.library();
    library.clearCurrentPlayingList();
    library.setCurrentPlayingList(items);
    result = static_cast<PlaylistResult>(library.savePlayList(name));
    if (result != PlaylistResult::Done) {
        return std::nullopt;
    }
    return library.getCurrentPlayingListNumber();
}

ExitStatus importPlaylist(Session &session, const TransferOptions &options)
{
    const QString path = wholePath(options.file);
    const QString name =
        options.name.empty() ? QFileInfo(path).completeBaseName() : QString::fromStdString(options.name);
    if (session.library().hasPlayList(name) && !options.replace) {
        return fail(u"there is a playlist '%1' already; give --replace, or another name with --name"_s.arg(name));
    }
    QString problem;
    const std::optional<M3uEntries> entries = entriesOf(session, path, problem);
    if (!entries) {
        return fail(problem);
    }
    PlaylistResult result = PlaylistResult::Done;
    const std::optional<qsizetype> count = storePlaylist(session, name, entries->items, result);
    if (!count) {
        return failToStore(session, name, result);
    }
    const ExitStatus printed = print(session, {name, path, *count, entries->skipped, entries->skippedCount, u"line"_s});
    if (*count == entries->items.size()) {
        return printed;
    }
    return fail(u"the playlist '%1' holds only the first %2 of %3 items; raise MaxNumOfItem in %4"_s.arg(name)
                    .arg(*count)
                    .arg(entries->items.size())
                    .arg(session.settingsFile()));
}

using TransferStep = ExitStatus (*)(Session &session, const TransferOptions &options);

void setAction(CLI::App &command, Action &action, TransferStep step, const std::shared_ptr<TransferOptions> &options)
{
    command.callback([&action, options, step] {
        action = [options, step](Session &session) {
            const ExitStatus ready = requireListFile(session);
            return ready == ExitStatus::Done ? step(session, *options) : ready;
        };
    });
}

} // namespace

void declarePlaylistTransfer(CLI::App &playlist, Action &action)
{
    auto options = std::make_shared<TransferOptions>();
    CLI::App *exporting = playlist.add_subcommand("export", "Write a playlist to a file for other players");
    exporting->add_option("name", options->name, "The playlist's name")->required()->type_name("PLAYLIST");
    exporting->add_option("file", options->file, "The file, best named .m3u8")->required()->type_name("FILE");
    exporting->add_flag("--replace", options->replace, "Write over a file that is there");
    exporting->footer("Example:\n  marvola playlist export Jazz /media/card/jazz.m3u8");
    setAction(*exporting, action, exportPlaylist, options);

    CLI::App *importing = playlist.add_subcommand("import", "Make a playlist of another player's file");
    importing->add_option("file", options->file, "A .m3u or .m3u8 file")->required()->type_name("FILE");
    importing->add_option("--name", options->name, "The playlist's name (the file's, without its suffix)")
        ->type_name("PLAYLIST");
    importing->add_flag("--replace", options->replace, "Take the place of a playlist that is there");
    importing->footer("Example:\n  marvola playlist import /media/card/jazz.m3u8");
    setAction(*importing, action, importPlaylist, options);
}

} // namespace marvola
