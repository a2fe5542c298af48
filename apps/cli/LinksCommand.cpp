// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "Session.h"

#include <CLI/CLI.hpp>

namespace marvola {

namespace {

ExitStatus listPresetLinks(Session &session)
{
    const QStringList links = session.library().getItemListOfPreconfig();
    if (session.wantsJson()) {
        printJson(links);
    } else {
        printNumbered(links);
    }
    return ExitStatus::Done;
}

} // namespace

void declareLinks(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("links", "Print the preset links");
    command->footer("Examples:\n"
                    "  marvola links\n"
                    "  marvola links --json");
    command->callback([&action] { action = listPresetLinks; });
}

} // namespace marvola
