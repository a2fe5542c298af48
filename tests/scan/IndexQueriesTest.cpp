// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/IndexQueries.h"

#include "InfoBytes.h"
#include "support/Folders.h"

#include <marvola/ConfigFile.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::InfoRecord;
using marvola::readInfoFile;
using marvola::readListGroup;

namespace {

class IndexQueries : public testing::Test
{
protected:
    IndexQueries()
    {
        const QList<InfoRecord> records{
            {0, u"/unknown"_s, 0, u"A"_s, u"L"_s, u"G"_s},   {1, u"/audio1"_s, 1, u"A"_s, u"L"_s, u"<Unknown>"_s},
            {2, u"/video"_s, 2, u"A"_s, u"L"_s, u"G"_s},     {3, u"/audio2"_s, 1, u"a"_s, u"L2"_s, u"G"_s},
            {4, u"/audio3"_s, 1, u"AB"_s, u"L"_s, u""_s},    {5, u"/odd"_s, 3, u"A"_s, u"L"_s, u"G"_s},
            {6, u"/audio4"_s, 1, u"A"_s, QString(), u"G"_s},
        };
        InfoBytes::write(infoFile, InfoBytes::encoded(records, static_cast<quint16>(records.size())));
    }

    QStringList query(const QString &kind, const QString &value = {}) const
    {
        return readInfoFile(infoFile, kind, value);
    }

    Folders folders;
    const QString infoFile = folders.path(u"info"_s);
    const QString listFile = folders.path(u"list"_s);
};

} // namespace

TEST_F(IndexQueries, MediaIsEverythingInFileOrder)
{
    EXPECT_EQ(query(u"media"_s), QStringList({u"/unknown"_s, u"/audio1"_s, u"/video"_s, u"/audio2"_s, u"/audio3"_s,
                                              u"/odd"_s, u"/audio4"_s}));
    EXPECT_EQ(query(u"media"_s, u"ignored"_s).size(), 7);
}

TEST_F(IndexQueries, AudioAndVideoAreTypesOneAndTwo)
{
    EXPECT_EQ(query(u"audio"_s), QStringList({u"/audio1"_s, u"/audio2"_s, u"/audio3"_s, u"/audio4"_s}));
    EXPECT_EQ(query(u"video"_s), QStringList({u"/video"_s}));
}

TEST_F(IndexQueries, ArtistIsExactAndNeverAVideo)
{
    EXPECT_EQ(query(u"artist"_s, u"A"_s), QStringList({u"/audio1"_s, u"/audio4"_s}));
    EXPECT_EQ(query(u"artist"_s, u"a"_s), QStringList({u"/audio2"_s}));
    EXPECT_EQ(query(u"artist"_s, u"AB"_s), QStringList({u"/audio3"_s}));
    EXPECT_EQ(query(u"artist"_s, u"B"_s), QStringList());
}

TEST_F(IndexQueries, AlbumAndGenre)
{
    EXPECT_EQ(query(u"album"_s, u"L"_s), QStringList({u"/audio1"_s, u"/audio3"_s}));
    EXPECT_EQ(query(u"genre"_s, u"G"_s), QStringList({u"/audio2"_s, u"/audio4"_s}));
}

TEST_F(IndexQueries, UnknownTextIsAValueLikeAnyOther)
{
    EXPECT_EQ(query(u"genre"_s, u"<Unknown>"_s), QStringList({u"/audio1"_s}));
}

TEST_F(IndexQueries, EmptyValueEqualsEmptyAndNullTexts)
{
    for (const QString &empty : {QString(), u""_s}) {
        EXPECT_EQ(query(u"genre"_s, empty), QStringList({u"/audio3"_s}));
        EXPECT_EQ(query(u"album"_s, empty), QStringList({u"/audio4"_s}));
    }
}

TEST_F(IndexQueries, OtherKindsHaveNoFiles)
{
    for (const QString &kind : {QString(), u"Media"_s, u"artists"_s, u"artist "_s, u"composer"_s})
        EXPECT_EQ(query(kind, u"A"_s), QStringList()) << qPrintable(kind);
}

TEST_F(IndexQueries, MissingInfoFileHasNoFiles)
{
    EXPECT_EQ(readInfoFile(folders.path(u"missing"_s), u"media"_s, {}), QStringList());
    EXPECT_EQ(readInfoFile(QString(), u"media"_s, {}), QStringList());
    EXPECT_FALSE(QFile::exists(folders.path(u"missing"_s)));
}

TEST_F(IndexQueries, ListGroupSkipsMissingKeysAndKeepsEmptyOnes)
{
    ConfigFile file(listFile, false);
    file.writeEntry(u"artistlist"_s, u"counter"_s, 4);
    file.writeEntry(u"artistlist"_s, u"1"_s, u"one"_s);
    file.writeEntry(u"artistlist"_s, u"3"_s, u""_s);
    file.writeEntry(u"artistlist"_s, u"4"_s, u"four"_s);
    file.writeEntry(u"artistlist"_s, u"5"_s, u"beyond"_s);
    ASSERT_TRUE(file.flush());
    EXPECT_EQ(readListGroup(listFile, u"artistlist"_s), QStringList({u"one"_s, u""_s, u"four"_s}));
}

TEST_F(IndexQueries, CatalogueNamesComeWithoutTheirThreeCharacters)
{
    ConfigFile file(listFile, false);
    for (const QString &group : {u"allplaylist"_s, u"genrelist"_s}) {
        file.writeEntry(group, u"counter"_s, 4);
        file.writeEntry(group, u"1"_s, u"P01My list"_s);
        file.writeEntry(group, u"2"_s, u"xyz"_s);
        file.writeEntry(group, u"3"_s, u"xy"_s);
        file.writeEntry(group, u"4"_s, u"音音音a"_s);
    }
    ASSERT_TRUE(file.flush());
    EXPECT_EQ(readListGroup(listFile, u"allplaylist"_s), QStringList({u"My list"_s, u""_s, u""_s, u"a"_s}));
    EXPECT_EQ(readListGroup(listFile, u"genrelist"_s).constFirst(), u"P01My list"_s);
}

TEST_F(IndexQueries, MissingGroupOrListFileIsEmpty)
{
    EXPECT_EQ(readListGroup(listFile, u"artistlist"_s), QStringList());
    EXPECT_EQ(readListGroup(QString(), u"artistlist"_s), QStringList());
    EXPECT_EQ(readListGroup(listFile, QString()), QStringList());
    EXPECT_FALSE(QFile::exists(listFile));
}

TEST_F(IndexQueries, LongListsAreReadWhole)
{
    ConfigFile file(listFile, false);
    file.writeEntry(u"artistlist"_s, u"counter"_s, 65535);
    for (int i = 1; i <= 65535; ++i)
        file.writeEntry(u"artistlist"_s, QString::number(i), QString::number(i));
    ASSERT_TRUE(file.flush());
    const QStringList entries = readListGroup(listFile, u"artistlist"_s);
    ASSERT_EQ(entries.size(), 65535);
    EXPECT_EQ(entries.constLast(), u"65535"_s);
}
