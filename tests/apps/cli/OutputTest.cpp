// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <QtCore/QFile>

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr char Escape = '\x1b';

class Output : public CliTest
{
protected:
    void SetUp() override
    {
        CliTest::SetUp();
        m_environment.insert(u"TERM"_s, u"xterm"_s);
        m_environment.remove(u"NO_COLOR"_s);
    }

    /// What the program shows on a terminal that is its standard output and standard error.
    QByteArray onTerminal(const QStringList &arguments) const
    {
        const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
        EXPECT_EQ(::grantpt(terminal), 0);
        EXPECT_EQ(::unlockpt(terminal), 0);
        const QString name = QFile::decodeName(::ptsname(terminal));
        const int other = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY | O_CLOEXEC);
        const std::unique_ptr<QProcess> program = process(places() + arguments);
        program->setStandardOutputFile(name);
        program->setStandardErrorFile(name);
        program->start();
        finish(*program);
        ::fcntl(terminal, F_SETFL, O_NONBLOCK); // it may have shown nothing
        QByteArray seen(65536, '\0');
        const ssize_t length = ::read(terminal, seen.data(), static_cast<std::size_t>(seen.size()));
        ::close(other);
        ::close(terminal);
        seen.truncate(std::max<ssize_t>(length, 0));
        return seen;
    }

    /// Fills the queue with two files, of which the first is active.
    void fillQueue() const
    {
        write(u"phone/a.wav"_s, waveFile());
        write(u"phone/b.wav"_s, waveFile());
        ASSERT_EQ(run({u"refresh"_s}).status, 0);
        ASSERT_EQ(run({u"queue"_s, u"add"_s, u"--list"_s, u"media"_s}).status, 0);
    }
};

} // namespace

TEST_F(Output, HeadingsAndTheActiveItemStandOutOnATerminal)
{
    fillQueue();
    const QByteArray shown = onTerminal({u"queue"_s, u"show"_s});
    EXPECT_TRUE(shown.startsWith("\x1b[1m2 items")) << shown.constData();
    EXPECT_TRUE(shown.contains("\x1b[1m> 1  ")) << shown.constData();
    EXPECT_TRUE(shown.contains("\n  2  ")) << shown.constData();
    EXPECT_EQ(shown.count("\x1b[1m"), shown.count("\x1b[0m"));
}

TEST_F(Output, ErrorsStandOutOnATerminal)
{
    const QByteArray shown = onTerminal({u"settings"_s, u"get"_s, u"nonsense"_s});
    EXPECT_TRUE(shown.startsWith("\x1b[1;31mmarvola:\x1b[0m there is no setting")) << shown.constData();
}

TEST_F(Output, NoColourWithoutATerminal)
{
    fillQueue();
    const CliResult queue = run({u"queue"_s, u"show"_s});
    EXPECT_FALSE(queue.output.contains(Escape)) << queue.output.constData();
    EXPECT_FALSE(run({u"settings"_s, u"get"_s, u"nonsense"_s}).errors.contains(Escape));
}

TEST_F(Output, NoColourWhereTheUserWantsNone)
{
    fillQueue();
    m_environment.insert(u"NO_COLOR"_s, u"1"_s);
    EXPECT_FALSE(onTerminal({u"queue"_s, u"show"_s}).contains(Escape));
    EXPECT_FALSE(onTerminal({u"settings"_s, u"get"_s, u"nonsense"_s}).contains(Escape));
}

TEST_F(Output, EmptyNoColourIsNone)
{
    fillQueue();
    m_environment.insert(u"NO_COLOR"_s, u""_s);
    EXPECT_TRUE(onTerminal({u"queue"_s, u"show"_s}).contains(Escape));
}

TEST_F(Output, NoColourOnATerminalThatTakesNone)
{
    fillQueue();
    m_environment.insert(u"TERM"_s, u"dumb"_s);
    EXPECT_FALSE(onTerminal({u"queue"_s, u"show"_s}).contains(Escape));
}

TEST_F(Output, QuietIsSilentAboutWhatWentWell)
{
    write(u"phone/a.wav"_s, waveFile());
    const QList<QStringList> commands = {{u"refresh"_s},
                                         {u"queue"_s, u"add"_s, u"--list"_s, u"media"_s},
                                         {u"playlist"_s, u"save"_s, u"Mine"_s},
                                         {u"playlist"_s, u"export"_s, u"Mine"_s, path(u"mine.m3u8"_s)},
                                         {u"playlist"_s, u"load"_s, u"Mine"_s},
                                         {u"bookmark"_s, u"add"_s, u"Jazz"_s, u"rtsp://radio.example/jazz"_s}};
    for (const QStringList &command : commands) {
        const CliResult result = run(QStringList{u"--quiet"_s} + command);
        EXPECT_EQ(result.status, 0) << qPrintable(command.join(u' ')) << result.errors.constData();
        EXPECT_EQ(result.output, "") << qPrintable(command.join(u' '));
        EXPECT_EQ(result.errors, "") << qPrintable(command.join(u' '));
    }
    EXPECT_EQ(onTerminal({u"refresh"_s, u"--quiet"_s}), "") << "no bar either";
}

TEST_F(Output, QuietStillPrintsWhatWasAskedForAndErrors)
{
    fillQueue();
    EXPECT_EQ(run({u"--quiet"_s, u"settings"_s, u"get"_s, u"volume"_s}).output, "10\n");
    EXPECT_EQ(run({u"--quiet"_s, u"queue"_s, u"next"_s}).output, QFile::encodeName(path(u"phone/b.wav"_s)) + '\n');
    EXPECT_EQ(run({u"--quiet"_s, u"refresh"_s, u"--json"_s}).object()[u"indexed"_s].toInt(-1), 2);
    const CliResult failed = run({u"--quiet"_s, u"settings"_s, u"get"_s, u"nonsense"_s});
    EXPECT_EQ(failed.status, 2);
    EXPECT_EQ(failed.errors.count('\n'), 1) << failed.errors.constData();
}
