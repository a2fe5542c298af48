// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "DataLink.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace marvola {

void declareConnect(CLI::App &app, Action &action)
{
    struct Options
    {
        std::string profile;
        bool once = false;
    };
    CLI::App *command = app.add_subcommand("connect", "Open the data link and hold it");
    auto options = std::make_shared<Options>();
    command
        ->add_option("--profile", options->profile,
                     "The network profile, for this run (default: the setting 'profile', else the one you choose)")
        ->type_name("NAME");
    command->add_flag("--once", options->once, "Close the link as soon as it is up");
    command->footer("Ctrl-C closes the link, or gives up opening it.\n\n"
                    "Examples:\n"
                    "  marvola connect\n"
                    "  marvola connect --profile 'Operator GPRS'\n"
                    "  marvola connect --once --json");
    command->callback([&action, options] {
        action = openDataLink({QString::fromStdString(options->profile), options->once});
    });
}

} // namespace marvola
