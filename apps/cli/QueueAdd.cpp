// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "QueueAdd.h"

#include "KeptLists.h"
#include "Limits.h"
#include "MediaQuery.h"
#include "QueueView.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

using Indices = QValueList<unsigned short>;

constexpr int LastPosition = 65535;

struct AddOptions
{
    std::vector<std::string> items;
    MediaQuery query;
    bool history = false;
    std::vector<int> positions; ///< from 1
    std::vector<std::string> bookmarks;
};

/// The item that \a text names: a link as it stands, a file by its whole path.
std::optional<QString> itemNamed(const std::string &text, QString &problem)
{
    const QString name = QFile::decodeName(text.c_str());
    if (name.contains("://"_L1)) {
        return name;
    }
    const QString path = QDir::cleanPath(QDir::current().absoluteFilePath(name));
    if (!QFileInfo(path).isFile()) {
        problem = u"there is no file %1; nothing was added: name files, or links with '://'"_s.arg(path);
        return std::nullopt;
    }
    return path;
}

std::optional<QStringList> itemsNamed(const std::vector<std::string> &texts, QString &problem)
{
    QStringList items;
    for (const std::string &text : texts) {
        const std::optional<QString> item = itemNamed(text, problem);
        if (!item) {
            return std::nullopt;
        }
        items.append(*item);
    }
    return items;
}

/// The positions to take of a list with \a count entries: those asked for, or all.
std::optional<Indices> indicesMeant(const AddOptions &options, qsizetype count, QString &problem)
{
    Indices indices;
    for (const int position : options.positions) {
        if (position > count) {
            problem = u"there is no position %1 in a list of %2; nothing was added"_s.arg(position).arg(count);
            return std::nullopt;
        }
        indices.append(static_cast<unsigned short>(position - 1));
    }
    if (!options.positions.empty()) {
        return indices;
    }
    for (qsizetype index = 0; index < std::min<qsizetype>(count, LastPosition); ++index) {
        indices.append(static_cast<unsigned short>(index));
    }
    return indices;
}

/// \return whether all could be added; none, with a line for the user, when nothing could be tried
std::optional<bool> addFromList(MP_MyLibrary &library, const AddOptions &options, QString &problem)
{
    const std::optional<QStringList> list =
        options.history ? library.getItemListOfHistory() : runQuery(library, options.query, problem);
    if (!list) {
        return std::nullopt;
    }
    std::optional<Indices> indices = indicesMeant(options, list->size(), problem);
    if (!indices) {
        return std::nullopt;
    }
    return indices->isEmpty() || library.addItemsToPlayList(*indices);
}

std::optional<bool> addBookmarks(MP_MyLibrary &library, const AddOptions &options, QString &problem)
{
    QStringList names;
    for (const std::string &text : options.bookmarks) {
        const QString name = QString::fromStdString(text);
        if (!library.hasBookmark(name)) {
            problem = u"there is no bookmark '%1'; nothing was added: see 'marvola bookmark list'"_s.arg(name);
            return std::nullopt;
        }
        names.append(name);
    }
    return library.addBookmarksToPlayList(names);
}

std::optional<bool> addTo(MP_MyLibrary &library, const AddOptions &options, QString &problem)
{
    if (options.history || asksForSomething(options.query)) {
        return addFromList(library, options, problem);
    }
    if (!options.bookmarks.empty()) {
        return addBookmarks(library, options, problem);
    }
    std::optional<QStringList> items = itemsNamed(options.items, problem);
    if (!items) {
        return std::nullopt;
    }
    return library.addItemsToPlayList(*items);
}

ExitStatus add(Session &session, const AddOptions &options)
{
    MP_MyLibrary &library = session.library();
    if (!options.positions.empty() && !options.history && !asksForSomething(options.query)) {
        return fail(u"--position needs a list to count in; see 'marvola queue add --help'"_s, ExitStatus::Usage);
    }
    const unsigned int before = library.getCurrentPlayingListNumber();
    QString problem;
    const std::optional<bool> isWhole = addTo(library, options, problem);
    if (!isWhole) {
        return fail(problem);
    }
    const unsigned int added = library.getCurrentPlayingListNumber() - before;
    const ExitStatus kept = keepQueue(session, [added](const QueueView &) { confirm(u"%1 added"_s.arg(added)); });
    if (kept != ExitStatus::Done || *isWhole) {
        return kept;
    }
    return fail(u"not all was added: the settings allow %1 items; raise MaxNumOfItem in %2"_s
                    .arg(readLimits(session.settingsFile()).items)
                    .arg(session.settingsFile()));
}

} // namespace

void declareQueueAdd(CLI::App &queue, Action &action)
{
    CLI::App *command = queue.add_subcommand("add", "Append what is not in the queue yet");
    auto options = std::make_shared<AddOptions>();
    CLI::Option_group *group = command->add_option_group("What", "What to add");
    group->add_option("item", options->items, "Files and links")->type_name("FILE");
    group->add_option("--list", options->query.whole, "All files of one kind")->check(CLI::IsMember(fileListNames()));
    declareSelections(*group, options->query);
    group->add_flag("--history", options->history, "The links that were played");
    group->add_option("--bookmark", options->bookmarks, "Bookmarks, by name");
    group->require_option(1);
    command->add_option("--position", options->positions, "Only these of the list, as 'marvola list' counts them")
        ->delimiter(',')
        ->check(CLI::Range(1, LastPosition));
    command->footer("Examples:\n"
                    "  marvola queue add ~/Music/one.mp3 http://radio.example/jazz\n"
                    "  marvola queue add --artist 'Ada Lovelace'\n"
                    "  marvola queue add --list audio --position 1,3\n"
                    "  marvola queue add --bookmark Jazz");
    command->callback([&action, options] {
        action = [options](Session &session) {
            const ExitStatus ready = requireListFile(session);
            return ready == ExitStatus::Done ? add(session, *options) : ready;
        };
    });
}

} // namespace marvola
