// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class Program : public CliTest
{
protected:
    /// Runs the program with \a arguments and without the standard streams.
    CliResult runWithoutStreams(const QStringList &arguments) const
    {
        const std::unique_ptr<QProcess> program = process(places() + arguments);
        program->setChildProcessModifier([] {
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                ::close(descriptor);
        });
        program->start();
        return finish(*program);
    }
};

} // namespace

TEST_F(Program, EverySubcommandHelpsWithExamples)
{
    const QList<QStringList> commands = {{},
                                         {u"refresh"_s},
                                         {u"show"_s},
                                         {u"list"_s},
                                         {u"queue"_s},
                                         {u"queue"_s, u"add"_s},
                                         {u"queue"_s, u"play"_s},
                                         {u"playlist"_s},
                                         {u"playlist"_s, u"save"_s},
                                         {u"playlist"_s, u"rename"_s},
                                         {u"playlist"_s, u"export"_s},
                                         {u"playlist"_s, u"import"_s},
                                         {u"status"_s},
                                         {u"settings"_s},
                                         {u"settings"_s, u"get"_s},
                                         {u"settings"_s, u"set"_s},
                                         {u"settings"_s, u"list"_s}};
    for (const QStringList &command : commands) {
        const CliResult result = runBare(command + QStringList{u"--help"_s});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.errors.isEmpty());
        const QString line = u"  marvola "_s + command.join(u' ');
        EXPECT_TRUE(result.output.contains(line.toUtf8())) << result.output.constData();
        EXPECT_TRUE(result.output.contains((u"Usage: marvola "_s + command.join(u' ')).trimmed().toUtf8()));
        EXPECT_TRUE(result.output.contains("Example")) << result.output.constData();
    }
    EXPECT_FALSE(QFileInfo::exists(path(u"home/.local"_s))) << "help makes no files";
}

TEST_F(Program, VersionIsPrinted)
{
    const CliResult result = runBare({u"--version"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "marvola " MARVOLA_VERSION "\n");
}

TEST_F(Program, MistakesOnTheCommandLineAreOneLineAndStatusTwo)
{
    const QList<QStringList> mistakes = {
        {u"dance"_s}, {u"--nonsense"_s}, {u"status"_s, u"extra"_s}, {u"--data"_s}, {u"status"_s, u"bad\n\x1b[2J"_s}};
    for (const QStringList &arguments : mistakes) {
        const CliResult result = runBare(arguments);
        EXPECT_EQ(result.status, 2) << qPrintable(arguments.join(u' '));
        EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
        EXPECT_TRUE(result.errors.startsWith("marvola: ")) << result.errors.constData();
        EXPECT_FALSE(result.errors.contains('\x1b'));
        EXPECT_TRUE(result.output.isEmpty()) << result.output.constData();
    }
}

TEST_F(Program, WhatIsNotThereIsAFailureAndNoMistakeOnTheCommandLine)
{
    const QList<QStringList> absent = {{u"playlist"_s, u"load"_s, u"nope"_s},
                                       {u"playlist"_s, u"show"_s, u"nope"_s},
                                       {u"playlist"_s, u"rename"_s, u"nope"_s, u"other"_s},
                                       {u"playlist"_s, u"delete"_s, u"nope"_s},
                                       {u"playlist"_s, u"export"_s, u"nope"_s, path(u"nope.m3u8"_s)},
                                       {u"playlist"_s, u"import"_s, path(u"nope.m3u8"_s)},
                                       {u"bookmark"_s, u"rename"_s, u"nope"_s, u"other"_s},
                                       {u"bookmark"_s, u"remove"_s, u"nope"_s},
                                       {u"list"_s, u"--artist"_s, u"nobody"_s},
                                       {u"queue"_s, u"add"_s, path(u"nope.mp3"_s)},
                                       {u"queue"_s, u"add"_s, u"--bookmark"_s, u"nope"_s},
                                       {u"queue"_s, u"add"_s, u"--history"_s, u"--position"_s, u"3"_s},
                                       {u"queue"_s, u"play"_s, u"3"_s},
                                       {u"queue"_s, u"next"_s}};
    for (const QStringList &arguments : absent)
        EXPECT_EQ(run(arguments).status, 1) << qPrintable(arguments.join(u' '));
    EXPECT_EQ(runBare({u"refresh"_s, u"--data"_s, path(u"nope"_s)}).status, 1);
}

TEST_F(Program, WhatCannotBeIsAMistakeOnTheCommandLine)
{
    const QList<QStringList> mistakes = {{u"queue"_s, u"play"_s, u"0"_s},
                                         {u"queue"_s, u"play"_s, u"65536"_s},
                                         {u"queue"_s, u"shuffle"_s, u"perhaps"_s},
                                         {u"queue"_s, u"add"_s, u"--list"_s, u"artists"_s},
                                         {u"list"_s, u"nope"_s},
                                         {u"settings"_s, u"get"_s, u"nope"_s},
                                         {u"refresh"_s, u"--places"_s, u"nope"_s},
                                         {u"playlist"_s, u"save"_s, u""_s},
                                         {u"bookmark"_s, u"add"_s, u"counter"_s, u"http://radio.example"_s},
                                         {u"bookmark"_s, u"add"_s, u""_s, u"http://radio.example"_s},
                                         {u"history"_s, u"add"_s, u""_s}};
    for (const QStringList &arguments : mistakes)
        EXPECT_EQ(run(arguments).status, 2) << qPrintable(arguments.join(u' '));
}

TEST_F(Program, UnknownWordIsNamedBeforeWhatIsMissing)
{
    EXPECT_EQ(runBare({u"--bogus"_s}).errors, "marvola: there is no option '--bogus'; see 'marvola --help'\n");
    EXPECT_EQ(runBare({u"dance"_s}).errors, "marvola: there is no subcommand 'dance'; see 'marvola --help'\n");
    EXPECT_EQ(runBare({u"settings"_s, u"--bogus"_s}).errors,
              "marvola: there is no option '--bogus'; see 'marvola --help'\n");
    EXPECT_TRUE(runBare({u"--json"_s}).errors.contains("subcommand is required"));
}

TEST_F(Program, EmptyWorkOptionIsAUsageError)
{
    const CliResult result = runBare({u"--work"_s, u""_s, u"status"_s});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "marvola: --work names no directory: give one\n");
}

TEST_F(Program, ArgumentThatIsNotUtf8IsRefused)
{
    // Texts of this process are UTF-8, so a shell makes the byte.
    const std::unique_ptr<QProcess> program =
        process({u"-c"_s, u"exec \"$0\" \"$@\" --data \"$(printf '%s/\\377' \"$PWD\")\" status"_s,
                 QStringLiteral(MARVOLA_PROGRAM), u"--work"_s, path(u"work"_s)});
    program->setProgram(u"/bin/sh"_s);
    program->start();
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.output.isEmpty()) << result.output.constData();
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("is not UTF-8")) << result.errors.constData();
}

TEST_F(Program, OptionsMayStandBehindTheSubcommand)
{
    const CliResult result = runBare(QStringList{u"status"_s} + places() + QStringList{u"--json"_s});
    EXPECT_EQ(result.status, 0) << result.errors.constData();
    EXPECT_EQ(result.object()[u"workDirectory"_s].toString(), path(u"work"_s));
}

TEST_F(Program, FirstStartBelowHomeProvidesTheSettingsFile)
{
    write(u"home/Music/a.wav"_s, waveFile());
    const CliResult result = runBare({u"refresh"_s, u"--json"_s});
    EXPECT_EQ(result.status, 0) << result.errors.constData();
    EXPECT_EQ(result.object()[u"indexed"_s].toInt(-1), 1);
    const QByteArray settings = read(u"home/.local/share/marvola/setup/juv_marvola.cfg"_s);
    EXPECT_TRUE(settings.contains("MaxNumOfMediaFile")) << settings.constData();
}

TEST_F(Program, EnvironmentNamesThePlaces)
{
    write(u"phone/a.wav"_s, waveFile());
    m_environment.insert(u"TROVE_DATA_PATH"_s, path(u"phone"_s));
    m_environment.insert(u"JUV_APP_WRITE_PATH"_s, path(u"work"_s));
    EXPECT_EQ(runBare({u"refresh"_s, u"--json"_s}).object()[u"indexed"_s].toInt(-1), 1);
    EXPECT_TRUE(QFileInfo::exists(path(u"work/.marvola.info"_s)));
}

TEST_F(Program, NoHomeIsOneLineOfError)
{
    m_environment.remove(u"HOME"_s);
    const CliResult result = runBare({u"status"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "marvola: there is no directory for the library's files: HOME is not set; "
                             "give --work DIR\n");
    EXPECT_EQ(run({u"status"_s}).status, 0);
}

TEST_F(Program, HomeThatCannotBeWrittenIsOneLineOfError)
{
    write(u"file"_s, "a file is no home");
    m_environment.insert(u"HOME"_s, path(u"file"_s));
    const CliResult result = runBare({u"status"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(QFile::encodeName(path(u"file/.local/share/marvola"_s))))
        << result.errors.constData();
}

TEST_F(Program, SettingsFileThatCannotBeMadeIsOneLineOfError)
{
    write(u"work/setup"_s, "a file in place of the folder");
    const CliResult result = run({u"status"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(QFile::encodeName(settingsFile()))) << result.errors.constData();
}

TEST_F(Program, LocaleThatIsNotUtf8IsNoMatterForTheUser)
{
    m_environment.insert(u"LC_ALL"_s, u"C"_s);
    write(u"phone/手机.wav"_s, waveFile());
    const CliResult refresh = run({u"refresh"_s});
    EXPECT_EQ(refresh.status, 0);
    EXPECT_TRUE(refresh.errorLines().isEmpty()) << refresh.errors.constData();
    EXPECT_TRUE(run({u"list"_s, u"media"_s}).output.contains("手机.wav\n"));
}

TEST_F(Program, OutputThatNobodyTakesIsAnError)
{
    QFile full(u"/dev/full"_s);
    if (!full.exists())
        GTEST_SKIP() << "no device that is always full";
    const std::unique_ptr<QProcess> program = process(places() + QStringList{u"status"_s});
    program->setStandardOutputFile(u"/dev/full"_s, QIODevice::Append);
    program->start();
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith("marvola: cannot write to standard output: ")) << result.errors.constData();
    EXPECT_EQ(result.errors.count('\n'), 1);
}

TEST_F(Program, FileSizeLimitIsToldAndDoesNotKill)
{
    const std::unique_ptr<QProcess> program = process(places() + QStringList{u"status"_s});
    program->setStandardOutputFile(path(u"output"_s));
    program->setChildProcessModifier([] {
        const rlimit none = {0, 0};
        ::setrlimit(RLIMIT_FSIZE, &none);
        std::signal(SIGXFSZ, SIG_DFL);
    });
    ASSERT_EQ(run({u"status"_s}).status, 0) << "the settings file is there";
    program->start();
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.startsWith("marvola: cannot write to standard output: ")) << result.errors.constData();
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
}

TEST_F(Program, FilesDoNotGetWhatIsPrintedWhereTheStreamsAreClosed)
{
    const QString file = write(u"phone/a.wav"_s, waveFile({u"Ada"_s, u"First"_s, u"Jazz"_s}));
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const QByteArray info = read(u"work/.marvola.info"_s);
    const QByteArray settings = read(u"work/setup/juv_marvola.cfg"_s);
    EXPECT_EQ(runWithoutStreams({u"refresh"_s}).status, 1) << "nobody could take the summary";
    EXPECT_EQ(read(u"work/.marvola.info"_s), info);
    EXPECT_EQ(read(u"work/setup/juv_marvola.cfg"_s), settings);
    EXPECT_EQ(run({u"list"_s, u"media"_s, u"--json"_s}).texts(), QStringList{file});
    EXPECT_EQ(run({u"list"_s, u"artists"_s, u"--json"_s}).texts(), QStringList{u"Ada"_s});
}

TEST_F(Program, ClosedStreamsAreNoMatterWhereNothingIsPrinted)
{
    EXPECT_EQ(runWithoutStreams({u"settings"_s, u"set"_s, u"volume"_s, u"77"_s}).status, 0);
    EXPECT_EQ(run({u"settings"_s, u"get"_s, u"volume"_s}).output, "77\n");
}
