// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "MediaQuery.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

ExitStatus list(Session &session, const MediaQuery &query)
{
    if (session.library().getWorkDirectory().isEmpty()) {
        return fail(
            u"no room for the index in %1: see 'marvola status', or name another directory with --work DIR"_s.arg(
                session.places().work));
    }
    if (!asksForSomething(query)) {
        return fail(u"'marvola list' needs to know what to list; see 'marvola list --help'"_s, ExitStatus::Usage);
    }
    QString problem;
    const std::optional<QStringList> entries = runQuery(session.library(), query, problem);
    if (!entries) {
        return fail(problem);
    }
    if (session.wantsJson()) {
        printJson(*entries);
    } else {
        printNumbered(*entries);
    }
    return ExitStatus::Done;
}

} // namespace

void declareList(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("list", "List what the index holds");
    auto query = std::make_shared<MediaQuery>();
    CLI::Option_group *group = command->add_option_group("What", "What to list");
    group->add_option("what", query->whole, "The whole of one kind")->check(CLI::IsMember(wholeListNames()));
    declareSelections(*group, *query);
    group->require_option(1);
    command->footer("Examples:\n"
                    "  marvola list media\n"
                    "  marvola list artists\n"
                    "  marvola list --artist 'Ada Lovelace'\n"
                    "  marvola list --genre Jazz --json");
    command->callback([&action, query] { action = [query](Session &session) { return list(session, *query); }; });
}

} // namespace marvola
