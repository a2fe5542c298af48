// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandTree.h"

#include <algorithm>
#include <cctype>
#include <sstream>

namespace marvola {

namespace {

/// \a text as roff writes it.
std::string roff(const std::string &text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\\') {
            result += "\\e";
        } else if (character == '-') {
            result += "\\-";
        } else {
            result += character;
        }
    }
    // A line that begins so would be a request.
    return !result.empty() && (result.front() == '.' || result.front() == '\'') ? "\\&" + result : result;
}

std::string bold(const std::string &text)
{
    return "\\fB" + roff(text) + "\\fR";
}

std::string upperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
    return text;
}

void writeParameter(std::ostream &out, const Parameter &parameter)
{
    out << ".TP\n";
    if (!parameter.shortName.empty()) {
        out << bold(parameter.shortName) << ", ";
    }
    const bool isOption = parameter.name.front() == '-';
    out << (isOption ? bold(parameter.name) : "\\fI" + roff(parameter.name) + "\\fR");
    if (isOption && !parameter.value.empty()) {
        out << " \\fI" << roff(parameter.value) << "\\fR";
    }
    out << (parameter.repeats ? " ...\n" : "\n") << roff(parameter.description);
    std::string separator = ": ";
    for (const std::string &choice : parameter.choices) {
        out << separator << bold(choice);
        separator = ", ";
    }
    out << '\n';
}

/// Lines as they stand, without their indentation.
void writeVerbatim(std::ostream &out, const std::vector<std::string> &lines)
{
    out << ".PP\n.RS 4\n.nf\n";
    for (const std::string &line : lines) {
        out << roff(line) << '\n';
    }
    out << ".fi\n.RE\n";
}

/// A list of words, each with two or more blanks before what it means.
void writeList(std::ostream &out, const std::vector<std::string> &lines)
{
    for (const std::string &line : lines) {
        const std::size_t end = line.find("  ");
        out << ".TP\n" << bold(line.substr(0, end)) << '\n';
        out << roff(line.substr(line.find_first_not_of(' ', end))) << '\n';
    }
}

/// A paragraph of the text below a command's help: a heading that ends with a colon and indented lines, or mere text.
struct Paragraph
{
    std::string heading;
    std::vector<std::string> lines;
};

std::vector<Paragraph> paragraphsOf(const std::string &text)
{
    std::vector<Paragraph> result(1);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty()) {
            result.emplace_back();
        } else if (line.back() == ':' && result.back().lines.empty()) {
            result.back().heading = line.substr(0, line.size() - 1);
        } else {
            result.back().lines.push_back(line.substr(std::min(line.find_first_not_of(' '), line.size())));
        }
    }
    return result;
}

bool isExample(const Paragraph &paragraph)
{
    return paragraph.heading.compare(0, 7, "Example") == 0;
}

void writeFooter(std::ostream &out, const std::string &footer)
{
    for (const Paragraph &paragraph : paragraphsOf(footer)) {
        if (isExample(paragraph)) {
            writeVerbatim(out, paragraph.lines);
            continue;
        }
        out << ".PP\n";
        for (const std::string &line : paragraph.lines) {
            out << roff(line) << '\n';
        }
    }
}

void writeCommand(std::ostream &out, const CommandTree &command)
{
    out << ".SS " << roff(command.path) << '\n' << roff(command.description) << ".\n";
    for (const Parameter &positional : command.positionals) {
        writeParameter(out, positional);
    }
    for (const Parameter &option : command.options) {
        if (option.name != "--help") {
            writeParameter(out, option);
        }
    }
    if (command.commands.empty()) {
        writeFooter(out, command.footer);
    }
}

/// The program's own footer has a section for each of its paragraphs.
void writeSections(std::ostream &out, const std::string &footer)
{
    for (const Paragraph &paragraph : paragraphsOf(footer)) {
        out << ".SH " << upperCase(paragraph.heading) << '\n';
        if (isExample(paragraph)) {
            writeVerbatim(out, paragraph.lines);
        } else {
            writeList(out, paragraph.lines);
        }
    }
}

} // namespace

std::string manualPage(const CommandTree &tree, const std::string &version)
{
    std::ostringstream out;
    out << ".\\\" Made from the program's own command line; do not edit.\n"
        << ".TH MARVOLA 1 \"\" \"" << tree.name << ' ' << version << "\" \"User Commands\"\n"
        << ".nh\n.ad l\n" // names are not to be hyphenated
        << ".SH NAME\n"
        << tree.name << " \\- " << roff(tree.description) << '\n'
        << ".SH SYNOPSIS\n"
        << bold(tree.name) << " [\\fIOPTIONS\\fR] \\fISUBCOMMAND\\fR ...\n"
        << ".SH DESCRIPTION\n"
        << "Finds and indexes media files, lists them by artist, album and genre, and reads and changes the player's\n"
        << "queue, playlists, bookmarks and settings. Without arguments it says how to begin.\n"
        << ".SH OPTIONS\n"
        << "These may stand before or behind the subcommand.\n";
    for (const Parameter &option : tree.options) {
        writeParameter(out, option);
    }
    out << ".SH SUBCOMMANDS\n";
    for (const CommandTree *command : allCommands(tree)) {
        if (command != &tree) {
            writeCommand(out, *command);
        }
    }
    writeSections(out, tree.footer);
    return out.str();
}

} // namespace marvola
