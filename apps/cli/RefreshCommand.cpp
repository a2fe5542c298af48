// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Commands.h"
#include "IndexSize.h"
#include "RefreshRun.h"
#include "RefreshSummary.h"
#include "Session.h"

#include <CLI/CLI.hpp>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

bool exists(const QString &directory)
{
    return !directory.isEmpty() && QDir(directory).exists();
}

/// A refresh of nothing would empty the index, so a storage place that was named must be there, and at least one in
/// all.
QString problemWithPlaces(const Places &places)
{
    for (const QString &named : places.named) {
        if (!exists(named)) {
            return u"the storage place %1 is no directory; nothing was changed: check the path"_s.arg(named);
        }
    }
    const QStringList roots = {places.data, places.card1, places.card2};
    if (std::none_of(roots.begin(), roots.end(), exists)) {
        const QString looked = places.data.isEmpty() ? QString() : u" (%1 does not exist)"_s.arg(places.data);
        return u"no storage place is there%1; nothing was changed: give --data DIR"_s.arg(looked);
    }
    return {};
}

/// The library does not tell that it cannot write its index; the old one would stay, and look like the new one.
QString problemWithIndex(const QString &workDirectory)
{
    const QString path = infoFileIn(workDirectory);
    const int file = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (file < 0) {
        return u"cannot write the index %1: %2; nothing was changed: check the medium, or name another directory with "
               "--work DIR"_s.arg(path, qt_error_string(errno));
    }
    ::close(file);
    return {};
}

/// What the command line says.
struct RefreshOptions
{
    std::optional<std::string> places;
    bool isWithoutCache = false;
};

ExitStatus refresh(Session &session, const RefreshOptions &options)
{
    if (options.places) {
        QString mistake;
        const auto order = searchOrderFrom(QString::fromStdString(*options.places).split(u','),
                                           libraryPlaces(session.places()), mistake);
        if (!order) {
            return fail(mistake, ExitStatus::Usage);
        }
        session.library().setRefreshFlag(*order);
    }
    const QString problem = problemWithPlaces(session.places());
    if (!problem.isEmpty()) {
        return fail(problem);
    }
    if (session.library().getWorkDirectory().isEmpty()) {
        return fail(u"no room for the index in %1: it needs 200,000 bytes that can be written; free some, or name "
                    "another directory with --work DIR"_s.arg(session.places().work));
    }
    const QString obstacle = problemWithIndex(session.library().getWorkDirectory());
    if (!obstacle.isEmpty()) {
        return fail(obstacle);
    }
    if (!session.isCodecAvailable()) {
        note(u"the text codec %1 named in %2 does not exist here; tags that are not Unicode are read as Latin-1"_s.arg(
            session.library().getCodecForClip(), session.settingsFile()));
    }
    if (!session.noteCrashes()) {
        note(u"files over which this program dies are not noted: %1 cannot be used; remove it"_s.arg(
            session.crashNote()));
    }
    if (!options.isWithoutCache) {
        session.rememberAnswers();
    }
    const RefreshRun run = runRefresh(session);
    const RefreshSummary summary = summarize(session, run);
    if (session.wantsJson()) {
        printJson(toJson(summary));
    } else if (!isQuiet()) {
        print(summary);
    }
    if (summary.reason == StopReason::NotWritten) {
        return fail(u"the index in %1 could not be written: check the medium and its free space"_s.arg(
            session.library().getWorkDirectory()));
    }
    return run.isCancelled ? ExitStatus::Interrupted : ExitStatus::Done;
}

} // namespace

void declareRefresh(CLI::App &app, Action &action)
{
    CLI::App *command = app.add_subcommand("refresh", "Find media files and index them");
    auto options = std::make_shared<RefreshOptions>();
    command
        ->add_option("--places", options->places, "Places to scan, in order: phone, card (default: the search order)")
        ->type_name("NAME,NAME");
    command->add_flag("--no-cache", options->isWithoutCache,
                      "Read every file again, also those that did not change since the last refresh");
    command->footer("Ctrl-C stops early and keeps what was indexed.\n\n"
                    "Examples:\n"
                    "  marvola refresh\n"
                    "  marvola refresh --data ~/Music --card1 /media/card\n"
                    "  marvola refresh --places card,phone --json");
    command->callback(
        [&action, options] { action = [options](Session &session) { return refresh(session, *options); }; });
}

} // namespace marvola
