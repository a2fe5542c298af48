// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"
#include "support/DeadlyRead.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

class RefreshCommand : public CliTest
{
protected:
    void writeMany(int count) const
    {
        const QByteArray content = waveFile({u"A"_s, u"B"_s, u"C"_s});
        for (int number = 0; number < count; ++number)
            write(u"phone/%1.wav"_s.arg(number, 5, 10, '0'_L1), content);
    }
    /// Puts a media file into the phone that is older than the test, so that what is found out about it is remembered.
    QString putOldFile() const
    {
        const QString target = QStringLiteral(MARVOLA_SOURCE_DIR "/tests/fuzz/seeds/engine/song.opus");
        EXPECT_TRUE(QFile::link(target, path(u"phone/old.opus"_s)));
        return target;
    }
    /// What a refresh says that dies when it reads the old file.
    CliResult refreshWithDeadlyOldFile(const QStringList &more = {}) const
    {
        const auto size = static_cast<quint32>(QFileInfo(path(u"phone/old.opus"_s)).size());
        const auto program = process(places() + QStringList{u"refresh"_s} + more);
        program->setChildProcessModifier([size] { makeReadsDeadly(size); });
        program->start();
        return finish(*program);
    }
    QString answers() const { return path(u"home/.cache/marvola/answers"_s); }
    QStringList indexed() const { return run({u"list"_s, u"media"_s, u"--json"_s}).texts(); }
    void limitFiles(int most) const
    {
        ConfigFile file(settingsFile(), false);
        EXPECT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfMediaFile"_s, most));
        EXPECT_TRUE(file.flush());
    }
    /// What a refresh prints with \a card as the memory card.
    QByteArray refreshWithCard(const QString &card, const QStringList &more = {}) const
    {
        return runBare(QStringList{u"--data"_s, path(u"phone"_s), u"--card1"_s, path(card), u"--work"_s,
                                   path(u"work"_s), u"refresh"_s} +
                       more)
            .output;
    }
    /// Starts a refresh and sends it \a signal as soon as it shows progress.
    CliResult interrupted(int signal) const
    {
        const std::unique_ptr<QProcess> program = process(places() + QStringList{u"refresh"_s, u"--json"_s});
        program->setReadChannel(QProcess::StandardError);
        program->start();
        EXPECT_TRUE(program->waitForReadyRead(60'000));
        ::kill(static_cast<pid_t>(program->processId()), signal);
        return finish(*program);
    }
};

class RefreshInterruption : public RefreshCommand, public testing::WithParamInterface<int>
{
};

} // namespace

TEST_F(RefreshCommand, CountsByPlace)
{
    write(u"phone/a.wav"_s, waveFile());
    write(u"phone/sub/b.wav"_s, waveFile());
    write(u"phone/readme.txt"_s, "no media");
    write(u"card/c.wav"_s, waveFile());
    const CliResult result = run({u"refresh"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errorLines().isEmpty()) << result.errors.constData();
    EXPECT_TRUE(result.output.startsWith("  Phone        2 found  2 indexed  complete\n"
                                         "  Memory Card  1 found  1 indexed  complete\n"
                                         "3 of 3 files indexed in "))
        << result.output.constData();
}

TEST_F(RefreshCommand, JsonTellsTheSame)
{
    write(u"card/c.wav"_s, waveFile());
    const QJsonObject summary = run({u"refresh"_s, u"--json"_s}).object();
    EXPECT_EQ(summary[u"found"_s].toInt(-1), 1);
    EXPECT_EQ(summary[u"indexed"_s].toInt(-1), 1);
    EXPECT_EQ(summary[u"leftOut"_s].toInt(-1), 0);
    EXPECT_TRUE(summary[u"reason"_s].isNull());
    const QJsonObject card = summary[u"places"_s].toArray().at(1).toObject();
    EXPECT_EQ(card[u"id"_s].toString(), u"card"_s);
    EXPECT_EQ(card[u"name"_s].toString(), u"Memory Card"_s);
    EXPECT_EQ(card[u"found"_s].toInt(-1), 1);
    EXPECT_TRUE(card[u"complete"_s].toBool());
}

TEST_F(RefreshCommand, FileOverWhichItDiedIsNotReadAgain)
{
    write(u"phone/a.wav"_s, waveFile());
    const QString bad = write(u"phone/b.wav"_s, waveFile() + QByteArray(321, 'x'));
    write(u"phone/c.wav"_s, waveFile());
    const auto size = static_cast<quint32>(QFileInfo(bad).size());
    const auto dying = process(places() + QStringList{u"refresh"_s});
    dying->setChildProcessModifier([size] { makeReadsDeadly(size); });
    dying->start();
    ASSERT_EQ(finish(*dying).status, -1) << "it must really die, in the middle of reading";

    for (int round = 0; round < 2; ++round) {
        const CliResult result = run({u"refresh"_s});
        EXPECT_EQ(result.status, 0);
        EXPECT_TRUE(result.output.contains("3 of 3 files indexed")) << result.output.constData();
        EXPECT_TRUE(result.output.endsWith("1 not read, for a refresh died while it read them; touch a file to have it "
                                           "read again:\n  " +
                                           bad.toUtf8() + "\n"))
            << result.output.constData();
    }
    EXPECT_EQ(run({u"refresh"_s, u"--json"_s}).object()[u"unread"_s].toArray(), QJsonArray{bad});
    EXPECT_EQ(run({u"list"_s, u"audio"_s, u"--json"_s}).texts(),
              (QStringList{path(u"phone/a.wav"_s), path(u"phone/c.wav"_s)}));

    write(u"phone/b.wav"_s, waveFile());
    EXPECT_TRUE(run({u"refresh"_s, u"--json"_s}).object()[u"unread"_s].toArray().isEmpty());
    EXPECT_EQ(run({u"list"_s, u"audio"_s, u"--json"_s}).texts().size(), 3);
}

TEST_F(RefreshCommand, AFileThatDidNotChangeIsNotReadAgain)
{
    putOldFile();
    write(u"phone/new.wav"_s, waveFile());
    const auto withoutTime = [](const CliResult &result) {
        return QByteArray(result.output).first(result.output.lastIndexOf(" in "));
    };
    const CliResult first = run({u"refresh"_s});
    const QByteArray index = read(u"work/.marvola.info"_s);
    const CliResult second = refreshWithDeadlyOldFile();
    EXPECT_EQ(second.status, 0) << "it was not read";
    EXPECT_EQ(withoutTime(second), withoutTime(first));
    EXPECT_TRUE(second.errors.endsWith("marvola: refresh: 100 % (2 files)\n")) << second.errors.constData();
    EXPECT_EQ(read(u"work/.marvola.info"_s), index);
    EXPECT_EQ(refreshWithDeadlyOldFile({u"--no-cache"_s}).status, -1) << "it is read then, and that is deadly";
}

TEST_F(RefreshCommand, AFileOverWhichItDiedIsNotAnsweredFromMemory)
{
    const QString bad = path(u"phone/old.opus"_s);
    putOldFile();
    EXPECT_EQ(run({u"refresh"_s}).status, 0);
    ASSERT_EQ(refreshWithDeadlyOldFile().status, 0) << "what is known of it is remembered";
    ASSERT_EQ(refreshWithDeadlyOldFile({u"--no-cache"_s}).status, -1) << "it must really die";
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(run({u"refresh"_s, u"--json"_s}).object()[u"unread"_s].toArray(), QJsonArray{bad});
}

TEST_F(RefreshCommand, WithoutACacheNoneIsMade)
{
    putOldFile();
    EXPECT_EQ(run({u"refresh"_s, u"--no-cache"_s}).status, 0);
    EXPECT_FALSE(QFile::exists(path(u"home/.cache"_s)));
    EXPECT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_TRUE(QFile::exists(answers()));
}

TEST_F(RefreshCommand, WhereNoCacheCanBeItGoesOnWithout)
{
    putOldFile();
    write(u"home/.cache"_s, "no folder");
    const CliResult result = run({u"refresh"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("1 of 1 files indexed")) << result.output.constData();
    EXPECT_FALSE(result.errors.contains("cache")) << result.errors.constData();
}

TEST_F(RefreshCommand, AnotherTextCodecHasFilesReadAgain)
{
    putOldFile();
    EXPECT_EQ(run({u"refresh"_s}).status, 0);
    {
        ConfigFile file(settingsFile(), false);
        EXPECT_TRUE(file.writeEntry(u"MediaControlItem"_s, u"CodecName"_s, u"ISO-8859-1"_s));
        EXPECT_TRUE(file.flush());
    }
    EXPECT_TRUE(run({u"status"_s, u"--json"_s}).output.contains("ISO-8859-1"));
    EXPECT_EQ(refreshWithDeadlyOldFile().status, -1);
}

TEST_F(RefreshCommand, NoteThatIsNoneIsSaid)
{
    write(u"phone/a.wav"_s, waveFile());
    write(u"home/.local/state/marvola/crash-note"_s, "a letter");
    const CliResult result = run({u"refresh"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errorLines(), QList<QByteArray>{"marvola: files over which this program dies are not noted: " +
                                                     path(u"home/.local/state/marvola/crash-note"_s).toUtf8() +
                                                     " cannot be used; remove it"});
    EXPECT_EQ(read(u"home/.local/state/marvola/crash-note"_s), "a letter");
}

TEST_F(RefreshCommand, WithoutAHomeNothingIsNoted)
{
    write(u"phone/a.wav"_s, waveFile());
    m_environment.remove(u"HOME"_s);
    const CliResult result = run({u"refresh"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errorLines().isEmpty()) << result.errors.constData();
}

TEST_F(RefreshCommand, NothingFoundIsCompleteAndNoError)
{
    const CliResult result = run({u"refresh"_s, u"--json"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errorLines().isEmpty()) << result.errors.constData();
    const QJsonObject summary = result.object();
    EXPECT_EQ(summary[u"found"_s].toInt(-1), 0);
    EXPECT_TRUE(summary[u"reason"_s].isNull());
    EXPECT_TRUE(summary[u"places"_s].toArray().at(0).toObject()[u"complete"_s].toBool());
}

TEST_F(RefreshCommand, PlainLinesOfProgressOnAPipe)
{
    writeMany(20);
    const CliResult result = run({u"refresh"_s});
    EXPECT_TRUE(result.errors.startsWith("marvola: refresh: 0 % (")) << result.errors.constData();
    EXPECT_TRUE(result.errors.endsWith("marvola: refresh: 100 % (20 files)\n")) << result.errors.constData();
    EXPECT_FALSE(result.errors.contains('\r') || result.errors.contains('\x1b'));
}

TEST_F(RefreshCommand, BarOnATerminal)
{
    writeMany(20);
    const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    m_environment.insert(u"TERM"_s, u"xterm"_s);
    const std::unique_ptr<QProcess> program = process(places() + QStringList{u"refresh"_s});
    program->setStandardErrorFile(QFile::decodeName(::ptsname(terminal)));
    program->start();
    EXPECT_EQ(finish(*program).status, 0);
    QByteArray seen(65536, '\0');
    const ssize_t length = ::read(terminal, seen.data(), static_cast<std::size_t>(seen.size()));
    ::close(terminal);
    seen.truncate(std::max<ssize_t>(length, 0));
    EXPECT_TRUE(seen.contains("\r\x1b[K[##############################] 100 %  20 files")) << seen.constData();
    EXPECT_TRUE(seen.endsWith("\r\x1b[K"));
}

TEST_F(RefreshCommand, PlacesAreScannedInTheirOrderAndOnlyThey)
{
    const QString phone = write(u"phone/a.wav"_s, waveFile());
    const QString card = write(u"card/b.wav"_s, waveFile());
    EXPECT_EQ(run({u"refresh"_s, u"--places"_s, u"card,phone"_s}).status, 0);
    EXPECT_EQ(indexed(), (QStringList{card, phone}));
    const QJsonObject summary = run({u"refresh"_s, u"--places"_s, u"card"_s, u"--json"_s}).object();
    EXPECT_EQ(summary[u"places"_s].toArray().size(), 1);
    EXPECT_EQ(indexed(), QStringList{card});
    EXPECT_EQ(run({u"settings"_s, u"get"_s, u"search-order"_s}).output, "phone,card\n");
}

TEST_F(RefreshCommand, BothCardsFormOnePlace)
{
    write(u"card/a.wav"_s, waveFile());
    write(u"card2/b.wav"_s, waveFile());
    const QJsonObject summary = run({u"--card2"_s, path(u"card2"_s), u"refresh"_s, u"--json"_s}).object();
    const QJsonObject card = summary[u"places"_s].toArray().at(1).toObject();
    EXPECT_EQ(card[u"indexed"_s].toInt(-1), 2);
}

TEST_F(RefreshCommand, DirectoryThatIsBothPlacesCountsForBoth)
{
    write(u"phone/a.wav"_s, waveFile());
    write(u"phone/b.wav"_s, waveFile());
    const auto both = [this] { return refreshWithCard(u"phone"_s); };
    EXPECT_TRUE(both().startsWith("  Phone        2 found  2 indexed  complete\n"
                                  "  Memory Card  2 found  2 indexed  complete\n"
                                  "4 of 4 files indexed in "));
    EXPECT_EQ(indexed().size(), 4);
    limitFiles(3);
    EXPECT_TRUE(both().startsWith("  Phone        2 found  2 indexed  complete\n"
                                  "  Memory Card  2 found  1 indexed  incomplete\n"
                                  "3 of 4 files indexed in "));
    limitFiles(2);
    EXPECT_TRUE(both().startsWith("  Phone        2 found  2 indexed  complete\n"
                                  "  Memory Card  2 found  0 indexed  incomplete\n"
                                  "2 of 4 files indexed in "));
    limitFiles(1);
    EXPECT_TRUE(both().startsWith("  Phone        2 found  1 indexed  incomplete\n"
                                  "  Memory Card  2 found  0 indexed  incomplete\n"
                                  "1 of 4 files indexed in "));
}

TEST_F(RefreshCommand, PlaceInsideTheOtherCountsForBoth)
{
    write(u"phone/a.wav"_s, waveFile());
    write(u"phone/inner/b.wav"_s, waveFile());
    EXPECT_TRUE(refreshWithCard(u"phone/inner"_s)
                    .startsWith("  Phone        2 found  2 indexed  complete\n"
                                "  Memory Card  1 found  1 indexed  complete\n"
                                "3 of 3 files indexed in "));
    EXPECT_TRUE(refreshWithCard(u"phone/inner"_s, {u"--places"_s, u"card,phone"_s})
                    .startsWith("  Memory Card  1 found  1 indexed  complete\n"
                                "  Phone        2 found  2 indexed  complete\n"));
    ASSERT_TRUE(QFile::remove(path(u"phone/inner/b.wav"_s)));
    EXPECT_TRUE(refreshWithCard(u"phone/inner"_s)
                    .startsWith("  Phone        1 found  1 indexed  complete\n"
                                "  Memory Card  0 found  0 indexed  complete\n"));
    // A hidden place is in no other.
    write(u"phone/.inner/b.wav"_s, waveFile());
    ASSERT_TRUE(QFile::remove(path(u"phone/a.wav"_s)));
    EXPECT_TRUE(refreshWithCard(u"phone/.inner"_s)
                    .startsWith("  Phone        0 found  0 indexed  complete\n"
                                "  Memory Card  1 found  1 indexed  complete\n"));
}

TEST_F(RefreshCommand, PlacesBeforeAnEmptyOneAndBehindItKeepTheirCounts)
{
    write(u"card/a.wav"_s, waveFile());
    EXPECT_TRUE(run({u"refresh"_s})
                    .output.startsWith("  Phone        0 found  0 indexed  complete\n"
                                       "  Memory Card  1 found  1 indexed  complete\n"));
    write(u"card/b.wav"_s, waveFile());
    limitFiles(1);
    EXPECT_TRUE(run({u"refresh"_s})
                    .output.startsWith("  Phone        0 found  0 indexed  complete\n"
                                       "  Memory Card  2 found  1 indexed  incomplete\n"));
}

TEST_F(RefreshCommand, SecondRunChangesNothing)
{
    write(u"phone/a.wav"_s, waveFile({u"Ada"_s, u"First"_s, u"Jazz"_s}));
    write(u"card/b.wav"_s, waveFile({u"Bo"_s, u"Second"_s, u"Folk"_s}));
    EXPECT_EQ(run({u"refresh"_s}).status, 0);
    const QByteArray info = read(u"work/.marvola.info"_s);
    const QByteArray list = read(u"work/.marvola.list"_s);
    const QByteArray settings = read(u"work/setup/juv_marvola.cfg"_s);
    const QStringList artists = run({u"list"_s, u"artists"_s, u"--json"_s}).texts();
    EXPECT_EQ(artists, (QStringList{u"Ada"_s, u"Bo"_s}));
    EXPECT_EQ(run({u"refresh"_s}).status, 0);
    EXPECT_EQ(read(u"work/.marvola.info"_s), info);
    EXPECT_EQ(read(u"work/.marvola.list"_s).size(), list.size());
    EXPECT_EQ(read(u"work/setup/juv_marvola.cfg"_s), settings);
    EXPECT_EQ(run({u"list"_s, u"artists"_s, u"--json"_s}).texts(), artists);
}

TEST_F(RefreshCommand, FileLimitIsTold)
{
    writeMany(12);
    limitFiles(5);
    const QJsonObject summary = run({u"refresh"_s, u"--json"_s}).object();
    EXPECT_EQ(summary[u"found"_s].toInt(-1), 12);
    EXPECT_EQ(summary[u"indexed"_s].toInt(-1), 5);
    EXPECT_EQ(summary[u"leftOut"_s].toInt(-1), 7);
    EXPECT_EQ(summary[u"reason"_s].toString(), u"file-limit"_s);
    const QByteArray output = run({u"refresh"_s}).output;
    EXPECT_TRUE(output.contains("7 left out: the limit of 5 files was reached; raise MaxNumOfMediaFile in " +
                                QFile::encodeName(settingsFile())))
        << output.constData();
}

TEST_F(RefreshCommand, FullIndexIsTold)
{
    // Names so long that a hundred records fill the reservation.
    const QString folder = u"phone/"_s + (QString(240, u'x') + u'/').repeated(3);
    for (int number = 0; number < 120; ++number)
        write(folder + u"%1.wav"_s.arg(number, 3, 10, '0'_L1), waveFile());
    const CliResult result = run({u"refresh"_s, u"--json"_s});
    EXPECT_EQ(result.status, 0);
    const QJsonObject summary = result.object();
    EXPECT_EQ(summary[u"reason"_s].toString(), u"index-full"_s);
    EXPECT_EQ(summary[u"found"_s].toInt(-1), 120);
    EXPECT_EQ(summary[u"indexed"_s].toInt(-1), indexed().size());
    EXPECT_LT(indexed().size(), 120);
    EXPECT_GT(indexed().size(), 50);
}

TEST_F(RefreshCommand, NamedPlaceThatIsMissingChangesNothing)
{
    write(u"phone/a.wav"_s, waveFile());
    EXPECT_EQ(run({u"refresh"_s}).status, 0);
    const CliResult result = run({u"--card2"_s, path(u"typo"_s), u"refresh"_s});
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(result.errorLines().size(), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(QFile::encodeName(path(u"typo"_s))));
    EXPECT_EQ(indexed().size(), 1);
}

TEST_F(RefreshCommand, ConfiguredCardThatIsOutIsNotThere)
{
    write(u"phone/a.wav"_s, waveFile());
    m_environment.insert(u"CARD1_MOUNT_PATH"_s, path(u"out"_s));
    const CliResult result = runBare({u"--data"_s, path(u"phone"_s), u"--work"_s, path(u"work"_s), u"refresh"_s});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("Memory Card  0 found  0 indexed  not there")) << result.output.constData();
}

TEST_F(RefreshCommand, NoPlaceAtAllIsAnError)
{
    const CliResult result = runBare({u"--work"_s, path(u"work"_s), u"refresh"_s});
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(result.errorLines().size(), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(QFile::encodeName(path(u"home/Music"_s)))) << result.errors.constData();
}

TEST_F(RefreshCommand, NoRoomForTheIndexIsAnError)
{
    const std::unique_ptr<QProcess> program = process(places() + QStringList{u"refresh"_s});
    program->setChildProcessModifier([] {
        const rlimit most = {100'000, 100'000};
        ::setrlimit(RLIMIT_FSIZE, &most);
        std::signal(SIGXFSZ, SIG_IGN);
    });
    program->start();
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(result.errorLines().size(), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("--work")) << result.errors.constData();
}

TEST_F(RefreshCommand, IndexThatCannotBeWrittenIsAnError)
{
    write(u"phone/a.wav"_s, waveFile());
    ASSERT_TRUE(QDir().mkpath(path(u"work/.marvola.info"_s)));
    const CliResult result = run({u"refresh"_s});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errorLines().size(), 1) << result.errors.constData();
}

TEST_F(RefreshCommand, IndexThatCannotBeOpenedForWritingIsNotBegun)
{
    // A program's file cannot be written while it runs, not even by root.
    const QString sleep = QStandardPaths::findExecutable(u"sleep"_s);
    ASSERT_FALSE(sleep.isEmpty());
    write(u"phone/a.wav"_s, waveFile());
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    const QString info = path(u"work/.marvola.info"_s);
    ASSERT_TRUE(QFile::remove(info));
    ASSERT_TRUE(QFile::copy(sleep, info));
    const QByteArray before = read(u"work/.marvola.info"_s).leftJustified(150'000, '\0');
    ASSERT_TRUE(QFile::resize(info, before.size()));
    QProcess busy;
    busy.start(info, {u"600"_s});
    ASSERT_TRUE(busy.waitForStarted());
    const CliResult result = run({u"refresh"_s});
    busy.kill();
    EXPECT_TRUE(busy.waitForFinished());
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.output.isEmpty()) << result.output.constData();
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.startsWith("marvola: cannot write the index ")) << result.errors.constData();
    EXPECT_EQ(read(u"work/.marvola.info"_s), before);
}

TEST_F(RefreshCommand, OlderIndexDoesNotPassForTheNewOne)
{
    const QString phone = write(u"phone/a.wav"_s, waveFile());
    const QString card = write(u"card/b.wav"_s, waveFile());
    ASSERT_EQ(run({u"refresh"_s}).status, 0);
    // The file opens, but takes nothing; what the signal of such a limit does by default is the program's to prevent.
    const std::unique_ptr<QProcess> program =
        process(places() + QStringList{u"refresh"_s, u"--places"_s, u"card"_s, u"--json"_s});
    program->setChildProcessModifier([] {
        const rlimit none = {0, 0};
        ::setrlimit(RLIMIT_FSIZE, &none);
        std::signal(SIGXFSZ, SIG_DFL);
    });
    program->start();
    const CliResult result = finish(*program);
    EXPECT_EQ(result.status, 1);
    ASSERT_EQ(result.errorLines().size(), 1) << result.errors.constData();
    EXPECT_TRUE(result.errorLines().first().contains("could not be written")) << result.errors.constData();
    const QJsonObject summary = result.object();
    EXPECT_EQ(summary[u"reason"_s].toString(), u"not-written"_s);
    EXPECT_EQ(summary[u"found"_s].toInt(-1), 1);
    EXPECT_EQ(summary[u"indexed"_s].toInt(-1), 0);
    EXPECT_FALSE(summary[u"places"_s].toArray().at(0).toObject()[u"complete"_s].toBool(true));
    EXPECT_EQ(indexed(), (QStringList{phone, card})) << "the index is the old one";
}

TEST_F(RefreshCommand, UnknownAndRepeatedPlacesAreUsageErrors)
{
    for (const QString &order : {u"cloud"_s, u"phone,phone"_s, u"phone,,card"_s, u""_s, u","_s}) {
        const CliResult result = run({u"refresh"_s, u"--places"_s, order});
        EXPECT_EQ(result.status, 2) << qPrintable(order);
        EXPECT_EQ(result.errorLines().size(), 1) << result.errors.constData();
        EXPECT_EQ(runBare({u"--work"_s, path(u"work"_s), u"refresh"_s, u"--places"_s, order}).status, 2)
            << "also where no place is there";
    }
}

TEST_F(RefreshCommand, CodecThatDoesNotExistIsNoted)
{
    ConfigFile file(settingsFile(), false);
    ASSERT_TRUE(file.writeEntry(u"MediaControlItem"_s, u"CodecName"_s, u"NoSuchCodec"_s));
    ASSERT_TRUE(file.flush());
    const CliResult result = run({u"refresh"_s});
    EXPECT_EQ(result.status, 0);
    ASSERT_EQ(result.errorLines().size(), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains("NoSuchCodec"));
}

TEST_P(RefreshInterruption, LeavesAConsistentIndex)
{
    writeMany(1500);
    const QStringList all = [this] {
        QStringList paths;
        for (int number = 0; number < 1500; ++number)
            paths.append(path(u"phone/%1.wav"_s.arg(number, 5, 10, '0'_L1)));
        return paths;
    }();
    // The machine may be so busy that a refresh ends before the signal arrives; then once more.
    CliResult result;
    for (int attempt = 0; attempt < 20 && result.status != 130; ++attempt) {
        result = interrupted(GetParam());
        ASSERT_TRUE(result.status == 130 || result.status == 0) << result.status;
    }
    ASSERT_EQ(result.status, 130);
    const QJsonObject summary = result.object();
    EXPECT_EQ(summary[u"reason"_s].toString(), u"cancelled"_s);
    EXPECT_FALSE(summary[u"places"_s].toArray().at(0).toObject()[u"complete"_s].toBool());
    const QStringList files = indexed();
    EXPECT_EQ(files.size(), summary[u"indexed"_s].toInt(-1));
    EXPECT_EQ(files, all.first(files.size()));
    EXPECT_EQ(run({u"list"_s, u"--artist"_s, u"A"_s, u"--json"_s}).status, files.isEmpty() ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Signals, RefreshInterruption, testing::Values(SIGINT, SIGTERM, SIGHUP),
                         [](const auto &row) { return std::string(::sigabbrev_np(row.param)); });
