// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "KeptLists.h"
#include "Session.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct BookmarkOptions
{
    std::string name;
    std::string newName;
    std::string url;
    std::vector<std::string> names;
};

/// What came of adding a bookmark.
struct AddStatus
{
    int code;
    QLatin1String word;
};

constexpr int Stored = 0;
constexpr int LimitReached = 2;
constexpr AddStatus AddStatuses[] = {{Stored, QLatin1String("stored")},
                                     {LimitReached, QLatin1String("limit-reached")},
                                     {3, QLatin1String("empty-text")}};

/// The list file has the number of bookmarks under this name.
constexpr QLatin1String NameOfTheCount("counter");

QString resultWord(int code)
{
    const auto *status = std::find_if(std::begin(AddStatuses), std::end(AddStatuses),
                                      [code](const AddStatus &known) { return known.code == code; });
    return status == std::end(AddStatuses) ? u"failed"_s : QString(status->word);
}

/// The bookmark that the user means: the very name, or the name as this program prints it. Null for none.
QString bookmarkMeant(Session &session, const QString &text)
{
    if (session.library().hasBookmark(text)) {
        return text;
    }
    const QStringList names = session.library().getItemListOfBookmark();
    const auto name = std::find_if(names.begin(), names.end(), [&text](const QString &candidate) {
        return text == printable(candidate) || text == wellFormed(candidate);
    });
    return name == names.end() ? QString() : *name;
}

ExitStatus failUnknownBookmark(const QString &text)
{
    return fail(u"there is no bookmark '%1'; nothing was changed: see 'marvola bookmark list'"_s.arg(text));
}

ExitStatus failTakenByCount()
{
    return fail(u"no bookmark can be called '%1', because the list file has its count there; choose another name"_s.arg(
                    NameOfTheCount),
                ExitStatus::Usage);
}

ExitStatus failToAdd(Session &session, int code)
{
    if (code == LimitReached) {
        return fail(u"the bookmark was not stored: there are %1, as many as the limit allows; remove one, or raise "
                    "MaxNumOfBookmark in %2"_s.arg(session.library().getItemListOfBookmark().size())
                        .arg(session.settingsFile()));
    }
    return fail(u"the bookmark was not stored: give a name and a link, neither of them empty"_s, ExitStatus::Usage);
}

ExitStatus addBookmark(Session &session, const BookmarkOptions &options)
{
    const QString name = QString::fromStdString(options.name);
    const QString url = QString::fromStdString(options.url);
    if (name == NameOfTheCount) {
        return failTakenByCount();
    }
    const int code = session.library().addItemToBookmark(name, url);
    if (code == Stored) {
        const ExitStatus kept = keepLists(session, [&] { return keptBookmarks(session).value(name) == url; });
        if (kept != ExitStatus::Done) {
            return kept;
        }
    }
    if (session.wantsJson()) {
        printJson(
            QJsonObject{{u"name"_s, wellFormed(name)}, {u"url"_s, wellFormed(url)}, {u"status"_s, resultWord(code)}});
    } else if (code == Stored) {
        confirm(u"%1: %2"_s.arg(resultWord(code), name));
    }
    return code == Stored ? ExitStatus::Done : failToAdd(session, code);
}

ExitStatus listBookmarks(Session &session, const BookmarkOptions &)
{
    const QMap<QString, QString> urls = keptBookmarks(session);
    QJsonArray array;
    QList<QStringList> rows;
    const QStringList names = session.library().getItemListOfBookmark();
    for (const QString &name : names) {
        const QString url = urls.value(name);
        array.append(QJsonObject{{u"name"_s, wellFormed(name)}, {u"url"_s, wellFormed(url)}});
        rows.append({name, url});
    }
    if (session.wantsJson()) {
        printJson(array);
    } else {
        printTable(rows);
    }
    return ExitStatus::Done;
}

/// Keeps a change and tells programs the bookmarks that it left.
ExitStatus keepChange(Session &session, const BookmarkOptions &options, const std::function<bool()> &isKept)
{
    const ExitStatus kept = keepLists(session, isKept);
    return kept == ExitStatus::Done && session.wantsJson() ? listBookmarks(session, options) : kept;
}

ExitStatus renameBookmark(Session &session, const BookmarkOptions &options)
{
    const QString text = QString::fromStdString(options.name);
    const QString newName = QString::fromStdString(options.newName);
    if (text.isEmpty() || newName.isEmpty()) {
        return fail(u"a bookmark's name cannot be empty; nothing was changed: give both names"_s, ExitStatus::Usage);
    }
    if (newName == NameOfTheCount) {
        return failTakenByCount();
    }
    const QString name = bookmarkMeant(session, text);
    if (name.isNull()) {
        return failUnknownBookmark(text);
    }
    if (!session.library().renameBookmarName(name, newName)) {
        return fail(
            u"there is a bookmark '%1' already; nothing was changed: remove it first, or choose another name"_s.arg(
                newName));
    }
    return keepChange(session, options, [&] {
        const QMap<QString, QString> kept = keptBookmarks(session);
        return kept.contains(newName) && (name == newName || !kept.contains(name));
    });
}

ExitStatus removeBookmarks(Session &session, const BookmarkOptions &options)
{
    QStringList names;
    for (const std::string &given : options.names) {
        const QString text = QString::fromStdString(given);
        const QString name = bookmarkMeant(session, text);
        if (name.isNull()) {
            return failUnknownBookmark(text);
        }
        names.append(name);
    }
    session.library().removeItemsFromBookmark(names);
    return keepChange(session, options, [&] {
        const QMap<QString, QString> kept = keptBookmarks(session);
        return std::none_of(names.begin(), names.end(), [&](const QString &name) { return kept.contains(name); });
    });
}

ExitStatus printDefaultName(Session &session, const BookmarkOptions &)
{
    const QString name = session.library().getDefaultBookmarkName();
    if (session.wantsJson()) {
        printJson(QJsonObject{{u"name"_s, wellFormed(name)}});
    } else {
        printLine(name);
    }
    return ExitStatus::Done;
}

using BookmarkStep = ExitStatus (*)(Session &session, const BookmarkOptions &options);

CLI::App *declareStep(CLI::App &command, const char *name, const char *help, Action &action, BookmarkStep step,
                      const std::shared_ptr<BookmarkOptions> &options)
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

} // namespace

void declareBookmark(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("bookmark", "Keep links under names");
    auto options = std::make_shared<BookmarkOptions>();
    CLI::App *add = declareStep(*command, "add", "Store a link under a name, in place of the one there", action,
                                addBookmark, options);
    add->add_option("name", options->name, "The bookmark's name")->required();
    add->add_option("url", options->url, "The link")->required();
    add->footer("Example:\n  marvola bookmark add Jazz rtsp://radio.example/jazz");

    CLI::App *rename = declareStep(*command, "rename", "Rename a bookmark", action, renameBookmark, options);
    rename->add_option("name", options->name, "The bookmark")->required();
    rename->add_option("new-name", options->newName, "Its new name, which no other has")->required();
    rename->footer("Example:\n  marvola bookmark rename Jazz 'Late jazz'");

    CLI::App *remove = declareStep(*command, "remove", "Remove bookmarks", action, removeBookmarks, options);
    remove->add_option("name", options->names, "The bookmarks; all of them, or none")->required();
    remove->footer("Example:\n  marvola bookmark remove Jazz 'Late jazz'");

    declareStep(*command, "list", "Print every bookmark and its link", action, listBookmarks, options)
        ->footer("Example:\n  marvola bookmark list --json");
    declareStep(*command, "default-name", "Print a name that no bookmark has", action, printDefaultName, options)
        ->footer("Example:\n  marvola bookmark add \"$(marvola bookmark default-name)\" rtsp://radio.example/folk");

    command->require_subcommand(1);
    command->footer("Examples:\n"
                    "  marvola bookmark add Jazz rtsp://radio.example/jazz\n"
                    "  marvola bookmark list");
}

} // namespace marvola
