// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CliTest.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>

using namespace Qt::StringLiterals;

namespace {

using Introduction = CliTest;

} // namespace

TEST_F(Introduction, NoArgumentsSayHowToBeginAndMakeNoFiles)
{
    const CliResult result = runBare({});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.errors.isEmpty()) << result.errors.constData();
    EXPECT_TRUE(result.output.contains(QFile::encodeName(path(u"home/Music"_s)) + " (not there)"))
        << result.output.constData();
    EXPECT_TRUE(result.output.contains("Nothing is indexed there yet.")) << result.output.constData();
    EXPECT_TRUE(result.output.contains("  marvola refresh  ")) << result.output.constData();
    EXPECT_TRUE(QDir(path(u"home"_s)).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(Introduction, PlacesOfTheEnvironmentAreNamed)
{
    m_environment.insert(u"TROVE_DATA_PATH"_s, path(u"phone"_s));
    m_environment.insert(u"CARD2_MOUNT_PATH"_s, path(u"out"_s));
    const QByteArray output = runBare({}).output;
    EXPECT_TRUE(output.contains("Phone          " + QFile::encodeName(path(u"phone"_s)) + '\n')) << output.constData();
    EXPECT_TRUE(output.contains(QFile::encodeName(path(u"out"_s)) + " (not there)\n")) << output.constData();
}

TEST_F(Introduction, AfterTheFirstStartNothingIsSaidOfAnEmptyIndex)
{
    ASSERT_EQ(run({u"status"_s}).status, 0);
    m_environment.insert(u"JUV_APP_WRITE_PATH"_s, path(u"work"_s));
    EXPECT_FALSE(runBare({}).output.contains("Nothing is indexed"));
}

TEST_F(Introduction, WithoutAHomeTheReasonIsGiven)
{
    m_environment.remove(u"HOME"_s);
    const CliResult result = runBare({});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(result.output.contains("give --work DIR")) << result.output.constData();
    EXPECT_TRUE(result.output.contains("marvola refresh")) << result.output.constData();
}
