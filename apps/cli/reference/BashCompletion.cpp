// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandTree.h"

#include <sstream>

namespace marvola {

namespace {

constexpr char Head[] = R"(# Completion for bash, made from the program's own command line; do not edit.

# _marvola_plain TEXT: what the shell makes of a word, in `plain`; the word may be unfinished.
_marvola_plain()
{
    case $1 in
        \'*) plain=${1//\'/} ;;
        \"*) plain=${1:1} plain=${plain%\"} ;;
        *) plain=${1/#\~\//$HOME/} plain=${plain//\\/} ;;
    esac
}

# _marvola_playlists WORK CURRENT: the playlists of a work directory that begin as CURRENT does, quoted as it is.
# Nothing is asked where the program has made no files yet: completing is not to make them.
_marvola_playlists()
{
    local work=$1 name plain
    [[ -e $work/setup/juv_marvola.cfg ]] || return
    _marvola_plain "$2"
    while IFS= read -r name; do
        [[ $name == "$plain"* ]] || continue
        case ${2:0:1} in
            \') name=${name//\'/\'\\\'\'} ;;
            \") name=$(sed 's/[$`"\\]/\\&/g' <<<"$name") ;;
            # Colons and equals signs would begin another word of the line.
            *) printf -v name %q "$name"; [[ $name == \$* ]] || { name=${name//:/\\:}; name=${name//=/\\=}; } ;;
        esac
        COMPREPLY+=("$name")
    done < <("${COMP_WORDS[0]}" --work "$work" playlist list 2>/dev/null | sed 's/^ *[0-9]*  //')
}

_marvola()
{
    local current=${COMP_WORDS[COMP_CWORD]} option='' command='' position=0 index word words=''
    local files='' playlists='' plain
    local work=${JUV_APP_WRITE_PATH:-${XDG_DATA_HOME:-$HOME/.local/share}/marvola}
    COMPREPLY=()
    for ((index = 1; index < COMP_CWORD; index++)); do
        word=${COMP_WORDS[index]}
        if [[ -n $option ]]; then
            [[ $option != --work ]] || { _marvola_plain "$word"; work=$plain; }
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

constexpr char BashTail[] = R"(        esac
    fi
    if [[ -n $playlists ]]; then
        _marvola_playlists "$work" "$current"
        return
    fi
    case $files in
        -*) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen "$files" -- "$current") ;;
        *) mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current") ;;
    esac
}
complete -F _marvola marvola
)";

constexpr char Case[] = "            ";

/// What sets the words or the kind of names that \a parameter takes; empty when anything goes.
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
    if (parameter.value == "PLAYLIST") {
        return "playlists=yes";
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
    out << BashTail;
    return out.str();
}

} // namespace marvola
