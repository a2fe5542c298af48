// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CommandLine.h"
#include "Introduction.h"
#include "Limits.h"
#include "Session.h"
#include "StandardStreams.h"
#include "Text.h"
#include "Translations.h"

#include <CLI/CLI.hpp>

#include <QtCore/QCoreApplication>
#include <QtCore/QTranslator>

#include <algorithm>
#include <csignal>

#ifdef __GLIBC__
#    include <malloc.h>
#endif

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// Bytes that stay with the program when it does not need them.
[[maybe_unused]] constexpr int KeptMemory = 4 * 1024 * 1024;

void discardMessage(QtMsgType, const QMessageLogContext &, const QString &)
{
}

ExitStatus run(const GlobalOptions &options, const Action &action)
{
    if (options.places.work && options.places.work->empty()) {
        return fail(u"--work names no directory: give one"_s, ExitStatus::Usage);
    }
    QString problem;
    const std::optional<Places> places = findPlaces(options.places, problem);
    if (!places) {
        return fail(problem);
    }
    exportPlaces(*places);
    const QString settingsFile = Session::settingsFileBelow(places->work);
    if (!provideSettingsFile(settingsFile)) {
        return fail(
            u"cannot write the settings file %1: check the directory, or name another one with --work DIR"_s.arg(
                settingsFile));
    }
    Session session(*places, options.style);
    return action(session);
}

/// The help of the subcommand that the command line names, else of the whole program.
std::string helpAskedFor(const CLI::App &app)
{
    const CLI::App *named = &app;
    std::string above;
    while (!named->get_subcommands().empty()) {
        above += above.empty() ? named->get_name() : " " + named->get_name();
        named = named->get_subcommands().front();
    }
    return named->help(above);
}

/// What is wrong with the command line; a word that nobody expects is worth more than what is missing for it.
QString mistake(const CLI::App &app, const CLI::ParseError &error)
{
    const std::vector<std::string> unknown = app.remaining(true);
    if (error.get_exit_code() != static_cast<int>(CLI::ExitCodes::RequiredError) || unknown.empty()) {
        return QString::fromLocal8Bit(error.what());
    }
    const QString word = QString::fromStdString(unknown.front());
    return (word.startsWith(u'-') ? u"there is no option '%1'"_s : u"there is no subcommand '%1'"_s).arg(word);
}

ExitStatus parseAndRun(int argc, const char *const *argv)
{
    const char *const *unusable = std::find_if_not(argv, argv + argc, canName);
    if (unusable != argv + argc) {
        return fail(
            u"'%1' is not UTF-8, so it cannot be used: rename what it names"_s.arg(QString::fromUtf8(*unusable)),
            ExitStatus::Usage);
    }
    CLI::App app(ProgramDescription, ProgramName);
    GlobalOptions options;
    Action action;
    declareCommandLine(app, options, action);
    if (argc == 1) {
        return introduce();
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &) {
        printRaw(app.get_option("--version")->count() > 0 ? app.version() + "\n" : helpAskedFor(app));
        return ExitStatus::Done;
    } catch (const CLI::ParseError &error) {
        return fail(mistake(app, error) + u"; see 'marvola --help'"_s, ExitStatus::Usage);
    }
    setTalk(options.talk);
    return run(options, action);
}

} // namespace

} // namespace marvola

int main(int argc, char **argv)
{
    if (!marvola::occupyStandardStreams()) {
        return static_cast<int>(marvola::ExitStatus::Failure);
    }
    // What Qt has to say about locales and directories is not for the user of this program.
    qInstallMessageHandler(marvola::discardMessage);
    // A reader who has gone is told by the write that fails.
    std::signal(SIGPIPE, SIG_IGN);
    // So is whoever may not write files that large.
    std::signal(SIGXFSZ, SIG_IGN);
    // A scan takes and gives back the same memory for each file; what goes back to the system has to be cleared again.
#ifdef __GLIBC__
    ::mallopt(M_TRIM_THRESHOLD, marvola::KeptMemory);
    ::mallopt(M_MMAP_THRESHOLD, marvola::KeptMemory);
#endif
    const QCoreApplication application(argc, argv);
    marvola::useWideCharacters();
    QTranslator translator;
    marvola::installTranslations(translator);
    return static_cast<int>(marvola::finishOutput(marvola::parseAndRun(argc, argv)));
}
