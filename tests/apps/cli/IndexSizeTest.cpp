// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "IndexSize.h"

#include <QtCore/QDataStream>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::IndexSize;
using marvola::measureIndex;

namespace {

/// A record of "/ab", type 1, a null artist, an empty album and the genre "g".
QByteArray record()
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << qint16(0) << u"/ab"_s << qint8(1) << QString() << QString(u""_s) << u"g"_s;
    return bytes;
}

QByteArray index(quint16 count, const QByteArray &records)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << count;
    return bytes + records;
}

class MeasureIndex : public testing::Test
{
protected:
    IndexSize measure(const QByteArray &content) const
    {
        QFile file(m_directory.filePath(u".marvola.info"_s));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.close();
        return measureIndex(m_directory.path());
    }

    QTemporaryDir m_directory;
};

} // namespace

TEST_F(MeasureIndex, MissingDirectoryAndFileAreEmpty)
{
    EXPECT_EQ(measureIndex(QString()).bytesReserved, 0);
    EXPECT_EQ(measureIndex(m_directory.path()).bytesReserved, 0);
}

TEST_F(MeasureIndex, RecordsUpToTheCountAreMeasured)
{
    const IndexSize size = measure(index(2, record() + record() + record() + QByteArray(1000, '\0')));
    EXPECT_EQ(size.records, 2);
    EXPECT_EQ(size.bytesUsed, 2 + 2 * record().size());
    EXPECT_EQ(size.bytesReserved, 2 + 3 * record().size() + 1000);
    EXPECT_FALSE(size.isFull());
}

TEST_F(MeasureIndex, SlashBehindTheDirectoryMakesNoDifference)
{
    measure(index(1, record()));
    EXPECT_EQ(measureIndex(m_directory.path() + u'/').records, 1);
}

TEST_F(MeasureIndex, FreshReservationHoldsNothing)
{
    const IndexSize size = measure(QByteArray(150000, '\0'));
    EXPECT_EQ(size.records, 0);
    EXPECT_EQ(size.bytesUsed, 2);
}

TEST_F(MeasureIndex, FileCutAnywhereCountsItsWholeRecords)
{
    const QByteArray whole = index(3, record() + record() + record());
    for (qsizetype length = 0; length < whole.size(); ++length) {
        const IndexSize size = measure(whole.left(length));
        EXPECT_EQ(size.records, length < 2 ? 0 : (length - 2) / record().size()) << length;
        EXPECT_LE(size.bytesUsed, length);
    }
}

TEST_F(MeasureIndex, LengthPastTheEndEndsTheCount)
{
    QByteArray lying = record();
    lying.replace(2, 4, QByteArray::fromHex("fffffffe"));
    EXPECT_EQ(measure(index(2, record() + lying)).records, 1);
}

TEST_F(MeasureIndex, FullBehindTheLastRecordStart)
{
    IndexSize size;
    size.bytesUsed = 148499;
    EXPECT_FALSE(size.isFull());
    size.bytesUsed = 148500;
    EXPECT_TRUE(size.isFull());
}

TEST_F(MeasureIndex, DirectoryInPlaceOfTheFileIsEmpty)
{
    ASSERT_TRUE(QDir(m_directory.path()).mkdir(u".marvola.info"_s));
    EXPECT_EQ(measureIndex(m_directory.path()).records, 0);
}
