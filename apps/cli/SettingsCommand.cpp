// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "Session.h"
#include "SettingsTable.h"

#include <marvola/ConfigFile.h>

#include <CLI/CLI.hpp>

#include <memory>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct SettingsOptions
{
    std::string key;
    std::string value;
};

ExitStatus failUnknownSetting(const QString &key)
{
    return fail(u"there is no setting '%1'; see 'marvola settings list'"_s.arg(key), ExitStatus::Usage);
}

ExitStatus getSetting(Session &session, const SettingsOptions &options)
{
    const QString key = QString::fromStdString(options.key);
    const Setting *setting = settingCalled(key);
    if (setting == nullptr) {
        return failUnknownSetting(key);
    }
    const QJsonValue value = setting->value(session);
    if (session.wantsJson()) {
        printJson(QJsonObject{{setting->key, value}});
    } else {
        printLine(valueText(value));
    }
    return ExitStatus::Done;
}

/// The library does not tell whether it could store its settings; the file does.
bool isStored(Session &session, const Setting &setting)
{
    const ConfigFile file(session.settingsFile(), false);
    return file.readEntry(setting.group, setting.entry) == storedText(setting, session);
}

ExitStatus setSetting(Session &session, const SettingsOptions &options)
{
    const QString key = QString::fromStdString(options.key);
    const Setting *setting = settingCalled(key);
    if (setting == nullptr) {
        return failUnknownSetting(key);
    }
    if (setting->change == nullptr) {
        return fail(u"%1 cannot be set from here: the library never stores it; edit [%2] %3 in %4"_s.arg(
            key, setting->group, setting->entry, session.settingsFile()));
    }
    const QString problem = setting->change(session, QString::fromStdString(options.value));
    if (!problem.isEmpty()) {
        return fail(key + u' ' + problem, ExitStatus::Usage);
    }
    session.library().storeConfig();
    if (!isStored(session, *setting)) {
        return fail(u"cannot write %1 to %2: check that the file can be written and the medium has room"_s.arg(
            key, session.settingsFile()));
    }
    if (session.wantsJson()) {
        printJson(QJsonObject{{setting->key, setting->value(session)}});
    }
    return ExitStatus::Done;
}

/// The kind of value that a key is, with all that there are.
std::string keyType()
{
    QStringList keys;
    for (const Setting &setting : allSettings()) {
        keys.append(setting.key);
    }
    return (u"KEY:{"_s + keys.join(u',') + u'}').toStdString();
}

ExitStatus listSettings(Session &session)
{
    QJsonObject object;
    QList<QStringList> rows;
    for (const Setting &setting : allSettings()) {
        const QJsonValue value = setting.value(session);
        object.insert(setting.key, value);
        if (value.isObject()) {
            rows.append({setting.key, valueText(value) + u"  ("_s + setting.description + u')'});
        } else {
            rows.append({setting.key, valueText(value), setting.description});
        }
    }
    if (session.wantsJson()) {
        printJson(object);
    } else {
        printTable(rows);
    }
    return ExitStatus::Done;
}

} // namespace

void declareSettings(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("settings", "Read and change the player's settings");
    auto options = std::make_shared<SettingsOptions>();
    CLI::App *get = command->add_subcommand("get", "Print one setting");
    get->add_option("key", options->key, "The setting")->required()->type_name(keyType());
    get->footer("Example:\n  marvola settings get volume");
    get->callback(
        [&action, options] { action = [options](Session &session) { return getSetting(session, *options); }; });

    CLI::App *set = command->add_subcommand("set", "Change one setting and store it");
    set->add_option("key", options->key, "The setting")->required()->type_name(keyType());
    set->add_option("value", options->value, "Its new value")->required();
    set->footer("Examples:\n"
                "  marvola settings set volume 200\n"
                "  marvola settings set shuffle on\n"
                "  marvola settings set search-order card,phone");
    set->callback(
        [&action, options] { action = [options](Session &session) { return setSetting(session, *options); }; });

    CLI::App *list = command->add_subcommand("list", "Print every setting");
    list->footer("Example:\n  marvola settings list --json");
    list->callback([&action] { action = listSettings; });

    command->require_subcommand(1);
    command->footer("Examples:\n"
                    "  marvola settings list\n"
                    "  marvola settings get volume\n"
                    "  marvola settings set volume 200");
}

} // namespace marvola
