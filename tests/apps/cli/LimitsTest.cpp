// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Limits.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace marvola;

namespace {

class LimitsFile : public testing::Test
{
protected:
    void write(const QString &group, const QString &key, int value) const
    {
        ConfigFile file(m_path, false);
        EXPECT_TRUE(file.writeEntry(group, key, value));
        EXPECT_TRUE(file.flush());
    }
    void expectBuiltIn() const
    {
        const Limits limits = readLimits(m_path);
        EXPECT_EQ(limits.lists, 2);
        EXPECT_EQ(limits.items, 50);
        EXPECT_EQ(limits.bookmarks, 20);
        EXPECT_EQ(limits.history, 20);
        EXPECT_EQ(limits.mediaFiles, 100);
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(u"setup/settings.cfg"_s);
    const QString m_group = u"MediaLimitationItem"_s;
    const QString m_otherGroup = u"MediaLimitationItemWithoutMMC"_s;
};

} // namespace

TEST_F(LimitsFile, MissingFileGivesTheBuiltInLimits)
{
    expectBuiltIn();
    EXPECT_FALSE(QFileInfo::exists(m_path));
}

TEST_F(LimitsFile, FirstGroupCountsWhenItAllowsMediaFiles)
{
    write(m_group, u"MaxNumOfMediaFile"_s, 7);
    write(m_group, u"MaxNumOfHistory"_s, 3);
    write(m_otherGroup, u"MaxNumOfMediaFileWithoutMMC"_s, 9);
    const Limits limits = readLimits(m_path);
    EXPECT_EQ(limits.mediaFiles, 7);
    EXPECT_EQ(limits.history, 3);
    EXPECT_EQ(limits.lists, 0);
}

TEST_F(LimitsFile, SecondGroupReplacesAFirstThatAllowsNoMediaFile)
{
    write(m_group, u"MaxNumOfList"_s, 7);
    write(m_otherGroup, u"MaxNumOfMediaFileWithoutMMC"_s, 9);
    const Limits limits = readLimits(m_path);
    EXPECT_EQ(limits.mediaFiles, 9);
    EXPECT_EQ(limits.lists, 0);
}

TEST_F(LimitsFile, OutOfRangeCountsAsAbsent)
{
    for (const int number : {65536, -1}) {
        write(m_group, u"MaxNumOfMediaFile"_s, number);
        expectBuiltIn();
    }
    write(m_group, u"MaxNumOfMediaFile"_s, 65535);
    EXPECT_EQ(readLimits(m_path).mediaFiles, 65535);
}

TEST_F(LimitsFile, ProvidedFileAllowsThousandsOfFiles)
{
    ASSERT_TRUE(provideSettingsFile(m_path));
    const Limits limits = readLimits(m_path);
    EXPECT_EQ(limits.mediaFiles, 10000);
    EXPECT_EQ(limits.lists, 100);
    EXPECT_EQ(limits.items, 5000);
    EXPECT_EQ(limits.bookmarks, 200);
    EXPECT_EQ(limits.history, 200);
}

TEST_F(LimitsFile, ExistingFileIsLeftAlone)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(m_path).path()));
    QFile file(m_path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    ASSERT_TRUE(provideSettingsFile(m_path));
    EXPECT_EQ(QFileInfo(m_path).size(), 0);
    expectBuiltIn();
}

TEST_F(LimitsFile, LinkToNowhereIsLeftAlone)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(m_path).path()));
    ASSERT_TRUE(QFile::link(m_directory.filePath(u"nowhere"_s), m_path));
    ASSERT_TRUE(provideSettingsFile(m_path));
    EXPECT_FALSE(QFileInfo::exists(m_directory.filePath(u"nowhere"_s)));
}

TEST_F(LimitsFile, FileThatCannotBeWrittenIsTold)
{
    QFile file(m_directory.filePath(u"setup"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_FALSE(provideSettingsFile(m_path));
}
