// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/RefreshRun.h"

#include "RefreshFixture.h"
#include "platform/NumberedGroup.h"
#include "support/OpenFiles.h"

#include <marvola/ConfigFile.h>
#include <marvola/MediaTypeRegistry.h>

#include <array>
#include <future>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using marvola::NumberedGroup;
using marvola::PlacedFile;
using marvola::readListGroup;
using marvola::RefreshPlan;
using marvola::RefreshRun;
using marvola::RefreshState;

namespace {

class RefreshRunTest : public RefreshFixture
{
protected:
    void run() { run(plan()); }
    void run(const RefreshPlan &refreshPlan) { RefreshRun(refreshPlan, state).run(); }
    QStringList names(const QStringList &paths) const
    {
        QStringList short_;
        for (const QString &path : paths)
            short_.append(QFileInfo(path).dir().dirName() + u'/' + QFileInfo(path).fileName());
        return short_;
    }

    RefreshState state{[this](quint8 percent) { progress.add(percent); }};
};

} // namespace

TEST_F(RefreshRunTest, IndexesPlacesInSearchOrder)
{
    addFiles(phone.phone(), 1);
    addFiles(phone.card1(), 1);
    addFiles(phone.card2(), 1);
    searchOrder = {u"Card"_s, u"Phone"_s};
    run();
    EXPECT_EQ(names(indexed()), QStringList({u"card1/000.mp3"_s, u"card2/000.mp3"_s, u"phone/000.mp3"_s}));
    EXPECT_EQ(state.completedPlaces.names(), QStringList({u"Card"_s, u"Phone"_s}));
    EXPECT_EQ(state.counters.totalFiles, 3U);
}

TEST_F(RefreshRunTest, NameThatIsNoPlaceEndsTheOrder)
{
    addFiles(phone.phone(), 1);
    addFiles(phone.card1(), 1);
    searchOrder = {u"Phone"_s, u"Somewhere"_s, u"Card"_s};
    run();
    EXPECT_EQ(names(indexed()), QStringList({u"phone/000.mp3"_s}));
    EXPECT_EQ(state.completedPlaces.names(), QStringList({u"Phone"_s}));
    EXPECT_EQ(progress.values(), std::vector<int>({0, 50})) << "the total counts all roots";
}

TEST_F(RefreshRunTest, PlaceNamedTwiceIsScannedTwice)
{
    addFiles(phone.phone(), 1);
    searchOrder = {u"Phone"_s, u"Phone"_s};
    run();
    EXPECT_EQ(indexed().size(), 2);
    EXPECT_EQ(state.completedPlaces.names(), QStringList({u"Phone"_s, u"Phone"_s}));
}

TEST_F(RefreshRunTest, OrderOf256EntriesScansNone)
{
    addFiles(phone.phone(), 1);
    searchOrder = QStringList(256, u"Phone"_s);
    run();
    EXPECT_EQ(indexed(), QStringList());
    searchOrder = QStringList(257, u"Phone"_s);
    run();
    EXPECT_EQ(indexed().size(), 1);
}

TEST_F(RefreshRunTest, PlacesWithTheSameNameAreTheCards)
{
    addFiles(phone.phone(), 1);
    addFiles(phone.card2(), 1);
    RefreshPlan same = plan();
    same.phoneName = same.memoryCardName = u"Storage"_s;
    same.searchOrder = {u"Storage"_s};
    run(same);
    EXPECT_EQ(names(indexed()), QStringList({u"card2/000.mp3"_s}));
}

TEST_F(RefreshRunTest, EmptyRootsAreNotWalked)
{
    addFiles(phone.phone(), 1);
    RefreshPlan none = plan();
    none.card1Path.clear();
    none.card2Path = QString();
    run(none);
    EXPECT_EQ(indexed().size(), 1);
    EXPECT_EQ(state.counters.totalFiles, 1U);
}

TEST_F(RefreshRunTest, WithoutFilesTheIndexIsRewrittenEmpty)
{
    addFiles(phone.phone(), 2);
    run();
    ASSERT_EQ(indexed().size(), 2);
    ASSERT_EQ(group("artistlist"), QStringList{u"<U>"_s});
    QDir(phone.phone()).removeRecursively();
    const int reports = int(progress.values().size());
    run();
    EXPECT_EQ(InfoBytes::contentOf(phone.infoFile()).count, 0);
    ConfigFile list(phone.listFile(), false);
    for (const QString &name : {u"artistlist"_s, u"albumlist"_s, u"genrelist"_s}) {
        EXPECT_EQ(list.readEntry(name, u"counter"_s), u"0"_s);
        EXPECT_TRUE(list.readEntry(name, u"1"_s).isNull());
    }
    EXPECT_EQ(progress.values().size(), size_t(reports) + 1);
    EXPECT_EQ(progress.values().back(), 0);
    EXPECT_EQ(state.completedPlaces.names(), QStringList()) << "nothing was found, so no place was gone through";
    EXPECT_EQ(engine.calls().filter(u"finish"_s).size(), 1);
}

TEST_F(RefreshRunTest, PlaceWithoutFilesIsCompletedWhenAnotherHasSome)
{
    addFiles(phone.card1(), 1);
    run();
    EXPECT_EQ(state.completedPlaces.names(), QStringList({u"Phone"_s, u"Card"_s}));
}

TEST_F(RefreshRunTest, ZeroIsReportedAfterTheCountWasReset)
{
    addFiles(phone.phone(), 2);
    run();
    int countAtZero = -1;
    RefreshState watched([&](quint8 percent) {
        if (percent == 0)
            countAtZero = InfoBytes::contentOf(phone.infoFile()).count;
    });
    RefreshRun(plan(), watched).run();
    EXPECT_EQ(countAtZero, 0);
    EXPECT_EQ(indexed().size(), 2);
}

TEST_F(RefreshRunTest, CountIsZeroUntilTheEnd)
{
    addFiles(phone.phone(), 3);
    run();
    engine.hook = [this](const QString &) { EXPECT_EQ(InfoBytes::contentOf(phone.infoFile()).count, 0); };
    run();
    EXPECT_EQ(InfoBytes::contentOf(phone.infoFile()).count, 3);
}

TEST_F(RefreshRunTest, IndexOfBeforeIsOverwrittenFromTheStart)
{
    TestPhone::addFile(phone.infoFile(), QByteArray(150000, '\0'));
    addFiles(phone.phone(), 5);
    run();
    const QByteArray before = InfoBytes::bytesOf(phone.infoFile());
    QDir(phone.phone()).removeRecursively();
    addFiles(phone.phone(), 2);
    run();
    const QByteArray after = InfoBytes::bytesOf(phone.infoFile());
    EXPECT_EQ(after.size(), 150000);
    EXPECT_EQ(after.mid(2), before.mid(2)) << "three records are left over behind the two";
    EXPECT_EQ(indexed().size(), 2);
}

TEST_F(RefreshRunTest, ListsAreReplacedAndPlaylistsStay)
{
    {
        ConfigFile list(phone.listFile(), false);
        list.writeEntry(u"artistlist"_s, u"counter"_s, 3);
        for (int i = 1; i <= 4; ++i)
            list.writeEntry(u"artistlist"_s, QString::number(i), u"old"_s);
        list.writeEntry(u"pl-Mine"_s, u"1"_s, u"/x.mp3"_s);
    }
    engine.answers[u"000.mp3"_s] = TableEngine::audio(u"A"_s, u"L"_s, u"G"_s);
    addFiles(phone.phone(), 2);
    run();
    EXPECT_EQ(group("artistlist"), QStringList({u"A"_s, u"<U>"_s}));
    EXPECT_EQ(group("albumlist"), QStringList({u"L"_s, u"<U>"_s}));
    EXPECT_EQ(group("genrelist"), QStringList({u"G"_s, u"<U>"_s}));
    const ConfigFile list(phone.listFile(), false);
    EXPECT_TRUE(list.readEntry(u"artistlist"_s, u"3"_s).isNull());
    EXPECT_EQ(list.readEntry(u"artistlist"_s, u"4"_s), u"old"_s) << "beyond the old counter";
    EXPECT_EQ(list.readEntry(u"pl-Mine"_s, u"1"_s), u"/x.mp3"_s);
}

TEST_F(RefreshRunTest, PlaylistSavedDuringARefreshIsStillThereAfterwards)
{
    addFiles(phone.phone(), 2);
    engine.hook = [this](const QString &call) {
        if (call != u"finish"_s)
            return;
        ConfigFile list(phone.listFile(), false);
        list.writeEntry(u"pl-Mine"_s, u"1"_s, u"/x.mp3"_s);
        EXPECT_TRUE(list.flush());
    };
    run();
    EXPECT_EQ(ConfigFile(phone.listFile(), false).readEntry(u"pl-Mine"_s, u"1"_s), u"/x.mp3"_s);
    EXPECT_EQ(group("artistlist"), QStringList({u"<U>"_s}));
}

TEST_F(RefreshRunTest, CancelLeavesAShorterIndexAndItsLists)
{
    addFiles(phone.phone(), 5);
    addFiles(phone.card1(), 5);
    engine.other = TableEngine::audio(u"A"_s, u"L"_s, u"G"_s);
    engine.hook = [this](const QString &call) {
        if (call == u"info 001.mp3"_s)
            state.cancelled = true;
    };
    run();
    EXPECT_EQ(indexed().size(), 2);
    EXPECT_EQ(group("artistlist"), QStringList{u"A"_s});
    EXPECT_EQ(state.completedPlaces.names(), QStringList()) << "the phone was not gone through to its end";
}

TEST_F(RefreshRunTest, CancelDoesNotCutTheWalk)
{
    addFiles(phone.card1(), 5);
    addFiles(phone.card2(), 5);
    state.cancelled = true; // as while the walk runs
    run();
    EXPECT_EQ(state.counters.totalFiles, 10U);
    EXPECT_EQ(state.completedPlaces.names(), QStringList{u"Phone"_s}) << "which has nothing to stop at";
    EXPECT_EQ(indexed(), QStringList());
    EXPECT_EQ(engine.calls(), QStringList({u"A 0"_s, u"B 0"_s, u"A 7"_s, u"B 9"_s, u"finish"_s}));
    EXPECT_EQ(progress.values(), std::vector<int>({0}));
}

TEST_F(RefreshRunTest, LimitEndsTheRefreshWithWhatItHas)
{
    addFiles(phone.phone(), 60);
    addFiles(phone.card1(), 60);
    run();
    EXPECT_EQ(indexed().size(), 100);
    EXPECT_EQ(state.completedPlaces.names(), QStringList{u"Phone"_s});
    EXPECT_EQ(progress.values().back(), 83) << "of 120";
}

TEST_F(RefreshRunTest, ProgressStepIsAHundredthOfTheTotalAtLeastOne)
{
    addFiles(phone.phone(), 99);
    run();
    EXPECT_EQ(state.counters.progressStep, 1);
    addFiles(phone.card1(), 151);
    run();
    EXPECT_EQ(state.counters.progressStep, 2);
    EXPECT_EQ(state.counters.totalFiles, 250U);
}

TEST_F(RefreshRunTest, OnlySupportedExtensionsAreFound)
{
    QStringList before;
    MediaTypeRegistry::querySupportedExtensions(before, MediaTypeRegistry::MediaPlayer);
    TestPhone::addFile(phone.phone() + u"/a.xyz"_s);
    TestPhone::addFile(phone.phone() + u"/b.MP3"_s);
    run();
    EXPECT_EQ(names(indexed()), QStringList{u"phone/b.MP3"_s});
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, {u"xyz"_s});
    run();
    EXPECT_EQ(names(indexed()), QStringList{u"phone/a.xyz"_s});
    MediaTypeRegistry::setSupportedExtensions(MediaTypeRegistry::MediaPlayer, before);
}

TEST_F(RefreshRunTest, EverybodyMayReadAndWriteTheIndexAfterwards)
{
    TestPhone::addFile(phone.infoFile(), QByteArray(150000, '\0'));
    ASSERT_EQ(::chmod(phone.infoFile().toUtf8().constData(), 0600), 0);
    run();
    struct stat status = {};
    ASSERT_EQ(::stat(phone.infoFile().toUtf8().constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0666U);
}

TEST_F(RefreshRunTest, WorkDirectoryThatIsGoneCostsOnlyTheIndex)
{
    addFiles(phone.phone(), 3);
    RefreshPlan gone = plan();
    gone.infoFile = phone.path(u"missing/info"_s);
    gone.listFile = phone.path(u"file/list"_s);
    TestPhone::addFile(phone.path(u"file"_s));
    run(gone);
    EXPECT_EQ(state.counters.scannedFiles, 3);
    EXPECT_FALSE(QFile::exists(gone.infoFile));
    EXPECT_EQ(progress.values().size(), 4U);
}

TEST_F(RefreshRunTest, IndexOfACardThatComesDuringARefreshStays)
{
    addFiles(phone.phone(), 1);
    RefreshPlan started = plan();
    started.listFile = PlacedFile::here(phone.listFile());
    const QByteArray theirList = "[artistlist]\ncounter=1\n1=Theirs\n";
    const QByteArray theirIndex = QByteArray::fromHex("0005");
    const auto changeCards = [&] {
        EXPECT_TRUE(QDir().rename(phone.write(), phone.path(u"away"_s)));
        TestPhone::addFile(phone.listFile(), theirList);
        TestPhone::addFile(phone.infoFile(), theirIndex);
    };
    engine.hook = [&](const QString &call) {
        if (call == u"kind 000.mp3"_s)
            changeCards();
    };
    run(started);
    EXPECT_EQ(InfoBytes::bytesOf(phone.listFile()), theirList);
    EXPECT_EQ(InfoBytes::bytesOf(phone.infoFile()), theirIndex);

    engine.hook = {};
    run(started);
    EXPECT_EQ(InfoBytes::bytesOf(phone.infoFile()), theirIndex) << "after a long walk";
}

TEST_F(RefreshRunTest, IndexThatIsMadeAnewMeanwhileIsAnother)
{
    addFiles(phone.phone(), 1);
    const QByteArray theirIndex = QByteArray::fromHex("0005");
    // The number of a file that is removed is often the next one to be given.
    RefreshState between([&](quint8 percent) {
        if (percent == 0 && QFile::remove(phone.infoFile()))
            TestPhone::addFile(phone.infoFile(), theirIndex);
    });
    RefreshRun(plan(), between).run();
    EXPECT_EQ(InfoBytes::bytesOf(phone.infoFile()), theirIndex);
}

TEST_F(RefreshRunTest, NothingIsHeldOpenWhenItHasEnded)
{
    addFiles(phone.phone(), 1);
    RefreshPlan started = plan();
    started.listFile = PlacedFile::here(phone.listFile());
    EXPECT_EQ(openAt(phone.write()), 1);
    run(started);
    EXPECT_EQ(openAt(phone.write()), 0);
}

TEST_F(RefreshRunTest, FolderOfACardThatGoesDuringARefreshIsNotMadeAgain)
{
    addFiles(phone.phone(), 1);
    RefreshPlan started = plan();
    started.listFile = PlacedFile::here(phone.listFile());
    engine.hook = [this](const QString &call) {
        if (call == u"kind 000.mp3"_s) {
            EXPECT_TRUE(QDir().rename(phone.write(), phone.path(u"away"_s)));
        }
    };
    run(started);
    EXPECT_FALSE(QFile::exists(phone.write()));
}

TEST_F(RefreshRunTest, InfoFileThatAppearsTooLateReadsAsEmpty)
{
    addFiles(phone.phone(), 3);
    RefreshPlan late = plan();
    late.infoFile = phone.path(u"later/info"_s);
    engine.hook = [&late](const QString &call) {
        if (call == u"A 0"_s)
            TestPhone::addFile(late.infoFile, QByteArray::fromHex("0005"));
    };
    run(late);
    EXPECT_EQ(InfoBytes::bytesOf(late.infoFile).toHex(), "0000");
}

TEST_F(RefreshRunTest, RefreshAfterAFailedOneStartsAfresh)
{
    addFiles(phone.phone(), 3);
    RefreshPlan bad = plan();
    bad.infoFile = phone.write();
    run(bad);
    run();
    EXPECT_EQ(indexed().size(), 3);
}

TEST_F(RefreshRunTest, GroupsAreWrittenInTheirOrder)
{
    addFiles(phone.phone(), 1);
    run();
    const QByteArray text = InfoBytes::bytesOf(phone.listFile());
    const qsizetype artists = text.indexOf("[artistlist]");
    const qsizetype albums = text.indexOf("[albumlist]");
    const qsizetype genres = text.indexOf("[genrelist]");
    ASSERT_GE(artists, 0);
    EXPECT_LT(artists, albums);
    EXPECT_LT(albums, genres);
}

TEST_F(RefreshRunTest, ListsOfAWriterThatWasFasterAreReplacedWhole)
{
    addFiles(phone.phone(), 1);
    std::promise<void> indexed;
    engine.hook = [&indexed](const QString &call) {
        if (call == u"finish"_s)
            indexed.set_value();
    };
    std::future<void> ended;
    {
        ConfigFile other(phone.listFile(), false);
        ASSERT_TRUE(other.lockForUpdate());
        ended = std::async(std::launch::async, [this] { run(); });
        indexed.get_future().wait();
        EXPECT_EQ(ended.wait_for(std::chrono::milliseconds(100)), std::future_status::timeout);
        ASSERT_TRUE(NumberedGroup(other, u"artistlist"_s).replace({u"1"_s, u"2"_s, u"3"_s}));
        ASSERT_TRUE(other.flush());
    }
    ended.get();
    const ConfigFile list(phone.listFile(), false);
    EXPECT_EQ(list.getGroupEntriesKeyList(u"artistlist"_s),
              (QMap<QString, QString>{{u"1"_s, u"<U>"_s}, {u"counter"_s, u"1"_s}}))
        << "entries past the counter would be left over of a counter that was read too early";
}

TEST_F(RefreshRunTest, RefreshesLoseNothingOfAnotherProcess)
{
    constexpr int Entries = 40;
    const QStringList groups{u"pl-Mine"_s, u"artistlis"_s, u"artistlist2"_s, u"aartistlist"_s};
    addFiles(phone.phone(), 3);
    std::array<int, 2> second{};
    ASSERT_EQ(::pipe(second.data()), 0);
    const pid_t writer = ::fork();
    if (writer == 0) {
        bool good = true;
        for (int number = 1; number <= Entries; ++number) {
            // Half of it beside the second refresh at the earliest.
            char begins = 0;
            good = good && (number != Entries / 2 || ::read(second[0], &begins, 1) == 1);
            ConfigFile file(phone.listFile(), false);
            good = good && file.lockForUpdate();
            for (const QString &name : groups) {
                NumberedGroup list(file, name);
                good = good && list.writeEntry(list.count() + 1, name + QString::number(number));
                good = good && list.writeCount(list.count() + 1);
            }
            good = good && file.flush();
        }
        ::_exit(good ? 0 : 1);
    }
    int refreshes = 0;
    int status = 0;
    for (; ::waitpid(writer, &status, WNOHANG) == 0; ++refreshes) {
        if (refreshes == 1) {
            EXPECT_EQ(::write(second[1], "x", 1), 1);
        }
        run();
    }
    ::close(second[0]);
    ::close(second[1]);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    EXPECT_GT(refreshes, 1);
    run();
    for (const QString &name : groups) {
        QStringList expected;
        for (int number = 1; number <= Entries; ++number)
            expected.append(name + QString::number(number));
        EXPECT_EQ(readListGroup(phone.listFile(), name), expected);
    }
    EXPECT_EQ(group("artistlist"), QStringList{u"<U>"_s});
}
