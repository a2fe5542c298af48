// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "Session.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct ListOptions
{
    std::string what;
    std::string artist;
    std::string album;
    std::string genre;
};

/// A list of the whole library.
struct WholeList
{
    const char *name;
    QStringList (MP_MyLibrary::*query)();
};

constexpr WholeList WholeLists[] = {
    {"media", &MP_MyLibrary::getAllMedia},         {"audio", &MP_MyLibrary::getAllAudio},
    {"video", &MP_MyLibrary::getAllVideo},         {"artists", &MP_MyLibrary::getAllArtists},
    {"albums", &MP_MyLibrary::getAllAlbums},       {"genres", &MP_MyLibrary::getAllGenres},
    {"playlists", &MP_MyLibrary::getAllPlayLists},
};

/// The files of one artist, album or genre.
struct Selection
{
    const char *option;
    std::string ListOptions::*value;
    QStringList (MP_MyLibrary::*names)();
    QStringList (MP_MyLibrary::*files)(const QString &);
};

const Selection Selections[] = {
    {"artist", &ListOptions::artist, &MP_MyLibrary::getAllArtists, &MP_MyLibrary::getItemListOfArtist},
    {"album", &ListOptions::album, &MP_MyLibrary::getAllAlbums, &MP_MyLibrary::getItemListOfAlbum},
    {"genre", &ListOptions::genre, &MP_MyLibrary::getAllGenres, &MP_MyLibrary::getItemListOfGenre},
};

/// The one of \a names that the user means: the very text, or the text as this program prints it, or a text longer than
/// what the index keeps of it. Null for none.
QString nameMeant(const QString &text, const QStringList &names)
{
    constexpr qsizetype KeptLength = 20;
    if (names.contains(text)) {
        return text;
    }
    const QString kept = text.simplified().left(KeptLength);
    for (const QString &name : names) {
        if (text == printable(name) || text == wellFormed(name) || kept == name) {
            return name;
        }
    }
    return {};
}

ExitStatus print(Session &session, const QStringList &entries)
{
    if (session.wantsJson()) {
        printJson(entries);
    } else {
        printNumbered(entries);
    }
    return ExitStatus::Done;
}

ExitStatus listSelection(Session &session, const Selection &selection, const QString &text)
{
    const QString name = nameMeant(text, (session.library().*selection.names)());
    if (name.isNull()) {
        const QString word = QString::fromLatin1(selection.option);
        return fail(u"there is no %1 '%2' in the index; see 'marvola list %1s'"_s.arg(word, text));
    }
    return print(session, (session.library().*selection.files)(name));
}

ExitStatus list(Session &session, const ListOptions &options)
{
    if (session.library().getWorkDirectory().isEmpty()) {
        return fail(
            u"no room for the index in %1: see 'marvola status', or name another directory with --work DIR"_s.arg(
                session.places().work));
    }
    for (const Selection &selection : Selections) {
        const std::string &text = options.*selection.value;
        if (!text.empty()) {
            return listSelection(session, selection, QString::fromStdString(text));
        }
    }
    for (const WholeList &whole : WholeLists) {
        if (options.what == whole.name) {
            return print(session, (session.library().*whole.query)());
        }
    }
    return fail(u"'marvola list' needs to know what to list; see 'marvola list --help'"_s, ExitStatus::Usage);
}

std::vector<std::string> wholeListNames()
{
    std::vector<std::string> names;
    for (const WholeList &whole : WholeLists) {
        names.emplace_back(whole.name);
    }
    return names;
}

} // namespace

void declareList(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("list", "List what the index holds");
    auto options = std::make_shared<ListOptions>();
    CLI::Option_group *group = command->add_option_group("What", "What to list");
    group->add_option("what", options->what, "The whole of one kind")->check(CLI::IsMember(wholeListNames()));
    for (const Selection &selection : Selections) {
        const std::string word = selection.option;
        group->add_option("--" + word, (*options).*selection.value, "The audio files of one " + word);
    }
    group->require_option(1);
    command->footer("Examples:\n"
                    "  marvola list media\n"
                    "  marvola list artists\n"
                    "  marvola list --artist 'Ada Lovelace'\n"
                    "  marvola list --genre Jazz --json");
    command->callback([&action, options] { action = [options](Session &session) { return list(session, *options); }; });
}

} // namespace marvola
