// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandTree.h"

#include <algorithm>
#include <sstream>

namespace marvola {

namespace {

// Nothing is asked where the program has made no files yet: completing is not to make them.
constexpr char Playlists[] = R"zsh(
# The playlists of the work directory that the line or the environment names.
_marvola_playlists()
{
    [[ -e $_marvola_work/setup/juv_marvola.cfg ]] || return
    local -a playlists expl
    playlists=(${(f)"$($_marvola_program --work $_marvola_work playlist list 2>/dev/null | sed 's/^ *[0-9]*  //')"})
    _wanted playlists expl playlist compadd -a playlists
}
)zsh";

/// Before the words of the line are taken away level by level.
constexpr char NoteWords[] = R"(    local _marvola_program=${(Q)words[1]} at=$words[(ie)--work]
    local _marvola_work=$JUV_APP_WRITE_PATH
    : ${_marvola_work:=${XDG_DATA_HOME:-$HOME/.local/share}/marvola}
    (( at + 1 < CURRENT )) && _marvola_work=${${(Q)words[at+1]}/#\~\//$HOME/}
)";

constexpr char ZshTail[] = R"(
# Loaded by the completion system the file is the function; otherwise it names it.
if [[ $funcstack[1] == _marvola ]]; then
    _marvola "$@"
else
    compdef _marvola marvola
fi
)";

/// \a text inside an entry in single quotes, where brackets and colons separate.
std::string quoted(const std::string &text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\'') {
            result += "'\\''";
        } else if (character == '[' || character == ']' || character == ':' || character == '\\') {
            result += std::string("\\") + character;
        } else {
            result += character;
        }
    }
    return result;
}

/// What completes the value of \a parameter.
std::string actionOf(const Parameter &parameter)
{
    if (!parameter.choices.empty()) {
        std::string action = "(";
        for (const std::string &choice : parameter.choices) {
            action += choice + ' ';
        }
        action.back() = ')';
        return action;
    }
    if (parameter.value == "PLAYLIST") {
        return "_marvola_playlists";
    }
    if (parameter.value == "DIR") {
        return "_path_files -/";
    }
    return parameter.value == "FILE" ? "_files" : " ";
}

std::string optionEntry(const Parameter &option)
{
    std::string text = "'" + option.name + '[' + quoted(option.description) + ']';
    if (!option.value.empty()) {
        text += ':' + option.value + ':' + actionOf(option);
    }
    return (option.repeats ? "'*'" : "") + text + '\'';
}

std::string functionName(const CommandTree &command)
{
    std::string name = command.path.empty() ? "_marvola" : "_marvola_" + command.path;
    std::replace(name.begin(), name.end(), ' ', '_');
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

void writeOptions(std::ostream &out, const CommandTree &command)
{
    // What stands behind a subcommand is for that one to take apart, options too.
    out << "    _arguments -C" << (command.commands.empty() ? "" : " -A '-*'");
    for (const Parameter &option : command.options) {
        out << " \\\n        " << optionEntry(option);
    }
    if (!command.path.empty()) {
        out << " \\\n        $_marvola_everywhere";
    }
}

void writeBranch(std::ostream &out, const CommandTree &command)
{
    out << "    local curcontext=$curcontext state line\n    typeset -A opt_args\n    local -a commands\n    "
           "commands=(\n";
    for (const CommandTree &child : command.commands) {
        out << "        '" << child.name << ':' << quoted(child.description) << "'\n";
    }
    out << "    )\n";
    writeOptions(out, command);
    out << " \\\n        '1: :->command' '*:: :->rest' && return\n"
        << "    case $state in\n        command) _describe command commands ;;\n        rest)\n"
        << "            case $words[1] in\n";
    for (const CommandTree &child : command.commands) {
        out << "                " << child.name << ") " << functionName(child) << " ;;\n";
    }
    out << "            esac\n            ;;\n    esac\n";
}

void writeLeaf(std::ostream &out, const CommandTree &command)
{
    writeOptions(out, command);
    for (const Parameter &positional : command.positionals) {
        out << " \\\n        '" << (positional.repeats ? "*" : "") << ':' << quoted(positional.name) << ':'
            << actionOf(positional) << '\'';
    }
    out << '\n';
}

} // namespace

std::string zshCompletion(const CommandTree &tree)
{
    std::ostringstream out;
    out << "#compdef marvola\n# Completion for zsh, made from the program's own command line; do not edit.\n\n"
        << "_marvola_everywhere=(\n";
    for (const Parameter &option : tree.options) {
        if (option.name != "--help") { // every command has its own
            out << "    " << optionEntry(option) << '\n';
        }
    }
    out << ")\n" << Playlists;
    for (const CommandTree *command : allCommands(tree)) {
        out << '\n' << functionName(*command) << "()\n{\n" << (command == &tree ? NoteWords : "");
        if (command->commands.empty()) {
            writeLeaf(out, *command);
        } else {
            writeBranch(out, *command);
        }
        out << "}\n";
    }
    out << ZshTail;
    return out.str();
}

} // namespace marvola
