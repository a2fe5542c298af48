// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/MP_MyLibrary.h>

#include "scan/AnswerCache.h"
#include "support/TableEngine.h"
#include "support/TestPhone.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSemaphore>
#include <QtCore/QStorageInfo>

#include <atomic>
#include <cerrno>
#include <functional>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

std::atomic<int> calls = 0;
/// So many of the next calls fail.
std::atomic<int> failures = 0;
std::atomic<int> successesBefore = 0; ///< of those failures

int counted(long number, int fd)
{
    ++calls;
    if (successesBefore > 0) {
        --successesBefore;
    } else if (failures > 0) {
        --failures;
        errno = EIO;
        return -1;
    }
    return static_cast<int>(::syscall(number, fd));
}

} // namespace

// In the place of the C library's, for all of this program.
extern "C" int fsync(int fd)
{
    return counted(SYS_fsync, fd);
}
extern "C" int fdatasync(int fd)
{
    return counted(SYS_fdatasync, fd);
}

namespace {

using namespace Qt::StringLiterals;

/// A library whose files are all there, and the synchronising calls that an operation makes. Each waits for the medium,
/// and they are nearly all that a writing operation takes; docs/performance.md says which is for what.
class SyncCalls : public testing::Test
{
protected:
    void SetUp() override
    {
        const QByteArray filesystem = QStorageInfo(phone.write()).fileSystemType();
        if (filesystem.startsWith("fuse") || filesystem.contains("fat"))
            GTEST_SKIP() << "files are changed in place here, which takes other steps";
        library.setCurrentPlayingList({u"/a"_s, u"/b"_s});
        library.storeMyLibrary();
    }
    static int of(const std::function<void()> &operation)
    {
        calls = 0;
        operation();
        return calls;
    }
    void removeSettings() const { ASSERT_TRUE(QDir(QFileInfo(phone.settingsFile()).path()).removeRecursively()); }
    void refresh()
    {
        QSemaphore finished;
        // A hundred percent of the files are not the end yet.
        const auto report = [this, &finished](UINT8 percent) {
            if (percent == 100 && !library.isMyLibraryRefreshing())
                finished.release();
        };
        const auto connection =
            QObject::connect(&library, &MP_MyLibrary::refreshContinue, &library, report, Qt::DirectConnection);
        library.refreshMyLibrary();
        finished.acquire();
        QObject::disconnect(connection);
    }

    const TestPhone phone;
    TableEngine engine;
    MP_MyLibrary library{&engine};
};

/// A new file made durable, and its name.
constexpr int OneCommit = 2;

} // namespace

TEST_F(SyncCalls, ConstructingNeedsNone)
{
    EXPECT_EQ(of([this] { const MP_MyLibrary again(&engine); }), 0);
}

TEST_F(SyncCalls, StoringWhatDidNotChangeNeedsNone)
{
    EXPECT_EQ(of([this] { library.storeMyLibrary(); }), 0);
}

TEST_F(SyncCalls, WhatAnOperationCouldNotMakeDurableTheNextOneDoes)
{
    library.savePlayList(u"one"_s);
    library.setCurrentPlayingList({u"/c"_s});
    // The new file's call goes well, that of its name does not.
    const auto saveFailing = [this] {
        failures = 1;
        successesBefore = 1;
        EXPECT_EQ(library.savePlayList(u"one"_s), 1);
    };
    EXPECT_EQ(of(saveFailing), OneCommit);
    ASSERT_TRUE(library.setWorkDirectory(phone.write() + u"/."_s)) << "however its place is written";
    EXPECT_EQ(of([this] { EXPECT_EQ(library.savePlayList(u"one"_s), 0); }), 1);
    EXPECT_EQ(of([this] { EXPECT_EQ(library.savePlayList(u"one"_s), 0); }), 0);
}

TEST_F(SyncCalls, StoringASettingIsOneCommit)
{
    library.setVolume(77);
    EXPECT_EQ(of([this] { library.storeConfig(); }), OneCommit);
}

TEST_F(SyncCalls, FirstSettingsNeedTheirFoldersNameToo)
{
    removeSettings();
    EXPECT_EQ(of([this] { library.storeConfig(); }), 1 + OneCommit);
}

TEST_F(SyncCalls, NameOfAFolderThatCouldNotBeMadeDurableIsMadeSoTheNextTime)
{
    removeSettings();
    failures = 1;
    EXPECT_EQ(of([this] { library.storeConfig(); }), 1);
    EXPECT_EQ(of([this] { library.storeConfig(); }), 1 + OneCommit);
}

TEST_F(SyncCalls, NewWorkDirectoryNeedsBothFilesAndTheirNames)
{
    EXPECT_EQ(of([this] { EXPECT_TRUE(library.setWorkDirectory(phone.card1())); }), 4);
    EXPECT_EQ(of([this] { EXPECT_TRUE(library.setWorkDirectory(phone.card1())); }), 0);
}

TEST_F(SyncCalls, FirstStartNeedsBothFilesAndTheirNames)
{
    const TestPhone another;
    EXPECT_EQ(of([this] { const MP_MyLibrary first(&engine); }), 4);
}

TEST_F(SyncCalls, AnswerCacheThatLearnedSomethingNeedsOne)
{
    engine.answers.insert(u"a.mp3"_s, TableEngine::audio(u"Artist"_s, u"Album"_s, u"Genre"_s));
    const QByteArray media = TestPhone::addFile(phone.phone() + u"/a.mp3"_s).toUtf8();
    // An hour ahead, since nothing is remembered of files as new as this one.
    marvola::AnswerCache cache(phone.path(u"answers"_s), {}, [] {
        marvola::FileTime time = marvola::FileTime::now();
        time.seconds += 3600;
        return time;
    });
    cache.setSettingA(0);
    cache.setSettingB(0);
    const auto ask = [&] {
        UINT8 hasAudio = 0;
        UINT8 hasVideo = 0;
        EXPECT_TRUE(cache.kind(engine, media, hasAudio, hasVideo));
        cache.save();
    };
    EXPECT_EQ(of(ask), 1);
    EXPECT_EQ(of(ask), 0);
}

TEST_F(SyncCalls, StoringAllListsIsOneCommit)
{
    library.addItemToHistory(u"http://a"_s);
    library.addItemToBookmark(u"name"_s, u"http://a"_s);
    library.setCurrentPlayingList({u"/c"_s});
    EXPECT_EQ(of([this] { library.storeAllList(); }), OneCommit);
}

TEST_F(SyncCalls, StoringSettingsAndListsIsACommitOfEachFile)
{
    library.setVolume(77);
    library.addItemToHistory(u"http://a"_s);
    EXPECT_EQ(of([this] { library.storeMyLibrary(); }), 2 * OneCommit);
}

TEST_F(SyncCalls, EachPlaylistOperationIsOneCommit)
{
    EXPECT_EQ(of([this] { EXPECT_EQ(library.savePlayList(u"one"_s), 0); }), OneCommit);
    EXPECT_EQ(of([this] { EXPECT_TRUE(library.renamePlayList(u"one"_s, u"two"_s)); }), OneCommit);
    EXPECT_EQ(of([this] { EXPECT_TRUE(library.deletePlayList(u"two"_s)); }), OneCommit);
    EXPECT_EQ(of([this] { EXPECT_EQ(library.savePlayList(u"three"_s), 0); }), OneCommit);
    EXPECT_EQ(of([this] { EXPECT_TRUE(library.deleteAllPlayLists()); }), OneCommit);
}

TEST_F(SyncCalls, SavingAPlaylistAsItIsNeedsNone)
{
    ASSERT_EQ(library.savePlayList(u"one"_s), 0);
    EXPECT_EQ(of([this] { EXPECT_EQ(library.savePlayList(u"one"_s), 0); }), 0);
    EXPECT_EQ(of([this] { EXPECT_FALSE(library.loadPlayList(u"one"_s).isEmpty()); }), 0);
    EXPECT_TRUE(library.hasPlayList(u"one"_s));
}

TEST_F(SyncCalls, ARefreshNeedsThreeAndACommitOfTheList)
{
    // The count of 0, the records, the count of the records: each must be on the medium before the next.
    constexpr int InfoFile = 3;
    TestPhone::addFile(phone.phone() + u"/a.mp3"_s);
    engine.answers.insert(u"a.mp3"_s, TableEngine::audio(u"Artist"_s, u"Album"_s, u"Genre"_s));
    EXPECT_EQ(of([this] { refresh(); }), InfoFile + OneCommit);
    EXPECT_EQ(library.getAllMedia().size(), 1);
    EXPECT_EQ(of([this] { refresh(); }), InfoFile);
}

TEST_F(SyncCalls, QueriesNeedNone)
{
    EXPECT_EQ(of([this] {
                  library.getAllMedia();
                  library.getAllArtists();
                  library.getAllPlayLists();
              }),
              0);
}
