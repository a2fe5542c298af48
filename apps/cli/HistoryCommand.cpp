// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "KeptLists.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

ExitStatus addToHistory(Session &session, const QString &url)
{
    if (url.isEmpty()) {
        return fail(u"an empty link cannot be in the history; give a link"_s, ExitStatus::Usage);
    }
    const ExitStatus ready = requireListFile(session);
    if (ready != ExitStatus::Done) {
        return ready;
    }
    session.library().addItemToHistory(url);
    const ExitStatus kept = keepLists(session, [&] { return latestKeptLink(session) == url; });
    if (kept == ExitStatus::Done && session.wantsJson()) {
        printJson(session.library().getItemListOfHistory());
    }
    return kept;
}

ExitStatus listHistory(Session &session)
{
    const ExitStatus ready = requireListFile(session);
    if (ready != ExitStatus::Done) {
        return ready;
    }
    const QStringList links = session.library().getItemListOfHistory();
    if (session.wantsJson()) {
        printJson(links);
    } else {
        printNumbered(links);
    }
    return ExitStatus::Done;
}

} // namespace

void declareHistory(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("history", "Remember the links that were played");
    auto url = std::make_shared<std::string>();
    CLI::App *add = command->add_subcommand("add", "Put a link at the front of the history");
    add->add_option("url", *url, "The link")->required();
    add->footer("Example:\n  marvola history add rtsp://radio.example/jazz");
    add->callback([&action, url] {
        action = [url](Session &session) { return addToHistory(session, QString::fromStdString(*url)); };
    });

    CLI::App *list = command->add_subcommand("list", "Print the links, the latest first");
    list->footer("Example:\n  marvola history list --json");
    list->callback([&action] { action = listHistory; });

    command->require_subcommand(1);
    command->footer("Examples:\n"
                    "  marvola history add rtsp://radio.example/jazz\n"
                    "  marvola history list");
}

} // namespace marvola
