// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <marvola/ConfigFile.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

using namespace Qt::StringLiterals;

namespace {

class HistoryCommand : public CliTest
{
protected:
    CliResult add(const QString &url) const { return run({u"history"_s, u"add"_s, url}); }
    QStringList kept() const { return run({u"history"_s, u"list"_s, u"--json"_s}).texts(); }
};

} // namespace

TEST_F(HistoryCommand, LatestComesFirstAndEachOnce)
{
    for (const QString &url : {u"L1"_s, u"L2"_s, u"L3"_s})
        ASSERT_EQ(add(url).status, 0);
    EXPECT_EQ(kept(), (QStringList{u"L3"_s, u"L2"_s, u"L1"_s}));
    EXPECT_EQ(add(u"L2"_s).status, 0);
    EXPECT_EQ(kept(), (QStringList{u"L2"_s, u"L3"_s, u"L1"_s}));
    EXPECT_EQ(run({u"history"_s, u"list"_s}).output, "1  L2\n2  L3\n3  L1\n");
}

TEST_F(HistoryCommand, AddTellsProgramsTheHistoryAndPeopleNothing)
{
    EXPECT_TRUE(add(u"L1"_s).output.isEmpty());
    EXPECT_EQ(run({u"history"_s, u"add"_s, u"L2"_s, u"--json"_s}).texts(), (QStringList{u"L2"_s, u"L1"_s}));
}

TEST_F(HistoryCommand, NewLinkAtTheLimitCostsTheOldest)
{
    for (const QString &url : {u"L1"_s, u"L2"_s})
        ASSERT_EQ(add(url).status, 0);
    ConfigFile file(settingsFile(), false);
    ASSERT_TRUE(file.writeEntry(u"MediaLimitationItem"_s, u"MaxNumOfHistory"_s, 2));
    ASSERT_TRUE(file.flush());
    EXPECT_EQ(add(u"L3"_s).status, 0);
    EXPECT_EQ(kept(), (QStringList{u"L3"_s, u"L2"_s}));
}

TEST_F(HistoryCommand, EmptyLinkIsAUsageErrorAndChangesNothing)
{
    ASSERT_EQ(add(u"L1"_s).status, 0);
    const CliResult result = add(u""_s);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_EQ(kept(), QStringList{u"L1"_s});
}

TEST_F(HistoryCommand, KeepsBookmarksAndIsKeptByThem)
{
    ASSERT_EQ(add(u"L1"_s).status, 0);
    ASSERT_EQ(run({u"bookmark"_s, u"add"_s, u"A"_s, u"rtsp://a"_s}).status, 0);
    ASSERT_EQ(add(u"L2"_s).status, 0);
    EXPECT_EQ(kept(), (QStringList{u"L2"_s, u"L1"_s}));
    EXPECT_EQ(run({u"bookmark"_s, u"list"_s}).output, "  A  rtsp://a\n");
}

TEST_F(HistoryCommand, FileThatCannotBeWrittenIsTold)
{
    ASSERT_TRUE(QDir().mkpath(path(u"work/.marvola.list"_s)));
    const CliResult result = add(u"L1"_s);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors.count('\n'), 1) << result.errors.constData();
    EXPECT_TRUE(result.errors.contains(QFile::encodeName(path(u"work/.marvola.list"_s)))) << result.errors.constData();
}
