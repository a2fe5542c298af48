// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ConnectTest.h"
#include "FakeNetworkManager.h"

#include <QtCore/QFile>

#include <algorithm>
#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// A terminal, of which the program has the other end.
class Terminal
{
public:
    Terminal() : m_master(::posix_openpt(O_RDWR | O_NOCTTY))
    {
        EXPECT_EQ(::grantpt(m_master), 0);
        EXPECT_EQ(::unlockpt(m_master), 0);
        // Somebody has it open throughout, so that what the program wrote is not lost when it ends.
        m_other = ::open(::ptsname(m_master), O_RDWR | O_NOCTTY | O_CLOEXEC);
        EXPECT_GE(m_other, 0);
    }
    ~Terminal()
    {
        ::close(m_other);
        ::close(m_master);
    }
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    void attach(QProcess &program) const
    {
        const QString name = QFile::decodeName(::ptsname(m_master));
        program.setStandardInputFile(name);
        program.setStandardErrorFile(name);
    }
    void type(const QByteArray &text) const { EXPECT_EQ(::write(m_master, text.constData(), size(text)), text.size()); }
    /// Reads until \a text was shown.
    bool awaitText(const QByteArray &text)
    {
        while (!m_seen.contains(text)) {
            QByteArray bytes(4096, '\0');
            const ssize_t length = ::read(m_master, bytes.data(), size(bytes));
            if (length <= 0)
                return false;
            m_seen.append(bytes.constData(), length);
        }
        return true;
    }

private:
    static std::size_t size(const QByteArray &bytes) { return static_cast<std::size_t>(bytes.size()); }

    int m_master;
    int m_other = -1;
    QByteArray m_seen;
};

/// A bus without NetworkManager.
class ConnectCommand : public ConnectTest
{
protected:
    static void expectFailure(const CliResult &result, const char *part)
    {
        EXPECT_EQ(result.status, 1);
        EXPECT_TRUE(result.output.isEmpty()) << result.output.constData();
        const QList<QByteArray> lines = result.errors.trimmed().split('\n');
        ASSERT_EQ(lines.size(), 3) << result.errors.constData();
        EXPECT_EQ(lines.at(0), "marvola: connect: opening");
        EXPECT_EQ(lines.at(1), "marvola: connect: failed");
        EXPECT_TRUE(lines.at(2).startsWith("marvola: cannot open a link with the profile 'Operator': "));
        EXPECT_TRUE(lines.at(2).contains(part)) << lines.at(2).constData();
    }
    QByteArray profileSetting() const { return run({u"settings"_s, u"get"_s, u"profile"_s}).output; }
};

/// A bus with a NetworkManager that has the profiles "Operator" and "Second" and a modem with the interface wwan0.
class ConnectWithService : public ConnectCommand
{
protected:
    void SetUp() override
    {
        if (!OwnTmp::isPossible())
            GTEST_SKIP() << "this machine lets the test give the program no /tmp of its own";
        ConnectCommand::SetUp();
        m_service.addProfile(u"Operator"_s);
        m_service.addProfile(u"Second"_s, u"v"_s);
        m_modem = m_service.addDevice(u"wwan0"_s);
        m_service.activateWith(m_modem, marvola::bus::ActiveActivated);
    }

    int deactivations() const
    {
        const QStringList calls = m_service.calls();
        return static_cast<int>(std::count_if(calls.begin(), calls.end(), [](const QString &call) {
            return call.startsWith("DeactivateConnection"_L1);
        }));
    }
    std::unique_ptr<QProcess> held() const
    {
        std::unique_ptr<QProcess> program = connecting({u"--profile"_s, u"Operator"_s});
        program->start();
        EXPECT_TRUE(awaitText(*program, QProcess::StandardOutput, "connected: Operator on wwan0\n"));
        return program;
    }

    FakeNetworkManager m_service{m_bus};
    QString m_modem;
};

/// Signals that end programs.
class ConnectEnding : public ConnectWithService, public testing::WithParamInterface<int>
{
};

} // namespace

TEST_F(ConnectCommand, NoBusIsTold)
{
    m_environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, u"unix:path="_s + path(u"nowhere"_s));
    const std::unique_ptr<QProcess> program =
        process(places() + QStringList{u"connect"_s, u"--profile"_s, u"Operator"_s});
    program->start();
    expectFailure(finish(*program), "the system bus cannot be reached");
}

TEST_F(ConnectCommand, BusWithoutTheServiceIsTold)
{
    const std::unique_ptr<QProcess> program =
        process(places() + QStringList{u"connect"_s, u"--profile"_s, u"Operator"_s});
    program->start();
    expectFailure(finish(*program), "NetworkManager is not on the system bus");
}

TEST_F(ConnectCommand, NoProfileAndNoTerminalIsToldWithoutOpeningAnything)
{
    const CliResult result = run({u"connect"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("--profile NAME")) << result.errors.constData();
}

TEST_F(ConnectCommand, TerminalWithoutAnyProfileIsTold)
{
    Terminal terminal;
    const std::unique_ptr<QProcess> program = process(places() + QStringList{u"connect"_s});
    terminal.attach(*program);
    program->start();
    EXPECT_EQ(finish(*program).status, 1);
    EXPECT_TRUE(terminal.awaitText("NetworkManager offers none to choose from"));
}

TEST_F(ConnectWithService, OnceTellsTheInterfaceAndClosesTheLink)
{
    const CliResult result = connect({u"--once"_s, u"--profile"_s, u"Operator"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "connected: Operator on wwan0\n");
    EXPECT_EQ(result.errors, "marvola: connect: opening\n");
    EXPECT_EQ(m_tmp.read(u"Marvola_GPRS_Link"_s), "MyInterface=wwan0");
    EXPECT_EQ(deactivations(), 1);
}

TEST_F(ConnectWithService, JsonTellsProfileInterfaceAndStatus)
{
    const QJsonObject result = connect({u"--once"_s, u"--profile"_s, u"Operator"_s, u"--json"_s}).object();
    EXPECT_EQ(result, (QJsonObject{
                          {u"profile"_s, u"Operator"_s}, {u"interface"_s, u"wwan0"_s}, {u"status"_s, u"connected"_s}}));
}

TEST_F(ConnectWithService, JsonIsAsTheSchemaHasIt)
{
    const QString source = QStringLiteral(MARVOLA_SOURCE_DIR);
    QProcess check;
    check.start(source + u"/tests/apps/cli/check-json"_s, {source + u"/docs/cli-schema.json"_s, u"connect"_s});
    check.write(connect({u"--once"_s, u"--profile"_s, u"Operator"_s, u"--json"_s}).output);
    check.closeWriteChannel();
    const CliResult result = finish(check);
    EXPECT_EQ(result.status, 0) << result.output.constData() << result.errors.constData();
}

TEST_F(ConnectWithService, ProfileOfTheSettingsIsTakenUnlessOneIsNamed)
{
    ASSERT_EQ(run({u"settings"_s, u"set"_s, u"profile"_s, u"Second"_s}).status, 0);
    EXPECT_EQ(connect({u"--once"_s}).output, "connected: Second on wwan0\n");
    EXPECT_EQ(connect({u"--once"_s, u"--profile"_s, u"Operator"_s}).output, "connected: Operator on wwan0\n");
    EXPECT_EQ(profileSetting(), "Second\n");
}

TEST_F(ConnectWithService, UnknownProfileIsTold)
{
    const CliResult result = connect({u"--profile"_s, u"Nobody's"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.endsWith("with the profile 'Nobody's': NetworkManager has no profile of that name for "
                                       "you; see 'nmcli connection'\n"))
        << result.errors.constData();
}

TEST_P(ConnectEnding, ClosesTheLinkThatIsHeld)
{
    const std::unique_ptr<QProcess> program = held();
    EXPECT_EQ(deactivations(), 0);
    signal(*program, GetParam());
    EXPECT_EQ(finish(*program).status, 0);
    EXPECT_EQ(deactivations(), 1);
}

TEST_P(ConnectEnding, EndsTheWait)
{
    m_service.activateWith(m_modem, marvola::bus::ActiveActivating);
    const std::unique_ptr<QProcess> program = connecting({u"--profile"_s, u"Operator"_s});
    program->start();
    ASSERT_TRUE(awaitText(*program, QProcess::StandardError, "marvola: connect: opening\n"));
    signal(*program, GetParam());
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 130);
    EXPECT_TRUE(result.output.isEmpty());
    EXPECT_EQ(result.errors, "marvola: connect: opening\nmarvola: connect: failed\n");
}

INSTANTIATE_TEST_SUITE_P(Signals, ConnectEnding, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto &number) { return std::string("Number") + std::to_string(number.param); });

TEST_F(ConnectWithService, IsHeldOnWhereTheEndOfTheTerminalIsIgnored)
{
    const std::unique_ptr<QProcess> program = connecting({u"--profile"_s, u"Operator"_s});
    const auto modifier = program->childProcessModifier();
    program->setChildProcessModifier([modifier] {
        modifier();
        std::signal(SIGHUP, SIG_IGN); // as nohup does
    });
    program->start();
    ASSERT_TRUE(awaitText(*program, QProcess::StandardOutput, "connected: Operator on wwan0\n"));
    signal(*program, SIGHUP);
    m_service.setActiveState(u"/org/freedesktop/NetworkManager/ActiveConnection/4"_s, marvola::bus::ActiveDeactivated);
    EXPECT_TRUE(finish(*program).errors.contains("marvola: connect: broken\n"));
}

TEST_F(ConnectWithService, BrokenLinkIsTold)
{
    const std::unique_ptr<QProcess> program = held();
    m_service.setActiveState(u"/org/freedesktop/NetworkManager/ActiveConnection/4"_s, marvola::bus::ActiveDeactivated);
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "marvola: connect: opening\n"
                             "marvola: connect: broken\n"
                             "marvola: the link with the profile 'Operator' was broken; connect again\n");
}

TEST_F(ConnectWithService, InterruptionEndsTheWaitForAServiceThatDoesNotAnswer)
{
    m_service.hold(u"Get Connections"_s);
    const std::unique_ptr<QProcess> program = connecting({u"--profile"_s, u"Operator"_s});
    program->start();
    ASSERT_TRUE(awaitText(*program, QProcess::StandardError, "marvola: connect: opening\n"));
    signal(*program);
    EXPECT_EQ(finish(*program).status, 130);
}

TEST_F(ConnectWithService, ProfileChosenOnTheTerminalIsKept)
{
    Terminal terminal;
    const std::unique_ptr<QProcess> program = connecting({u"--once"_s});
    terminal.attach(*program);
    program->start();
    ASSERT_TRUE(terminal.awaitText("  1  Operator\r\n  2  Second\r\nWhich one? "));
    terminal.type("3\n");
    ASSERT_TRUE(terminal.awaitText("a number from 1 to 2"));
    terminal.type("2\n");
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "connected: Second on wwan0\n");
    EXPECT_EQ(profileSetting(), "Second\n");
}

TEST_F(ConnectWithService, ProfileIsChosenByItsNameToo)
{
    Terminal terminal;
    const std::unique_ptr<QProcess> program = connecting({u"--once"_s});
    terminal.attach(*program);
    program->start();
    terminal.type("Operator\n");
    EXPECT_EQ(finish(*program).output, "connected: Operator on wwan0\n");
}

TEST_F(ConnectWithService, ProfileWhoseLinkFailedIsNotKept)
{
    m_service.refuse(u"ActivateConnection"_s, u"org.freedesktop.NetworkManager.UnknownDevice"_s);
    Terminal terminal;
    const std::unique_ptr<QProcess> program = connecting({});
    terminal.attach(*program);
    program->start();
    terminal.type("2\n");
    EXPECT_EQ(finish(*program).status, 1);
    EXPECT_TRUE(terminal.awaitText("cannot open a link with the profile 'Second'"));
    EXPECT_EQ(profileSetting(), "\n");
}

TEST_F(ConnectWithService, ChoosingNothingIsTold)
{
    Terminal terminal;
    const std::unique_ptr<QProcess> program = connecting({});
    terminal.attach(*program);
    program->start();
    terminal.type("\n");
    EXPECT_EQ(finish(*program).status, 1);
    EXPECT_TRUE(terminal.awaitText("no network profile was chosen"));
}

TEST_F(ConnectWithService, InterruptionEndsTheChoosing)
{
    Terminal terminal;
    const std::unique_ptr<QProcess> program = connecting({});
    terminal.attach(*program);
    program->start();
    ASSERT_TRUE(terminal.awaitText("Which one? "));
    signal(*program);
    EXPECT_EQ(finish(*program).status, 130);
    EXPECT_EQ(profileSetting(), "\n");
}
