// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "M3uFile.h"

#include "support/OnMedium.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace marvola;
using namespace Qt::StringLiterals;

namespace {

class M3uFile : public testing::Test
{
protected:
    QTemporaryDir m_dir;
    QString m_problem;

    QString path(const QString &name) const { return m_dir.filePath(name); }
    QByteArray bytesOf(const QString &name) const
    {
        QFile file(path(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
};

} // namespace

TEST_F(M3uFile, WhatIsWrittenIsRead)
{
    EXPECT_TRUE(writeM3uFile(path(u"a"_s), "one\n", Overwrite::No, m_problem));
    EXPECT_EQ(readM3uFile(path(u"a"_s), m_problem), QByteArray("one\n"));
    EXPECT_TRUE(m_problem.isNull());
}

TEST_F(M3uFile, OnlyOnDemandIsAFileReplaced)
{
    ASSERT_TRUE(writeM3uFile(path(u"a"_s), "one", Overwrite::No, m_problem));
    EXPECT_FALSE(writeM3uFile(path(u"a"_s), "two", Overwrite::No, m_problem));
    EXPECT_TRUE(m_problem.contains(u"--replace"_s)) << qPrintable(m_problem);
    EXPECT_EQ(bytesOf(u"a"_s), "one");
    EXPECT_TRUE(writeM3uFile(path(u"a"_s), "two", Overwrite::Yes, m_problem));
    EXPECT_EQ(bytesOf(u"a"_s), "two");
}

TEST_F(M3uFile, OnlyRegularFilesAreReadOrReplaced)
{
    ASSERT_TRUE(QDir().mkdir(path(u"folder"_s)));
    ASSERT_EQ(::mkfifo(QFile::encodeName(path(u"pipe"_s)).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(path(u"pipe"_s), path(u"link"_s)));
    for (const QString &name : {u"folder"_s, u"pipe"_s, u"link"_s}) {
        m_problem.clear();
        EXPECT_FALSE(readM3uFile(path(name), m_problem)) << qPrintable(name);
        EXPECT_TRUE(m_problem.contains(u"is no regular file"_s)) << qPrintable(m_problem);
        m_problem.clear();
        EXPECT_FALSE(writeM3uFile(path(name), "x", Overwrite::Yes, m_problem)) << qPrintable(name);
        EXPECT_TRUE(m_problem.contains(u"is no regular file"_s)) << qPrintable(m_problem);
    }
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(path(u"pipe"_s)).constData(), &status), 0);
    EXPECT_TRUE(S_ISFIFO(status.st_mode)) << "it is still what it was";
}

TEST_F(M3uFile, MissingFilesAndFoldersAreTold)
{
    EXPECT_FALSE(readM3uFile(path(u"none"_s), m_problem));
    EXPECT_TRUE(m_problem.contains(path(u"none"_s))) << qPrintable(m_problem);
    m_problem.clear();
    EXPECT_FALSE(writeM3uFile(path(u"none/a"_s), "x", Overwrite::No, m_problem));
    EXPECT_TRUE(m_problem.contains(path(u"none/a"_s))) << qPrintable(m_problem);
    EXPECT_FALSE(QFile::exists(path(u"none"_s)));
}

TEST_F(M3uFile, FullMediumIsToldAndTheOldFileStays)
{
    ASSERT_TRUE(QDir().mkdir(path(u"card"_s)));
    EXPECT_TRUE(holdsOnMedium(path(u"card"_s), "size=64k", [this] {
        const QString list = path(u"card/a"_s);
        EXPECT_TRUE(writeM3uFile(list, "old", Overwrite::No, m_problem));
        EXPECT_TRUE(fillMedium(path(u"card/filler"_s), 0));
        EXPECT_FALSE(writeM3uFile(list, "new", Overwrite::Yes, m_problem));
        EXPECT_TRUE(m_problem.contains(list)) << qPrintable(m_problem);
        EXPECT_FALSE(writeM3uFile(path(u"card/b"_s), "new", Overwrite::No, m_problem));
        EXPECT_EQ(bytesOf(u"card/a"_s), "old");
        EXPECT_EQ(QDir(path(u"card"_s)).entryList(QDir::Files), (QStringList{u"a"_s, u"filler"_s}));
        return true;
    }));
}

TEST_F(M3uFile, OneByteTooManyIsRefused)
{
    QFile file(path(u"big"_s));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_TRUE(file.resize(MaxM3uBytes));
    EXPECT_EQ(readM3uFile(path(u"big"_s), m_problem).value_or(QByteArray()).size(), MaxM3uBytes);
    ASSERT_TRUE(file.resize(MaxM3uBytes + 1));
    EXPECT_FALSE(readM3uFile(path(u"big"_s), m_problem));
    EXPECT_TRUE(m_problem.contains(u"16777216"_s)) << qPrintable(m_problem);
}
