// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/CachingPlayerEngine.h>

#include "support/ClipInfos.h"
#include "support/TableEngine.h"

#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

const QByteArray media(OLD_FILE);

class CachingPlayerEngineTest : public testing::Test
{
protected:
    CachingPlayerEngineTest() { engine.other.info = oddClipInfo(); }

    std::unique_ptr<CachingPlayerEngine> newEngine(const QString &identity = u"1"_s)
    {
        return std::make_unique<CachingPlayerEngine>(engine, cache(), identity);
    }
    QString cache() const { return m_folder.filePath(u"cache"_s); }

    /// What the engine behind \a caching is asked during one scan.
    QStringList asked(CachingPlayerEngine &caching)
    {
        const qsizetype before = engine.calls().size();
        const int settingA = caching.exchangeScanSettingA(0);
        const int settingB = caching.exchangeScanSettingB(0);
        UINT8 hasAudio = 0;
        UINT8 hasVideo = 0;
        ClipInfo info;
        EXPECT_TRUE(caching.getMediaKind(media, hasAudio, hasVideo));
        EXPECT_TRUE(caching.getClipInfo(media, info));
        EXPECT_EQ(hasAudio, 1);
        EXPECT_EQ(hasVideo, 0);
        EXPECT_TRUE(isSame(info, oddClipInfo()));
        caching.exchangeScanSettingA(settingA);
        caching.exchangeScanSettingB(settingB);
        caching.finishScan();
        return engine.calls().mid(before);
    }

    const QStringList everything{u"A 0"_s, u"B 0"_s,   u"kind CMakeLists.txt"_s, u"info CMakeLists.txt"_s, u"A 7"_s,
                                 u"B 9"_s, u"finish"_s};
    const QStringList settingsAlone{u"A 0"_s, u"B 0"_s, u"A 7"_s, u"B 9"_s, u"finish"_s};
    TableEngine engine;

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(CachingPlayerEngineTest, AnUnchangedFileIsAskedAboutOnce)
{
    const auto first = newEngine();
    EXPECT_EQ(asked(*first), everything);
    EXPECT_EQ(asked(*first), settingsAlone);
    EXPECT_EQ(asked(*newEngine()), settingsAlone) << "by the next process neither";
}

TEST_F(CachingPlayerEngineTest, AnotherIdentityIsAskedAnew)
{
    asked(*newEngine());
    EXPECT_EQ(asked(*newEngine(u"2"_s)), everything);
    const auto caching = newEngine(u"2"_s);
    EXPECT_EQ(asked(*caching), settingsAlone);
    caching->setIdentity(u"3"_s);
    EXPECT_EQ(asked(*caching), everything);
}

TEST_F(CachingPlayerEngineTest, TheFileIsWrittenWhenAScanEnds)
{
    const auto caching = newEngine();
    caching->exchangeScanSettingA(0);
    caching->exchangeScanSettingB(0);
    UINT8 hasAudio = 0;
    UINT8 hasVideo = 0;
    EXPECT_TRUE(caching->getMediaKind(media, hasAudio, hasVideo));
    EXPECT_FALSE(QFile::exists(cache()));
    caching->finishScan();
    EXPECT_TRUE(QFile::exists(cache()));
}

TEST_F(CachingPlayerEngineTest, TheLastToWriteHasTheWholeFile)
{
    const auto one = newEngine(u"1"_s);
    const auto other = newEngine(u"2"_s);
    EXPECT_EQ(asked(*one), everything);
    EXPECT_EQ(asked(*other), everything);
    EXPECT_EQ(asked(*newEngine(u"2"_s)), settingsAlone);
    EXPECT_EQ(asked(*newEngine(u"1"_s)), everything);
}

TEST_F(CachingPlayerEngineTest, AnswersThatAreNotLastingAreNotRemembered)
{
    const auto caching = newEngine();
    caching->setLastingCheck([] { return false; });
    asked(*caching);
    EXPECT_EQ(asked(*caching), everything);
    caching->setLastingCheck({});
    asked(*caching);
    EXPECT_EQ(asked(*caching), settingsAlone);
}
