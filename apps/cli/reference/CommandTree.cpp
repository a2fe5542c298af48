// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandTree.h"

#include <CLI/CLI.hpp>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// What stands in \a type between braces, as in "TEXT:{on,off}".
std::vector<std::string> choicesIn(const std::string &type)
{
    const std::size_t open = type.find('{');
    const std::size_t close = type.rfind('}');
    if (open == std::string::npos || close == std::string::npos) {
        return {};
    }
    return CLI::detail::split(type.substr(open + 1, close - open - 1), ',');
}

Parameter parameterOf(const CLI::Option &option)
{
    Parameter parameter;
    if (option.get_positional()) {
        parameter.name = option.get_name(true);
    } else {
        parameter.name = "--" + option.get_lnames().front();
        parameter.shortName = option.get_snames().empty() ? std::string() : "-" + option.get_snames().front();
    }
    if (option.get_items_expected_max() > 0) {
        const std::string type = option.get_type_name();
        parameter.value = type.substr(0, type.find(':'));
        parameter.choices = choicesIn(type);
    }
    parameter.description = option.get_description();
    parameter.isRequired = option.get_required();
    parameter.repeats = option.get_expected_max() == CLI::detail::expected_max_vector_size;
    return parameter;
}

/// A group of options has a --help like that of its command.
bool isNamedIn(const std::vector<Parameter> &parameters, const Parameter &parameter)
{
    return std::any_of(parameters.begin(), parameters.end(),
                       [&parameter](const Parameter &known) { return known.name == parameter.name; });
}

void addParameters(CommandTree &tree, const CLI::App &app)
{
    for (const CLI::Option *option : app.get_options()) {
        std::vector<Parameter> &parameters = option->get_positional() ? tree.positionals : tree.options;
        const Parameter parameter = parameterOf(*option);
        if (!isNamedIn(parameters, parameter)) {
            parameters.push_back(parameter);
        }
    }
    for (const CLI::App *child : app.get_subcommands([](const CLI::App *) { return true; })) {
        if (child->get_name().empty()) { // a group of options of this command
            addParameters(tree, *child);
        }
    }
}

QJsonArray toJson(const std::vector<Parameter> &parameters)
{
    QJsonArray array;
    for (const Parameter &parameter : parameters) {
        QJsonArray choices;
        for (const std::string &choice : parameter.choices) {
            choices.append(QString::fromStdString(choice));
        }
        array.append(QJsonObject{{u"name"_s, QString::fromStdString(parameter.name)},
                                 {u"value"_s, QString::fromStdString(parameter.value)},
                                 {u"choices"_s, choices}});
    }
    return array;
}

QJsonObject toJson(const CommandTree &tree)
{
    QJsonArray commands;
    for (const CommandTree &command : tree.commands) {
        commands.append(toJson(command));
    }
    return {{u"path"_s, QString::fromStdString(tree.path)},
            {u"description"_s, QString::fromStdString(tree.description)},
            {u"options"_s, toJson(tree.options)},
            {u"positionals"_s, toJson(tree.positionals)},
            {u"commands"_s, commands}};
}

} // namespace

CommandTree treeOf(const CLI::App &app, const std::string &above)
{
    CommandTree tree;
    tree.name = app.get_name();
    tree.path = above;
    tree.description = app.get_description();
    tree.footer = app.get_footer();
    addParameters(tree, app);
    for (const CLI::App *child : app.get_subcommands([](const CLI::App *) { return true; })) {
        if (!child->get_name().empty()) {
            tree.commands.push_back(
                treeOf(*child, above.empty() ? child->get_name() : above + ' ' + child->get_name()));
        }
    }
    return tree;
}

std::vector<const CommandTree *> allCommands(const CommandTree &tree)
{
    std::vector<const CommandTree *> result = {&tree};
    for (const CommandTree &command : tree.commands) {
        const std::vector<const CommandTree *> below = allCommands(command);
        result.insert(result.end(), below.begin(), below.end());
    }
    return result;
}

std::string treeAsJson(const CommandTree &tree)
{
    return QJsonDocument(toJson(tree)).toJson().toStdString();
}

} // namespace marvola
