// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MediaQuery.h"

#include "Text.h"

#include <marvola/MP_MyLibrary.h>

#include <CLI/CLI.hpp>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

enum class Content { Files, Names };

/// A list of the whole library.
struct WholeList
{
    const char *name;
    Content content;
    QStringList (MP_MyLibrary::*query)();
};

constexpr WholeList WholeLists[] = {
    {"media", Content::Files, &MP_MyLibrary::getAllMedia},
    {"audio", Content::Files, &MP_MyLibrary::getAllAudio},
    {"video", Content::Files, &MP_MyLibrary::getAllVideo},
    {"artists", Content::Names, &MP_MyLibrary::getAllArtists},
    {"albums", Content::Names, &MP_MyLibrary::getAllAlbums},
    {"genres", Content::Names, &MP_MyLibrary::getAllGenres},
    {"playlists", Content::Names, &MP_MyLibrary::getAllPlayLists},
};

/// The files of one artist, album or genre.
struct Selection
{
    const char *option;
    std::string MediaQuery::*value;
    QStringList (MP_MyLibrary::*names)();
    QStringList (MP_MyLibrary::*files)(const QString &);
};

const Selection Selections[] = {
    {"artist", &MediaQuery::artist, &MP_MyLibrary::getAllArtists, &MP_MyLibrary::getItemListOfArtist},
    {"album", &MediaQuery::album, &MP_MyLibrary::getAllAlbums, &MP_MyLibrary::getItemListOfAlbum},
    {"genre", &MediaQuery::genre, &MP_MyLibrary::getAllGenres, &MP_MyLibrary::getItemListOfGenre},
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

std::optional<QStringList> runSelection(MP_MyLibrary &library, const Selection &selection, const QString &text,
                                        QString &problem)
{
    const QString name = nameMeant(text, (library.*selection.names)());
    if (name.isNull()) {
        const QString word = QString::fromLatin1(selection.option);
        problem = u"there is no %1 '%2' in the index; see 'marvola list %1s'"_s.arg(word, text);
        return std::nullopt;
    }
    return (library.*selection.files)(name);
}

} // namespace

std::vector<std::string> wholeListNames()
{
    std::vector<std::string> names;
    for (const WholeList &whole : WholeLists) {
        names.emplace_back(whole.name);
    }
    return names;
}

std::vector<std::string> fileListNames()
{
    std::vector<std::string> names;
    for (const WholeList &whole : WholeLists) {
        if (whole.content == Content::Files) {
            names.emplace_back(whole.name);
        }
    }
    return names;
}

void declareSelections(CLI::App &group, MediaQuery &query)
{
    for (const Selection &selection : Selections) {
        const std::string word = selection.option;
        group.add_option("--" + word, query.*selection.value, "The audio files of one " + word);
    }
}

bool asksForSomething(const MediaQuery &query)
{
    return !query.whole.empty() || std::any_of(std::begin(Selections), std::end(Selections),
                                               [&](const Selection &each) { return !(query.*each.value).empty(); });
}

std::optional<QStringList> runQuery(MP_MyLibrary &library, const MediaQuery &query, QString &problem)
{
    for (const Selection &selection : Selections) {
        const std::string &text = query.*selection.value;
        if (!text.empty()) {
            return runSelection(library, selection, QString::fromStdString(text), problem);
        }
    }
    for (const WholeList &whole : WholeLists) {
        if (query.whole == whole.name) {
            return (library.*whole.query)();
        }
    }
    problem = u"the command line does not say which list; see 'marvola list --help'"_s;
    return std::nullopt;
}

} // namespace marvola
