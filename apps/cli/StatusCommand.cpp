// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "IndexSize.h"
#include "Session.h"
#include "SettingsTable.h"
#include "Text.h"

#include <CLI/CLI.hpp>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <optional>
#include <sys/statvfs.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// One directory of a storage place.
struct RootStatus
{
    QString place;
    QString path;
    bool exists;
    std::optional<qint64> freeBytes; ///< unknown when the system does not tell
};

/// Asked of the directory itself, which works also where no table of mounts can be read.
std::optional<qint64> freeBytesAt(const QString &directory)
{
    struct statvfs status = {};
    if (::statvfs(QFile::encodeName(directory).constData(), &status) != 0) {
        return std::nullopt;
    }
    return static_cast<qint64>(status.f_bavail) * static_cast<qint64>(status.f_frsize);
}

QList<RootStatus> rootStatuses(const Places &places)
{
    QList<RootStatus> result;
    for (const Place &place : libraryPlaces(places)) {
        for (const QString &root : place.roots) {
            const bool exists = QDir(root).exists();
            result.append({place.name, root, exists, exists ? freeBytesAt(root) : 0});
        }
    }
    return result;
}

QString megabytes(const std::optional<qint64> &bytes)
{
    return bytes ? u"%1 MB free"_s.arg(*bytes / 1'000'000) : u"free space unknown"_s;
}

QJsonObject toJson(Session &session, const IndexSize &index)
{
    QJsonArray places;
    for (const RootStatus &root : rootStatuses(session.places())) {
        places.append(QJsonObject{{u"name"_s, root.place},
                                  {u"path"_s, wellFormed(root.path)},
                                  {u"exists"_s, root.exists},
                                  {u"freeBytes"_s, root.freeBytes ? QJsonValue(*root.freeBytes) : QJsonValue()}});
    }
    const QString work = session.library().getWorkDirectory();
    return {{u"workDirectory"_s, work.isEmpty() ? QJsonValue() : QJsonValue(wellFormed(work))},
            {u"settingsFile"_s, wellFormed(session.settingsFile())},
            {u"places"_s, places},
            {u"searchOrder"_s, settingCalled(u"search-order"_s)->value(session)},
            {u"limits"_s, settingCalled(u"limits"_s)->value(session)},
            {u"index"_s, QJsonObject{{u"records"_s, index.records},
                                     {u"bytesUsed"_s, index.bytesUsed},
                                     {u"bytesReserved"_s, index.bytesReserved}}},
            {u"codec"_s, QJsonObject{{u"name"_s, wellFormed(session.library().getCodecForClip())},
                                     {u"available"_s, session.isCodecAvailable()}}}};
}

void print(Session &session, const IndexSize &index)
{
    const QString work = session.library().getWorkDirectory();
    QList<QStringList> rows = {
        {u"work directory"_s, work.isEmpty() ? u"none: no directory has room for the index"_s : work},
        {u"settings file"_s, session.settingsFile()}};
    for (const RootStatus &root : rootStatuses(session.places())) {
        rows.append({root.place, root.path + (root.exists ? u", "_s + megabytes(root.freeBytes) : u", not there"_s)});
    }
    rows.append({u"search order"_s, valueText(settingCalled(u"search-order"_s)->value(session))});
    rows.append({u"limits"_s, valueText(settingCalled(u"limits"_s)->value(session))});
    rows.append({u"index"_s,
                 u"%1 files; %2 of %3 bytes used"_s.arg(index.records).arg(index.bytesUsed).arg(index.bytesReserved)});
    rows.append(
        {u"text codec"_s, session.library().getCodecForClip() +
                              (session.isCodecAvailable() ? QString() : u", not available: Latin-1 instead"_s)});
    printTable(rows);
}

ExitStatus status(Session &session)
{
    const IndexSize index = measureIndex(session.library().getWorkDirectory());
    if (session.wantsJson()) {
        printJson(toJson(session, index));
    } else {
        print(session, index);
    }
    return ExitStatus::Done;
}

} // namespace

void declareStatus(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("status", "Show where everything is, and how full");
    command->footer("Examples:\n"
                    "  marvola status\n"
                    "  marvola status --json");
    command->callback([&action] { action = status; });
}

} // namespace marvola
