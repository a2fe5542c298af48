// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandTree.h"

#include <sstream>

namespace marvola {

namespace {

constexpr char Head[] = R"(# Completion for bash, made from the program's own command line; do not edit.
_marvola()
{
    local current=${COMP_WORDS[COMP_CWORD]} option='' command='' position=0 index word words='' files=''
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; index++)); do
        word=${COMP_WORDS[index]}
        if [[ -n $option ]]; then
            option=''
            continue
        fi
        case $command:$word in
)";

constexpr char Middle[] = R"(            *:-*) ;;
            *) position=$((position + 1)) ;;
        esac
    done
    if [[ -n $option ]]; then
        case $command:$option in
)";

constexpr char Tail[] = R"(        esac
    fi
    case $files in
        -*) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen "$files" -- "$current") ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current") ;;
    esac
}
complete -F _marvola marvola
)";

constexpr char Case[] = "            ";

/// What sets the words or the kind of files that \a parameter takes; empty when anything goes.
std::string valuesOf(const Parameter &parameter)
{
    if (!parameter.choices.empty()) {
        std::string words = "words='";
        for (const std::string &choice : parameter.choices) {
            words += choice + ' ';
        }
        words.back() = '\'';
        return words;
    }
    if (parameter.value == "DIR") {
        return "files=-d";
    }
    return parameter.value == "FILE" ? "files=-f" : "";
}

/// The program's own options go with every command.
std::string commandPattern(const CommandTree &command)
{
    return command.path.empty() ? "*" : "'" + command.path + "'";
}

void writeWalk(std::ostream &out, const CommandTree &command)
{
    for (const Parameter &option : command.options) {
        if (!option.value.empty()) {
            out << Case << commandPattern(command) << ":" << option.name << ") option=$word ;;\n";
        }
    }
    for (const CommandTree &child : command.commands) {
        out << Case << "'" << command.path << "':" << child.name << ") command='" << child.path << "' ;;\n";
    }
}

void writeOptionValues(std::ostream &out, const CommandTree &command)
{
    for (const Parameter &option : command.options) {
        const std::string values = valuesOf(option);
        if (!values.empty()) {
            out << Case << commandPattern(command) << ":" << option.name << ") " << values << " ;;\n";
        }
    }
}

std::string optionNames(const CommandTree &command)
{
    std::string names;
    for (const Parameter &option : command.options) {
        names += (names.empty() ? "" : " ") + option.name;
    }
    return names;
}

void writeOptions(std::ostream &out, const CommandTree &command, const std::string &globals)
{
    const std::string own = command.path.empty() ? std::string() : optionNames(command) + ' ';
    out << Case << "'" << command.path << "') words='" << own << globals << "' ;;\n";
}

void writePositionals(std::ostream &out, const CommandTree &command)
{
    if (!command.commands.empty()) {
        out << Case << "'" << command.path << "':*) words='";
        for (const CommandTree &child : command.commands) {
            out << (&child == &command.commands.front() ? "" : " ") << child.name;
        }
        out << "' ;;\n";
    }
    int position = 0;
    for (const Parameter &positional : command.positionals) {
        const std::string values = valuesOf(positional);
        if (!values.empty()) {
            out << Case << "'" << command.path << "':" << (positional.repeats ? "*" : std::to_string(position)) << ") "
                << values << " ;;\n";
        }
        ++position;
    }
}

} // namespace

std::string bashCompletion(const CommandTree &tree)
{
    const std::vector<const CommandTree *> commands = allCommands(tree);
    std::string globals = optionNames(tree);
    // Every command has a --help of its own.
    globals.erase(globals.find("--help"), sizeof "--help");
    std::ostringstream out;
    out << Head;
    for (const CommandTree *command : commands) {
        writeWalk(out, *command);
    }
    out << Middle;
    for (const CommandTree *command : commands) {
        writeOptionValues(out, *command);
    }
    out << "        esac\n    elif [[ $current == -* ]]; then\n        case $command in\n";
    for (const CommandTree *command : commands) {
        writeOptions(out, *command, command == &tree ? optionNames(tree) : globals);
    }
    out << "        esac\n    else\n        case $command:$position in\n";
    for (const CommandTree *command : commands) {
        writePositionals(out, *command);
    }
    out << Tail;
    return out.str();
}

} // namespace marvola
