// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/MediaIndexer.h"

#include "InfoBytes.h"
#include "scan/RefreshPlan.h"
#include "support/Folders.h"
#include "support/OpenFiles.h"
#include "support/TableEngine.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::InfoRecord;
using marvola::MediaIndexer;
using marvola::RefreshPlan;
using marvola::RefreshState;

namespace {

QStringList filesTo(int count, int pathLength = 8)
{
    QStringList files;
    for (int i = 0; i < count; ++i)
        files.append(u"/%1.mp3"_s.arg(i, pathLength - 5, 10, QLatin1Char('0')));
    return files;
}

/// The size of a record whose three texts are the unknown text.
unsigned int recordSize(const QString &path)
{
    return unsigned(InfoBytes::encoded({0, path, 1, u"<U>"_s, u"<U>"_s, u"<U>"_s}).size());
}

class MediaIndexerTest : public testing::Test
{
protected:
    MediaIndexerTest()
    {
        plan.infoFile = folders.path(u"info"_s);
        plan.unknownText = u"<U>"_s;
        plan.maxMediaFiles = 65535;
        plan.engine = &engine;
        state.counters.progressStep = 1;
    }

    bool index(const QStringList &files) { return indexer.index(offset, files, {artists, albums, genres}); }
    /// What a reader finds when the count is the number of records that reached the file.
    QList<InfoRecord> records() const
    {
        EXPECT_TRUE(marvola::InfoFile::publishCount(plan.infoFile, indexer.recordsInFile()));
        return InfoBytes::contentOf(plan.infoFile).records;
    }

    Folders folders;
    TableEngine engine;
    RefreshPlan plan;
    std::vector<int> progress;
    RefreshState state{[this](quint8 percent) { progress.push_back(percent); }};
    MediaIndexer indexer{plan, state};
    unsigned int offset = 2;
    QStringList artists;
    QStringList albums;
    QStringList genres;
};

} // namespace

TEST_F(MediaIndexerTest, NoFilesTouchNothing)
{
    artists = {u"x"_s};
    EXPECT_TRUE(index({}));
    EXPECT_EQ(engine.calls(), QStringList());
    EXPECT_FALSE(QFile::exists(plan.infoFile));
    EXPECT_EQ(offset, 2U);
    EXPECT_EQ(artists, QStringList{u"x"_s});
    state.cancelled = true;
    EXPECT_TRUE(index({})) << "even when cancelled";
}

TEST_F(MediaIndexerTest, EngineIsCalledInOrderAndPutBack)
{
    EXPECT_TRUE(index({u"/a.mp3"_s, u"/b.mp3"_s}));
    EXPECT_EQ(engine.calls(), QStringList({u"A 0"_s, u"B 0"_s, u"kind a.mp3"_s, u"info a.mp3"_s, u"kind b.mp3"_s,
                                           u"info b.mp3"_s, u"A 7"_s, u"B 9"_s, u"finish"_s}));
}

TEST_F(MediaIndexerTest, ScanIsFinishedBeforeTheInfoFileIsClosed)
{
    const QString file = folders.root() + u"/info"_s;
    bool openAtFinish = false;
    engine.hook = [&](const QString &call) {
        if (call == u"finish"_s)
            openAtFinish = openAt(file) == 1;
    };
    EXPECT_TRUE(index(filesTo(2)));
    EXPECT_TRUE(openAtFinish);
    EXPECT_EQ(openAt(file), 0) << "afterwards";
}

TEST_F(MediaIndexerTest, EngineIsPutBackOnEveryWayOut)
{
    const QStringList bracket{u"A 0"_s, u"B 0"_s, u"A 7"_s, u"B 9"_s, u"finish"_s};
    plan.maxMediaFiles = 0;
    EXPECT_FALSE(index(filesTo(3)));
    EXPECT_EQ(engine.calls(), bracket) << "limit";
    state.cancelled = true;
    EXPECT_FALSE(index(filesTo(3)));
    EXPECT_EQ(engine.calls().mid(bracket.size()), bracket) << "cancelled";
    state.cancelled = false;
    plan.maxMediaFiles = 100;
    offset = 150000;
    EXPECT_FALSE(index(filesTo(1)));
    EXPECT_EQ(engine.calls().mid(2 * bracket.size()),
              QStringList({u"A 0"_s, u"B 0"_s, u"kind 000.mp3"_s, u"info 000.mp3"_s, u"A 7"_s, u"B 9"_s, u"finish"_s}))
        << "size limit, which is looked at after the file";
}

TEST_F(MediaIndexerTest, RecordsHoldWhatTheEngineSaid)
{
    engine.answers[u"a.mp3"_s] = TableEngine::audio(u" An  Artist "_s, u"Album"_s, u""_s);
    engine.answers[u"b.mp4"_s] = TableEngine::video(u"V"_s);
    EXPECT_TRUE(index({u"/music/a.mp3"_s, u"/b.mp4"_s}));
    const QList<InfoRecord> expected{{0, u"/music/a.mp3"_s, 1, u"An Artist"_s, u"Album"_s, u"<U>"_s},
                                     {1, u"/b.mp4"_s, 2, u"V"_s, u"<U>"_s, u"<U>"_s}};
    EXPECT_EQ(InfoBytes::encoded(records(), 2), InfoBytes::encoded(expected, 2));
    EXPECT_EQ(offset, unsigned(InfoBytes::encoded(expected, 2).size()));
}

TEST_F(MediaIndexerTest, OnlyAudioFeedsTheLists)
{
    engine.answers[u"a.mp3"_s] = TableEngine::audio(u"A"_s, u"L"_s, u"G"_s);
    engine.answers[u"v.mp4"_s] = TableEngine::video(u"VA"_s, u"VL"_s, u"VG"_s);
    engine.answers[u"n.mp3"_s].hasAudio = 0;
    EXPECT_TRUE(index({u"/v.mp4"_s, u"/n.mp3"_s, u"/a.mp3"_s, u"/x.mp3"_s, u"/a.mp3"_s}));
    EXPECT_EQ(artists, QStringList({u"A"_s, u"<U>"_s}));
    EXPECT_EQ(albums, QStringList({u"L"_s, u"<U>"_s}));
    EXPECT_EQ(genres, QStringList({u"G"_s, u"<U>"_s}));
    EXPECT_EQ(records().size(), 5) << "all are written and counted";
    EXPECT_EQ(state.counters.scannedFiles, 5);
}

TEST_F(MediaIndexerTest, PlacesContinueOneAnother)
{
    EXPECT_TRUE(index(filesTo(2)));
    EXPECT_TRUE(index(filesTo(3)));
    const QList<InfoRecord> found = records();
    ASSERT_EQ(found.size(), 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(found.at(i).index, i);
    EXPECT_EQ(artists, QStringList{u"<U>"_s});
}

TEST_F(MediaIndexerTest, HundredOfAHundredAndFiftyFilesWithALimitOfHundred)
{
    plan.maxMediaFiles = 100;
    EXPECT_FALSE(index(filesTo(150)));
    EXPECT_EQ(records().size(), 100);
    EXPECT_EQ(engine.calls().filter(u"kind"_s).size(), 100) << "the one beyond is not asked for";
}

TEST_F(MediaIndexerTest, LimitThatIsJustReachedStopsNothing)
{
    plan.maxMediaFiles = 100;
    EXPECT_TRUE(index(filesTo(100)));
    EXPECT_FALSE(index(filesTo(1)));
}

TEST_F(MediaIndexerTest, LimitOfZeroIndexesNothing)
{
    plan.maxMediaFiles = 0;
    EXPECT_FALSE(index(filesTo(1)));
    EXPECT_EQ(records().size(), 0);
}

TEST_F(MediaIndexerTest, RecordMayStartAt148499ButNotAt148500)
{
    offset = 148500;
    EXPECT_FALSE(index(filesTo(1)));
    EXPECT_EQ(offset, 148500U);
    EXPECT_EQ(state.counters.scannedFiles, 0);
    EXPECT_EQ(artists, QStringList()) << "the file is left out altogether";
    offset = 148499;
    EXPECT_TRUE(index(filesTo(1)));
    EXPECT_EQ(offset, 148499U + recordSize(filesTo(1).constFirst()));
    EXPECT_EQ(QFileInfo(plan.infoFile).size(), qint64(offset));
}

TEST_F(MediaIndexerTest, SizeLimitIsLookedAtBeforeEachRecord)
{
    const QStringList files = filesTo(1510, int(100 - recordSize({})) / 2);
    ASSERT_EQ(recordSize(files.constFirst()), 99U);
    EXPECT_FALSE(index(files));
    EXPECT_EQ(state.counters.scannedFiles, (148499 - 2) / 99 + 1);
    EXPECT_EQ(records().size(), (148499 - 2) / 99 + 1);
}

TEST_F(MediaIndexerTest, CancelStopsBeforeTheNextFile)
{
    engine.hook = [this](const QString &call) {
        if (call == u"kind 001.mp3"_s)
            state.cancelled = true;
    };
    EXPECT_FALSE(index(filesTo(5)));
    EXPECT_EQ(records().size(), 2) << "the file being asked for is finished";
}

TEST_F(MediaIndexerTest, ProgressFollowsEverySecondRecordOf250)
{
    state.counters.totalFiles = 250;
    state.counters.progressStep = 2;
    EXPECT_TRUE(index(filesTo(250)));
    ASSERT_EQ(progress.size(), 125U);
    for (size_t i = 0; i < progress.size(); ++i)
        EXPECT_EQ(progress[i], int((i + 1) * 2 * 100 / 250));
    EXPECT_EQ(std::vector<int>(progress.begin(), progress.begin() + 3), std::vector<int>({0, 1, 2}));
    EXPECT_EQ(progress.back(), 100);
}

TEST_F(MediaIndexerTest, ProgressCountsFilesScannedTwice)
{
    state.counters.totalFiles = 2;
    EXPECT_TRUE(index(filesTo(2)));
    EXPECT_TRUE(index(filesTo(2)));
    EXPECT_EQ(progress, std::vector<int>({50, 100, 150, 200}));
    EXPECT_TRUE(index(filesTo(2)));
    EXPECT_EQ(progress.back(), 300 % 256) << "8 bits";
}

TEST_F(MediaIndexerTest, WithoutARefreshBeforeThereIsNoProgress)
{
    state.counters = {};
    EXPECT_TRUE(index(filesTo(3)));
    state.counters.progressStep = 1;
    EXPECT_TRUE(index(filesTo(3)));
    EXPECT_TRUE(progress.empty());
}

TEST_F(MediaIndexerTest, IndexWrapsPast32767)
{
    state.counters.scannedFiles = 32767;
    EXPECT_TRUE(index(filesTo(2)));
    const QList<InfoRecord> found = records();
    ASSERT_EQ(found.size(), 2);
    EXPECT_EQ(found.at(0).index, 32767);
    EXPECT_EQ(found.at(1).index, -32768);
}

TEST_F(MediaIndexerTest, FileThatCannotBeOpenedLetsTheScanGoOn)
{
    plan.infoFile = folders.root();
    EXPECT_TRUE(index(filesTo(3)));
    EXPECT_EQ(state.counters.scannedFiles, 3);
    EXPECT_EQ(indexer.recordsInFile(), 0);
    EXPECT_EQ(offset, 2 + 3 * recordSize(filesTo(1).constFirst())) << "moves as if they were written";
    EXPECT_EQ(artists, QStringList{u"<U>"_s});
}

TEST_F(MediaIndexerTest, AfterLostRecordsNoneAreWrittenBehindTheGap)
{
    const QString good = plan.infoFile;
    plan.infoFile = folders.root();
    EXPECT_TRUE(index(filesTo(1)));
    plan.infoFile = good;
    EXPECT_TRUE(index(filesTo(1)));
    EXPECT_EQ(indexer.recordsInFile(), 0);
    EXPECT_FALSE(QFile::exists(good));
}

TEST_F(MediaIndexerTest, LostRecordsOfOneIndexerAreNoneOfAnothers)
{
    const QString good = plan.infoFile;
    plan.infoFile = folders.root();
    EXPECT_TRUE(index(filesTo(1)));
    plan.infoFile = good;
    MediaIndexer another(plan, state);
    offset = 2;
    EXPECT_TRUE(another.index(offset, filesTo(2), {artists, albums, genres}));
    EXPECT_EQ(another.recordsInFile(), 2);
    ASSERT_TRUE(marvola::InfoFile::publishCount(good, 2));
    EXPECT_EQ(InfoBytes::contentOf(good).records.size(), 2);
}

TEST_F(MediaIndexerTest, RecordsMayGoNowhere)
{
    MediaIndexer silent(plan, state, marvola::Records::Nowhere);
    EXPECT_TRUE(silent.index(offset, filesTo(2), {artists, albums, genres}));
    EXPECT_EQ(silent.recordsInFile(), 0);
    EXPECT_FALSE(QFile::exists(plan.infoFile));
    EXPECT_EQ(state.counters.scannedFiles, 2);
    EXPECT_EQ(artists, QStringList{u"<U>"_s});
}

TEST_F(MediaIndexerTest, ListsThatHoldSomethingGrow)
{
    engine.other = TableEngine::audio(u"A"_s, u"B"_s, u"C"_s);
    artists = {u"A"_s};
    albums = {u"Z"_s};
    EXPECT_TRUE(index(filesTo(3)));
    EXPECT_EQ(artists, QStringList{u"A"_s});
    EXPECT_EQ(albums, QStringList({u"Z"_s, u"B"_s}));
    EXPECT_EQ(genres, QStringList{u"C"_s});
}
