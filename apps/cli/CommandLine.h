// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_COMMANDLINE_H
#define MARVOLA_CLI_COMMANDLINE_H

#include "Commands.h"
#include "Output.h"
#include "Places.h"

namespace marvola {

/// What the command line says for every subcommand.
struct GlobalOptions
{
    PlaceOptions places;
    OutputStyle style = OutputStyle::People;
    Talk talk = Talk::Normal;
};

/// The program's name on the command line.
inline constexpr char ProgramName[] = "marvola";
inline constexpr char ProgramDescription[] = "The phone's media library, from a terminal";

/// Declares all that the command line may hold, with its help. The manual page and the shells' completions are made of
/// the same declaration.
void declareCommandLine(CLI::App &app, GlobalOptions &options, Action &action);

} // namespace marvola

#endif
