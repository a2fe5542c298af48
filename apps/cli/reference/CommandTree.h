// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_REFERENCE_COMMANDTREE_H
#define MARVOLA_CLI_REFERENCE_COMMANDTREE_H

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace marvola {

/// An option, or a positional argument.
struct Parameter
{
    std::string name;                 ///< "--data", or "item"
    std::string shortName;            ///< "-h"; empty for none
    std::string value;                ///< what it takes: "DIR", "FILE", "PLAYLIST", "TEXT" ...; empty for a flag
    std::vector<std::string> choices; ///< all that it takes; empty when there is no such list
    std::string description;
    bool isRequired = false;
    bool repeats = false;
};

/// One command with all below it, as the parser of the command line has it.
struct CommandTree
{
    std::string path; ///< "" for the program, "queue add" for a subcommand
    std::string name;
    std::string description;
    std::string footer;
    std::vector<Parameter> options;
    std::vector<Parameter> positionals;
    std::vector<CommandTree> commands;
};

CommandTree treeOf(const CLI::App &app, const std::string &above = {});

/// Every command from \a tree downwards, a command before those below it.
std::vector<const CommandTree *> allCommands(const CommandTree &tree);

/// All of the tree for programs that check something against it.
std::string treeAsJson(const CommandTree &tree);
std::string manualPage(const CommandTree &tree, const std::string &version);
std::string bashCompletion(const CommandTree &tree);
std::string zshCompletion(const CommandTree &tree);

} // namespace marvola

#endif
