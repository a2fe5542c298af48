// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_COMMANDS_H
#define MARVOLA_CLI_COMMANDS_H

#include "ExitStatus.h"

#include <functional>

namespace CLI {
class App;
}

namespace marvola {

class Session;

/// What the program does once the command line is understood and the library stands.
using Action = std::function<ExitStatus(Session &)>;

/// Adds one subcommand to \a app; when the command line names it, \a action becomes what it does.
using DeclareCommand = void (*)(CLI::App &app, Action &action);

/// Adds every subcommand. A new one is a file with its declare function, and a line in the table behind this function.
void declareCommands(CLI::App &app, Action &action);

void declareRefresh(CLI::App &app, Action &action);
void declareShow(CLI::App &app, Action &action);
void declareList(CLI::App &app, Action &action);
void declareQueue(CLI::App &app, Action &action);
void declarePlaylist(CLI::App &app, Action &action);
void declareSettings(CLI::App &app, Action &action);
void declareBookmark(CLI::App &app, Action &action);
void declareHistory(CLI::App &app, Action &action);
void declareLinks(CLI::App &app, Action &action);
void declareConnect(CLI::App &app, Action &action);
void declareStatus(CLI::App &app, Action &action);

} // namespace marvola

#endif
