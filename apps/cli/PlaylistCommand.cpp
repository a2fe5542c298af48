// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "PlaylistCommand.h"

#include "KeptLists.h"
#include "Limits.h"
#include "QueueView.h"
#include "Session.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct PlaylistOptions
{
    std::string name;
    std::string newName;
};

using PlaylistStep = ExitStatus (*)(Session &session, const PlaylistOptions &options);

void print(Session &session, const QStringList &texts)
{
    if (session.wantsJson()) {
        printJson(texts);
    } else {
        printNumbered(texts);
    }
}

ExitStatus failToWrite(Session &session)
{
    return fail(u"cannot write to %1: check that the files there can be written and the medium has room"_s.arg(
        session.library().getWorkDirectory()));
}

ExitStatus failAtItemLimit(Session &session, const QString &name)
{
    return fail(u"the playlist '%1' now holds only %2 of %3 items; raise MaxNumOfItem in %4"_s.arg(name)
                    .arg(readLimits(session.settingsFile()).items)
                    .arg(session.library().getCurrentPlayingListNumber())
                    .arg(session.settingsFile()));
}

ExitStatus failAtListLimit(Session &session)
{
    return fail(u"there are as many playlists as the settings allow, %1; delete one, or raise MaxNumOfList in %2"_s
                    .arg(session.library().getAllPlayLists().size())
                    .arg(session.settingsFile()));
}

void printItemCount(const QueueView &queue)
{
    confirm(queue.items.size() == 1 ? u"1 item"_s : u"%1 items"_s.arg(queue.items.size()));
}

ExitStatus list(Session &session, const PlaylistOptions &)
{
    print(session, session.library().getAllPlayLists());
    return ExitStatus::Done;
}

ExitStatus startNew(Session &session, const PlaylistOptions &)
{
    MP_MyLibrary &library = session.library();
    const auto result = static_cast<PlaylistResult>(library.newPlayList());
    if (result == PlaylistResult::Done) {
        return keepQueueQuietly(session);
    }
    if (result != PlaylistResult::LimitReached) {
        return failToWrite(session);
    }
    const bool isCatalogueFull = library.getAllPlayLists().size() == readLimits(session.settingsFile()).lists;
    return isCatalogueFull ? failAtListLimit(session) : failAtItemLimit(session, library.getCurrentPlayingListName());
}

ExitStatus save(Session &session, const PlaylistOptions &options)
{
    const QString name = QString::fromStdString(options.name);
    const auto result = static_cast<PlaylistResult>(session.library().savePlayList(name));
    return result == PlaylistResult::Done ? keepQueue(session, printItemCount) : failToStore(session, name, result);
}

ExitStatus load(Session &session, const PlaylistOptions &options)
{
    const QString text = QString::fromStdString(options.name);
    const QString name = playlistMeant(session, text);
    if (name.isNull()) {
        return failUnknownPlaylist(text);
    }
    session.library().loadPlayList(name);
    return keepQueue(session, printItemCount);
}

ExitStatus show(Session &session, const PlaylistOptions &options)
{
    const QString text = QString::fromStdString(options.name);
    const QString name = playlistMeant(session, text);
    if (name.isNull()) {
        return failUnknownPlaylist(text);
    }
    print(session, itemsOfPlaylist(session, name));
    return ExitStatus::Done;
}

ExitStatus rename(Session &session, const PlaylistOptions &options)
{
    const QString text = QString::fromStdString(options.name);
    const QString newName = QString::fromStdString(options.newName);
    const QString name = playlistMeant(session, text);
    if (name.isNull()) {
        return failUnknownPlaylist(text);
    }
    if (newName.isEmpty()) {
        return fail(u"a playlist's name cannot be empty; nothing was changed"_s, ExitStatus::Usage);
    }
    if (name != newName && session.library().hasPlayList(newName)) {
        return fail(u"there is a playlist '%1' already; nothing was changed: choose another name"_s.arg(newName));
    }
    return session.library().renamePlayList(name, newName) ? keepQueueQuietly(session) : failToWrite(session);
}

ExitStatus printWhatIsLeft(Session &session)
{
    if (session.wantsJson()) {
        printJson(session.library().getAllPlayLists());
    }
    return ExitStatus::Done;
}

ExitStatus remove(Session &session, const PlaylistOptions &options)
{
    const QString text = QString::fromStdString(options.name);
    // The library would answer an unknown name by giving up its whole catalogue.
    const QString name = playlistMeant(session, text);
    if (name.isNull()) {
        return failUnknownPlaylist(text);
    }
    return session.library().deletePlayList(name) ? printWhatIsLeft(session) : failToWrite(session);
}

ExitStatus removeAll(Session &session, const PlaylistOptions &)
{
    return session.library().deleteAllPlayLists() ? printWhatIsLeft(session) : failToWrite(session);
}

ExitStatus printDefaultName(Session &session, const PlaylistOptions &)
{
    const QString name = session.library().getDefaultPlayListName();
    if (session.wantsJson()) {
        printJson(QJsonObject{{u"name"_s, name}});
    } else {
        printLine(name);
    }
    return ExitStatus::Done;
}

CLI::App *declareStep(CLI::App &command, const char *name, const char *help, Action &action, PlaylistStep step,
                      const std::shared_ptr<PlaylistOptions> &options)
{
    CLI::App *sub = command.add_subcommand(name, help);
    sub->callback([&action, options, step] {
        action = [options, step](Session &session) {
            const ExitStatus ready = requireListFile(session);
            return ready == ExitStatus::Done ? step(session, *options) : ready;
        };
    });
    return sub;
}

/// A subcommand on one playlist.
CLI::App *declareNamed(CLI::App &command, const char *name, const char *help, Action &action, PlaylistStep step,
                       const std::shared_ptr<PlaylistOptions> &options)
{
    CLI::App *sub = declareStep(command, name, help, action, step, options);
    sub->add_option("name", options->name, "The playlist's name")->required()->type_name("PLAYLIST");
    sub->footer(std::string("Example:\n  marvola playlist ") + name + " Jazz");
    return sub;
}

} // namespace

QString playlistMeant(Session &session, const QString &text)
{
    if (session.library().hasPlayList(text)) {
        return text;
    }
    const QStringList names = session.library().getAllPlayLists();
    const auto name = std::find_if(names.begin(), names.end(), [&text](const QString &candidate) {
        return text == printable(candidate) || text == wellFormed(candidate);
    });
    return name == names.end() || name->isEmpty() ? QString() : *name;
}

ExitStatus failUnknownPlaylist(const QString &text)
{
    return fail(u"there is no playlist '%1'; nothing was changed: see 'marvola playlist list'"_s.arg(text));
}

ExitStatus failToStore(Session &session, const QString &name, PlaylistResult result)
{
    if (result == PlaylistResult::EmptyName) {
        return fail(u"a playlist's name cannot be empty; nothing was stored"_s, ExitStatus::Usage);
    }
    if (result != PlaylistResult::LimitReached) {
        return failToWrite(session);
    }
    // A playlist that was cut is in the catalogue all the same.
    return session.library().hasPlayList(name) ? failAtItemLimit(session, name) : failAtListLimit(session);
}

QStringList itemsOfPlaylist(Session &session, const QString &name)
{
    return session.library().getItemListFromListFile(u"pl-"_s + name);
}

void declarePlaylist(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("playlist", "Keep the queue under names");
    auto options = std::make_shared<PlaylistOptions>();
    declareStep(*command, "list", "Print the names of all playlists", action, list, options)
        ->footer("Example:\n  marvola playlist list --json");
    declareStep(*command, "new", "Store the queue in its playlist, if it has one, and empty it", action, startNew,
                options)
        ->footer("Example:\n  marvola playlist new");
    declareNamed(*command, "save", "Store the queue as a playlist, in place of the one there", action, save, options);
    declareNamed(*command, "load", "Make a playlist the queue", action, load, options);
    declareNamed(*command, "show", "Print the items of a playlist", action, show, options);
    CLI::App *renaming = declareNamed(*command, "rename", "Rename a playlist", action, rename, options);
    renaming->add_option("new-name", options->newName, "Its new name, which no other has")->required();
    renaming->footer("Example:\n  marvola playlist rename Jazz 'Late jazz'");
    declareNamed(*command, "delete", "Delete a playlist; the queue stays", action, remove, options);
    declareStep(*command, "delete-all", "Delete every playlist; the queue stays", action, removeAll, options)
        ->footer("Example:\n  marvola playlist delete-all");
    declareStep(*command, "default-name", "Print a name that no playlist has", action, printDefaultName, options)
        ->footer("Example:\n  marvola playlist save \"$(marvola playlist default-name)\"");
    declarePlaylistTransfer(*command, action);
    command->require_subcommand(1);
    command->footer("Examples:\n"
                    "  marvola playlist save Jazz\n"
                    "  marvola playlist list\n"
                    "  marvola playlist load Jazz\n"
                    "  marvola playlist export Jazz jazz.m3u8");
}

} // namespace marvola
