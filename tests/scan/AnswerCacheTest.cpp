// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/AnswerCache.h"

#include "support/ClipInfos.h"
#include "support/TableEngine.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;
using marvola::AnswerCache;
using marvola::FileTime;

namespace {

/// A folder with the media file x.mp3 and a cache for it, whose clock is an hour ahead: the file looks old.
class AnswerCacheTest : public testing::Test
{
protected:
    AnswerCacheTest()
    {
        write("first");
        now.seconds += 3600;
        engine.other.info = oddClipInfo();
    }

    QString path(const QString &name) const { return m_folder.filePath(name); }
    QByteArray media() const { return QFile::encodeName(path(u"x.mp3"_s)); }

    void write(const QByteArray &bytes) const
    {
        QFile file(path(u"x.mp3"_s));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }

    /// A cache over the same file, as the next run of a program has one.
    std::unique_ptr<AnswerCache> newCache(const QString &identity = u"engine 1"_s, int settingA = 0, int settingB = 0)
    {
        auto cache = std::make_unique<AnswerCache>(path(u"cache"_s), identity, [this] { return now; });
        cache->setSettingA(settingA);
        cache->setSettingB(settingB);
        return cache;
    }

    /// What the engine is asked while \a cache answers for x.mp3, and whether that answer is the engine's.
    QStringList askedFor(AnswerCache &cache)
    {
        const qsizetype before = engine.calls().size();
        UINT8 hasAudio = 0;
        UINT8 hasVideo = 0;
        ClipInfo info;
        EXPECT_EQ(cache.kind(engine, media(), hasAudio, hasVideo), engine.other.kindKnown);
        EXPECT_EQ(cache.info(engine, media(), info), engine.other.infoKnown);
        EXPECT_EQ(hasAudio, engine.other.hasAudio);
        EXPECT_EQ(hasVideo, engine.other.hasVideo);
        EXPECT_TRUE(isSame(info, engine.other.info));
        return engine.calls().mid(before);
    }

    /// Whether a cache that has answered for x.mp3 once asks no more.
    bool isRemembered()
    {
        const auto cache = newCache();
        askedFor(*cache);
        cache->save();
        return askedFor(*cache).isEmpty() && askedFor(*newCache()).isEmpty();
    }

    void TearDown() override { EXPECT_TRUE(m_folder.isValid()); }

    const QStringList both{u"kind x.mp3"_s, u"info x.mp3"_s};
    TableEngine engine;
    FileTime now = FileTime::now();

private:
    QTemporaryDir m_folder;
};

using AnswerCacheRemembers = AnswerCacheTest;
using AnswerCacheAsksAgain = AnswerCacheTest;

} // namespace

TEST_F(AnswerCacheRemembers, BothAnswersInThisRunAndTheNext)
{
    engine.other.hasAudio = 0xff;
    engine.other.hasVideo = 2;
    const auto cache = newCache();
    EXPECT_EQ(askedFor(*cache), both);
    EXPECT_EQ(askedFor(*cache), QStringList());
    cache->save();
    EXPECT_EQ(askedFor(*newCache()), QStringList());
}

TEST_F(AnswerCacheRemembers, EachAnswerForItself)
{
    engine.other.infoKnown = false;
    const auto cache = newCache();
    askedFor(*cache);
    ClipInfo info;
    UINT8 audio = 0;
    UINT8 video = 0;
    const qsizetype before = engine.calls().size();
    EXPECT_TRUE(cache->kind(engine, media(), audio, video));
    EXPECT_EQ(engine.calls().size(), before);
    EXPECT_FALSE(cache->info(engine, media(), info));
    EXPECT_EQ(engine.calls().mid(before), QStringList(u"info x.mp3"_s));
}

TEST_F(AnswerCacheRemembers, NothingBeyondItselfWithoutAFile)
{
    AnswerCache cache({}, {}, [this] { return now; });
    cache.setSettingA(0);
    cache.setSettingB(0);
    EXPECT_EQ(askedFor(cache), both);
    EXPECT_EQ(askedFor(cache), QStringList());
    cache.save();
}

TEST_F(AnswerCacheRemembers, UnderEverySettingThatWasInForce)
{
    const auto cache = newCache();
    askedFor(*cache);
    cache->setSettingA(1);
    EXPECT_EQ(askedFor(*cache), both);
    cache->setSettingB(1);
    EXPECT_EQ(askedFor(*cache), both);
    cache->setSettingA(0);
    EXPECT_EQ(askedFor(*cache), both);
    cache->setSettingB(0);
    EXPECT_EQ(askedFor(*cache), QStringList());
}

TEST_F(AnswerCacheAsksAgain, AboutAFileThatChanged)
{
    const auto cache = newCache();
    askedFor(*cache);
    write("second, and longer");
    EXPECT_EQ(askedFor(*cache), both);
}

TEST_F(AnswerCacheAsksAgain, AboutAFileWhoseTimesChanged)
{
    const auto cache = newCache();
    askedFor(*cache);
    const timespec times[] = {{1, 0}, {1, 1}};
    ASSERT_EQ(::utimensat(AT_FDCWD, media().constData(), times, 0), 0);
    EXPECT_EQ(askedFor(*cache), both);
    const timespec later[] = {{1, 0}, {1, 2}};
    ASSERT_EQ(::utimensat(AT_FDCWD, media().constData(), later, 0), 0);
    EXPECT_EQ(askedFor(*cache), both) << "by a nanosecond";
}

TEST_F(AnswerCacheAsksAgain, WithAnotherIdentity)
{
    const auto cache = newCache();
    askedFor(*cache);
    cache->save();
    EXPECT_EQ(askedFor(*newCache(u"engine 2"_s)), both);
    cache->setIdentity(u"engine 2"_s);
    EXPECT_EQ(askedFor(*cache), both);
    cache->setIdentity(u"engine 1"_s);
    EXPECT_EQ(askedFor(*cache), QStringList()) << "the file has these still";
}

TEST_F(AnswerCacheAsksAgain, AboutAFileThatIsTooNew)
{
    now = FileTime::now();
    EXPECT_FALSE(isRemembered());
    now.seconds += 2;
    EXPECT_FALSE(isRemembered());
    now.seconds += 3600;
    EXPECT_TRUE(isRemembered());
}

TEST_F(AnswerCacheAsksAgain, AboutAFileOfTheFuture)
{
    now.seconds -= 2 * 3600;
    EXPECT_FALSE(isRemembered());
}

TEST_F(AnswerCacheAsksAgain, AboutAFileThatChangesWhileTheEngineReads)
{
    engine.hook = [this](const QString &) { write(QByteArray(engine.calls().size(), 'x')); };
    EXPECT_FALSE(isRemembered());
    EXPECT_FALSE(QFile::exists(path(u"cache"_s))) << "nor under the state that it had before";
    engine.hook = {};
    EXPECT_TRUE(isRemembered());
}

TEST_F(AnswerCacheAsksAgain, AboutAFileThatWasTooNewWhenTheEngineReadIt)
{
    now = FileTime::now();
    engine.hook = [this](const QString &) { now.seconds += 10; };
    const auto cache = newCache();
    EXPECT_EQ(askedFor(*cache), both);
    cache->save();
    EXPECT_FALSE(QFile::exists(path(u"cache"_s))) << "the second answer may be of what was read for the first";
    EXPECT_EQ(askedFor(*cache), both);
    EXPECT_EQ(askedFor(*cache), QStringList()) << "after a scan an engine keeps nothing";
}

TEST_F(AnswerCacheAsksAgain, AboutAFileThatGoesWhileTheEngineReads)
{
    engine.hook = [this](const QString &) { QFile::remove(path(u"x.mp3"_s)); };
    EXPECT_FALSE(isRemembered());
}

TEST_F(AnswerCacheAsksAgain, WhatWasAnsweredWithFalse)
{
    engine.other.kindKnown = false;
    engine.other.infoKnown = false;
    EXPECT_FALSE(isRemembered());
}

TEST_F(AnswerCacheAsksAgain, WhatDependedOnTheMoment)
{
    bool isLasting = false;
    const auto cache = newCache();
    cache->setLastingCheck([&isLasting] { return isLasting; });
    askedFor(*cache);
    EXPECT_EQ(askedFor(*cache), both);
    isLasting = true;
    EXPECT_EQ(askedFor(*cache), both);
    EXPECT_EQ(askedFor(*cache), QStringList());
}

TEST_F(AnswerCacheAsksAgain, BeforeBothSettingsAreKnown)
{
    AnswerCache cache(path(u"cache"_s), {}, [this] { return now; });
    askedFor(cache);
    EXPECT_EQ(askedFor(cache), both);
    cache.setSettingA(0);
    askedFor(cache);
    EXPECT_EQ(askedFor(cache), both);
    cache.setSettingB(0);
    EXPECT_EQ(askedFor(cache), both) << "what came before was not remembered";
    EXPECT_EQ(askedFor(cache), QStringList());
}

TEST_F(AnswerCacheAsksAgain, AboutWhatIsNoRegularFile)
{
    QFile::remove(path(u"x.mp3"_s));
    EXPECT_FALSE(isRemembered()) << "missing";
    ASSERT_EQ(::mkfifo(media().constData(), 0600), 0);
    EXPECT_FALSE(isRemembered()) << "a pipe";
}

TEST_F(AnswerCacheAsksAgain, ForVariablesThatAreNotBlank)
{
    const auto cache = newCache();
    askedFor(*cache);
    const qsizetype before = engine.calls().size();
    UINT8 audio = 0;
    UINT8 video = 1;
    EXPECT_TRUE(cache->kind(engine, media(), audio, video));
    audio = 1;
    video = 0;
    EXPECT_TRUE(cache->kind(engine, media(), audio, video));
    EXPECT_EQ(engine.calls().size(), before + 2);
    ClipInfo info;
    info.composer = u"left over"_s;
    EXPECT_TRUE(cache->info(engine, media(), info));
    info = {};
    info.height = 1;
    EXPECT_TRUE(cache->info(engine, media(), info));
    EXPECT_EQ(engine.calls().size(), before + 4) << "an engine may leave some as they were";
}

TEST_F(AnswerCacheAsksAgain, RememberingNothingOfVariablesThatWereNotBlank)
{
    const auto cache = newCache();
    ClipInfo info;
    info.comment = u"left over"_s;
    EXPECT_TRUE(cache->info(engine, media(), info));
    UINT8 audio = 9;
    UINT8 video = 0;
    EXPECT_TRUE(cache->kind(engine, media(), audio, video));
    EXPECT_EQ(askedFor(*cache), both);
}

TEST_F(AnswerCacheTest, WhatFalseLeavesInTheVariablesIsTheEngines)
{
    engine.other.kindKnown = false;
    engine.other.infoKnown = false;
    engine.other.hasVideo = 3;
    askedFor(*newCache()); // compares them
}

TEST_F(AnswerCacheTest, LooksAgainForAQuestionThatComesLater)
{
    const auto cache = newCache();
    askedFor(*cache);
    UINT8 audio = 0;
    UINT8 video = 0;
    EXPECT_TRUE(cache->kind(engine, media(), audio, video));
    write("second, and longer");
    now.nanoseconds = 0;
    now.seconds += 1;
    const qsizetype before = engine.calls().size();
    ClipInfo info;
    EXPECT_TRUE(cache->info(engine, media(), info));
    EXPECT_EQ(engine.calls().mid(before), QStringList(u"info x.mp3"_s));
}

TEST_F(AnswerCacheTest, LooksOnceForBothQuestionsAndNoOftener)
{
    const auto cache = newCache();
    askedFor(*cache);
    UINT8 audio = 0;
    UINT8 video = 0;
    EXPECT_TRUE(cache->kind(engine, media(), audio, video));
    write("second, and longer");
    const qsizetype before = engine.calls().size();
    ClipInfo info;
    EXPECT_TRUE(cache->info(engine, media(), info));
    EXPECT_EQ(engine.calls().size(), before) << "as if asked when the first question was";
    info = {};
    EXPECT_TRUE(cache->info(engine, media(), info));
    EXPECT_EQ(engine.calls().mid(before), QStringList(u"info x.mp3"_s));
}

TEST_F(AnswerCacheTest, WritesOnlyWhatIsNew)
{
    const auto cache = newCache();
    cache->save();
    EXPECT_FALSE(QFile::exists(path(u"cache"_s))) << "nothing was learned";
    askedFor(*cache);
    cache->save();
    EXPECT_TRUE(QFile::remove(path(u"cache"_s)));
    askedFor(*cache);
    cache->save();
    EXPECT_FALSE(QFile::exists(path(u"cache"_s))) << "nothing was learned since";
}

TEST_F(AnswerCacheTest, WhatCouldNotBeWrittenIsWrittenNextTime)
{
    const auto cache = newCache();
    ASSERT_TRUE(QDir().mkdir(path(u"cache"_s)));
    askedFor(*cache);
    cache->save();
    ASSERT_TRUE(QDir().rmdir(path(u"cache"_s)));
    cache->save();
    EXPECT_EQ(askedFor(*newCache()), QStringList());
}

TEST_F(AnswerCacheTest, GarbageIsAnEmptyCache)
{
    const auto cache = newCache();
    askedFor(*cache);
    cache->save();
    QFile file(path(u"cache"_s));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.resize(file.size() - 1));
    EXPECT_EQ(askedFor(*newCache()), both);
}
