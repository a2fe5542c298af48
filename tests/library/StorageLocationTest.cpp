// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/StorageLocation.h"

#include "support/InRoot.h"
#include "support/NullEngine.h"
#include "support/OnMedium.h"
#include "support/RefusedCall.h"
#include "support/StoppedHolder.h"
#include "support/TestPhone.h"

#include <marvola/ConfigFile.h>
#include <marvola/MP_MyLibrary.h>

#include <gmock/gmock.h>

#include <atomic>
#include <csignal>
#include <thread>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using marvola::hasEnoughSpace;
using marvola::WorkDirectory;

namespace {

#ifdef SYS_rename
constexpr unsigned int Renaming = SYS_rename;
#else
constexpr unsigned int Renaming = SYS_renameat;
#endif
#ifdef SYS_newfstatat
constexpr unsigned int Lstat = SYS_newfstatat;
#else
constexpr unsigned int Lstat = SYS_fstatat64;
#endif

struct Storage : testing::Test
{
    QTemporaryDir temporary;
    QString dir = temporary.path();
    QString listFile = dir + u"/.marvola.list"_s;
    QString infoFile = dir + u"/.marvola.info"_s;
    QString probeFile = dir + u"/haha"_s;

    static void addFile(const QString &path, int size) { TestPhone::addFile(path, QByteArray(size, 'x')); }
    // A directory where the probe file would be: any probe fails.
    void forbidProbe() const { ASSERT_TRUE(QDir().mkpath(probeFile + u"/inside"_s)); }
    QStringList entries() const { return QDir(dir).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot); }
};

using StorageFaults = Storage;

qint64 allocatedBytes(const QString &path)
{
    struct stat status = {};
    EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &status), 0);
    return qint64(status.st_blocks) * 512;
}

/// Lets no file grow beyond a size, as a full medium would; works for root too.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &m_was);
        const struct rlimit limit = {bytes, m_was.rlim_max};
        m_handler = ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_was);
        ::signal(SIGXFSZ, m_handler);
    }
    FileSizeLimit(const FileSizeLimit &) = delete;
    FileSizeLimit &operator=(const FileSizeLimit &) = delete;

private:
    struct rlimit m_was = {};
    void (*m_handler)(int) = nullptr;
};

} // namespace

TEST_F(Storage, EmptyNameHasNoSpace)
{
    EXPECT_FALSE(hasEnoughSpace(QString()));
    EXPECT_FALSE(hasEnoughSpace(u""_s));
}

TEST_F(Storage, MissingDirectoryHasNoSpace)
{
    EXPECT_FALSE(hasEnoughSpace(dir + u"/missing"_s));
}

TEST_F(Storage, FileInTheDirectorysPlaceHasNoSpace)
{
    addFile(dir + u"/file"_s, 1);
    EXPECT_FALSE(hasEnoughSpace(dir + u"/file"_s));
}

TEST_F(Storage, RoomyDirectoryHasSpaceAndNoProbeFileRemains)
{
    EXPECT_TRUE(hasEnoughSpace(dir));
    EXPECT_TRUE(hasEnoughSpace(dir + u'/'));
    EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(Storage, FullMediumHasNoSpaceAndNoProbeFileRemains)
{
    const FileSizeLimit limit(199999);
    EXPECT_FALSE(hasEnoughSpace(dir));
    EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(Storage, ExactlyEnoughSpaceIsEnough)
{
    const FileSizeLimit limit(200000);
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, SmallInfoFileCountsByItsSize)
{
    addFile(infoFile, 120000);
    {
        const FileSizeLimit limit(79999);
        EXPECT_FALSE(hasEnoughSpace(dir));
    }
    const FileSizeLimit limit(80000);
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, LargeInfoFileLeavesTheNeedOfTheListFile)
{
    addFile(infoFile, 200000);
    {
        const FileSizeLimit limit(49999);
        EXPECT_FALSE(hasEnoughSpace(dir));
    }
    const FileSizeLimit limit(50000);
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, InfoFileJustBelowTheNeedLeavesOneByte)
{
    addFile(infoFile, 199999);
    const FileSizeLimit limit(1);
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, ListFileThatCoversTheNeedNeedsNoProbe)
{
    addFile(infoFile, 250000);
    addFile(listFile, 60000);
    forbidProbe();
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, ListFileOfExactlyTheNeedNeedsNoProbe)
{
    addFile(infoFile, 250000);
    addFile(listFile, 50000);
    forbidProbe();
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, SmallerListFileLeavesTheRest)
{
    addFile(infoFile, 150000);
    addFile(listFile, 49999);
    {
        const FileSizeLimit limit(0);
        EXPECT_FALSE(hasEnoughSpace(dir));
    }
    const FileSizeLimit limit(1);
    EXPECT_TRUE(hasEnoughSpace(dir));
}

TEST_F(Storage, ProbeThatCannotBeMadeMeansNoSpace)
{
    forbidProbe();
    EXPECT_FALSE(hasEnoughSpace(dir));
}

TEST_F(Storage, ProbeLeftByADeadProcessIsNoObstacle)
{
    addFile(probeFile, 10);
    EXPECT_TRUE(hasEnoughSpace(dir));
    EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(Storage, ProbeNeverWritesThroughALink)
{
    const QString target = dir + u"/target"_s;
    addFile(target, 3);
    ASSERT_TRUE(QFile::link(target, probeFile));
    EXPECT_TRUE(hasEnoughSpace(dir));
    EXPECT_EQ(QFileInfo(target).size(), 3);
    EXPECT_EQ(entries(), QStringList(u"target"_s));
}

TEST_F(Storage, CardRootsInOrder)
{
    EXPECT_EQ(marvola::cardRoots(), QStringList({u"/mmc/mmca1"_s, u"/mmc/mmca2"_s, u"/mmc/mmca3"_s, u"/mmc/mmca4"_s,
                                                 u"/sd/sda1"_s, u"/sd/sda2"_s, u"/sd/sda3"_s, u"/sd/sda4"_s}));
}

TEST_F(Storage, AvailableDirectoriesAreTheCardRootsWithSpaceInOrder)
{
    for (const QString &root : {u"/sd/sda1"_s, u"/mmc/mmca4"_s, u"/mmc/mmca2"_s, u"/mmc/mmca5"_s, u"/sd/sda0"_s})
        ASSERT_TRUE(QDir().mkpath(dir + root));
    ASSERT_TRUE(QDir().mkpath(dir + u"/mmc/mmca3/haha/inside"_s)); // cannot be probed
    EXPECT_TRUE(holdsInRoot(dir, [] {
        NullEngine engine;
        return MP_MyLibrary(&engine).getAvailableDirectory() ==
               QStringList({u"/mmc/mmca2"_s, u"/mmc/mmca4"_s, u"/sd/sda1"_s});
    }));
}

TEST_F(Storage, WithoutCardsNoDirectoryIsAvailable)
{
    EXPECT_TRUE(holdsInRoot(dir, [] {
        NullEngine engine;
        return MP_MyLibrary(&engine).getAvailableDirectory().isEmpty();
    }));
}

TEST_F(Storage, ChoosingReservesBothFiles)
{
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir));
    EXPECT_EQ(work.path(), dir);
    EXPECT_EQ(work.listFile().path(), listFile);
    EXPECT_EQ(work.infoFile(), infoFile);
    EXPECT_EQ(QFileInfo(listFile).size(), 50000);
    EXPECT_EQ(QFileInfo(infoFile).size(), 150000);
    for (const QString &path : {listFile, infoFile}) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        EXPECT_EQ(file.readAll().count('\0'), file.size());
    }
}

TEST_F(Storage, ReservationsThatADeadProcessLeftAreRemoved)
{
    for (const bool choosing : {false, true}) {
        addFile(listFile + u".reserved"_s, 10);
        addFile(infoFile + u".reserved"_s, 150000);
        WorkDirectory work;
        EXPECT_TRUE(choosing ? work.choose(dir) : hasEnoughSpace(dir));
        EXPECT_EQ(entries(), choosing ? QStringList({u".marvola.info"_s, u".marvola.list"_s}) : QStringList());
    }
    EXPECT_EQ(QFileInfo(listFile).size(), 50000);
}

TEST_F(Storage, ReservingKeepsTheCopyThatACrashLeftOfTheListFile)
{
    {
        ConfigFile file(listFile, false);
        file.writeEntry(u"g"_s, u"k"_s, u"v"_s);
    }
    ASSERT_TRUE(QFile::rename(listFile, listFile + u".new"_s));
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir));
    EXPECT_EQ(ConfigFile(listFile, false).readEntry(u"g"_s, u"k"_s), u"v"_s);
}

TEST_F(Storage, ReservedFilesHaveTheirBlocks)
{
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir));
    EXPECT_GE(allocatedBytes(listFile), 50000);
    EXPECT_GE(allocatedBytes(infoFile), 150000);
}

TEST_F(Storage, ChosenNameIsKeptAsGiven)
{
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir + u'/'));
    EXPECT_EQ(work.path(), dir + u'/');
    EXPECT_EQ(work.listFile().path(), listFile);
}

TEST_F(Storage, ExistingFilesAreLeftAsTheyAre)
{
    addFile(listFile, 10);
    addFile(infoFile, 20);
    WorkDirectory work;
    EXPECT_TRUE(work.choose(dir));
    EXPECT_EQ(QFileInfo(listFile).size(), 10);
    EXPECT_EQ(QFileInfo(infoFile).size(), 20);
    QFile file(infoFile);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray(20, 'x'));
}

TEST_F(Storage, HolesOfExistingFilesAreFilled)
{
    addFile(listFile, 0);
    ASSERT_EQ(::truncate(QFile::encodeName(listFile).constData(), 50000), 0);
    ASSERT_LT(allocatedBytes(listFile), 50000);
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir));
    EXPECT_GE(allocatedBytes(listFile), 50000);
    EXPECT_EQ(QFileInfo(listFile).size(), 50000);
}

TEST_F(Storage, EmptyOrMissingDirectoryIsNotChosen)
{
    WorkDirectory work;
    EXPECT_FALSE(work.choose(QString()));
    EXPECT_FALSE(work.choose(dir + u"/missing"_s));
    EXPECT_TRUE(work.path().isNull());
    EXPECT_TRUE(work.listFile().path().isNull());
    EXPECT_TRUE(work.infoFile().isNull());
}

TEST_F(Storage, NoRoomForTheListFileLeavesNothing)
{
    WorkDirectory work;
    const FileSizeLimit limit(49999);
    EXPECT_FALSE(work.choose(dir));
    EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(Storage, NoRoomForTheInfoFileRemovesTheListFileToo)
{
    WorkDirectory work;
    const FileSizeLimit limit(149999);
    EXPECT_FALSE(work.choose(dir));
    EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(Storage, NoRoomForTheInfoFileKeepsAListFileThatWasThere)
{
    addFile(listFile, 10);
    WorkDirectory work;
    const FileSizeLimit limit(149999);
    EXPECT_FALSE(work.choose(dir));
    EXPECT_EQ(entries(), QStringList(u".marvola.list"_s));
}

TEST_F(Storage, FailedChoiceKeepsThePreviousOne)
{
    ASSERT_TRUE(QDir(dir).mkdir(u"first"_s));
    ASSERT_TRUE(QDir(dir).mkdir(u"second"_s));
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir + u"/first"_s));
    const FileSizeLimit limit(149999);
    EXPECT_FALSE(work.choose(dir + u"/second"_s));
    EXPECT_EQ(work.path(), dir + u"/first"_s);
    EXPECT_EQ(work.infoFile(), dir + u"/first/.marvola.info"_s);
}

TEST_F(Storage, HolesOfAnExistingInfoFileAreFilledToo)
{
    addFile(infoFile, 0);
    ASSERT_EQ(::truncate(QFile::encodeName(infoFile).constData(), 150000), 0);
    WorkDirectory work;
    ASSERT_TRUE(work.choose(dir));
    EXPECT_GE(allocatedBytes(infoFile), 150000);
}

TEST_F(Storage, LinkInAnIndexFilesPlaceIsRefused)
{
    for (const QString &name : {listFile, infoFile}) {
        addFile(dir + u"/precious"_s, 200000);
        ASSERT_TRUE(QFile::link(dir + u"/precious"_s, name));
        WorkDirectory work;
        EXPECT_FALSE(work.choose(dir)) << qPrintable(name);
        ASSERT_TRUE(QFile::remove(name));
    }
}

TEST_F(Storage, NameWithANulIsNoDirectory)
{
    const QString name = dir + QChar(u'\0') + u"more"_s;
    EXPECT_FALSE(hasEnoughSpace(name));
    WorkDirectory work;
    EXPECT_FALSE(work.choose(name));
}

// A file of the right length is no space: only blocks are. A small medium tells the two apart.
TEST_F(Storage, SmallMediumTellsTheTruthAboutItsSpace)
{
    const auto works = [this] {
        WorkDirectory work;
        return hasEnoughSpace(dir) && work.choose(dir);
    };
    EXPECT_TRUE(holdsOnMedium(dir, "size=512k", works));
    EXPECT_TRUE(holdsOnMedium(dir, "size=100k", [this] { return !hasEnoughSpace(dir) && entries().isEmpty(); }));
    EXPECT_TRUE(holdsOnMedium(dir, "size=100k", [this] {
        WorkDirectory work;
        return !work.choose(dir) && entries().isEmpty();
    }));
}

TEST_F(Storage, DanglingLinkInAnIndexFilesPlaceIsNotFollowed)
{
    ASSERT_TRUE(QFile::link(dir + u"/elsewhere"_s, listFile));
    WorkDirectory work;
    EXPECT_FALSE(work.choose(dir));
    EXPECT_FALSE(QFileInfo::exists(dir + u"/elsewhere"_s));
}

TEST_F(Storage, TwoThatChooseADirectoryAtOnceBothGetIt)
{
    constexpr int Rounds = 300;
    std::atomic<int> arrivals(0);
    std::atomic<int> refusals(0);
    const auto player = [&] {
        for (int round = 0; round < Rounds; ++round) {
            const QString fresh = dir + u'/' + QString::number(round);
            ::mkdir(QFile::encodeName(fresh).constData(), 0700);
            // Both begin a round together.
            ++arrivals;
            while (arrivals.load() < 2 * (round + 1))
                std::this_thread::yield();
            WorkDirectory directory;
            if (!hasEnoughSpace(fresh) || !directory.choose(fresh))
                ++refusals;
        }
    };
    std::thread other(player);
    player();
    other.join();
    EXPECT_EQ(refusals.load(), 0);
}

TEST_F(Storage, ADirectoryThatAStoppedProgramHoldsIsRefused)
{
    StoppedHolder other(QFile::encodeName(dir).constData());
    ASSERT_TRUE(other.isHolding());
    EXPECT_FALSE(hasEnoughSpace(dir));
    EXPECT_FALSE(WorkDirectory().choose(dir));
    EXPECT_FALSE(QFile::exists(listFile));
    other.end();
    EXPECT_TRUE(hasEnoughSpace(dir));
    EXPECT_TRUE(WorkDirectory().choose(dir));
}

TEST_F(StorageFaults, WhereSpaceCannotBeReservedItIsWritten)
{
    EXPECT_TRUE(holdsWithout({SYS_fallocate, ENOSYS}, [this] {
        WorkDirectory work;
        return hasEnoughSpace(dir) && work.choose(dir);
    }));
    EXPECT_GE(allocatedBytes(listFile), 50000);
    EXPECT_GE(allocatedBytes(infoFile), 150000);
    EXPECT_EQ(QFileInfo(infoFile).size(), 150000);
}

TEST_F(StorageFaults, SpaceThatHasToBeWrittenMayBeLacking)
{
    EXPECT_TRUE(holdsWithout({SYS_fallocate, ENOSYS}, [this] {
        const FileSizeLimit limit(100000);
        WorkDirectory work;
        return !hasEnoughSpace(dir) && !work.choose(dir);
    }));
    EXPECT_THAT(entries(), testing::IsEmpty());
}

TEST_F(StorageFaults, ReservationsThatAreNotDurableAreNone)
{
    for (const unsigned int call : {unsigned(SYS_fdatasync), unsigned(SYS_fsync), Renaming}) {
        EXPECT_TRUE(holdsWithout({call, EIO}, [this] {
            WorkDirectory work;
            return !work.choose(dir) && work.path().isNull();
        })) << call;
        EXPECT_THAT(entries(), testing::IsEmpty()) << call;
    }
}

TEST_F(StorageFaults, WhatCannotBeLookedAtForAMomentIsNotReplaced)
{
    addFile(infoFile, 20);
    EXPECT_TRUE(holdsWithout({Lstat, EIO, 3, AT_SYMLINK_NOFOLLOW}, [this] {
        WorkDirectory work;
        return !work.choose(dir);
    }));
    EXPECT_EQ(entries(), QStringList(u".marvola.info"_s));
    EXPECT_EQ(QFileInfo(infoFile).size(), 20);
}
