// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/ByteFields.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using marvola::ByteReader;
using marvola::ByteWriter;

namespace {

QByteArray someFields()
{
    ByteWriter writer;
    writer.number(quint8(7));
    writer.number(qint64(-2));
    writer.bytes("a");
    writer.text(u"日"_s);
    return writer.take();
}

} // namespace

TEST(ByteFields, NumbersAndTextsAreBigEndianBehindTheirLength)
{
    EXPECT_EQ(someFields().toHex(), QByteArray("07"
                                               "fffffffffffffffe"
                                               "00000001"
                                               "61"
                                               "00000002"
                                               "65e5"));
}

TEST(ByteFields, TextsComeBackWhateverTheirUnits)
{
    QString anything(u"\xd83c x"_s);
    anything += QChar(u'\0');
    anything += QChar(0xdc00);
    ByteWriter writer;
    for (const QString &text : {anything, u""_s, QString(), u"\U0001f3b5"_s})
        writer.text(text);
    const QByteArray bytes = writer.take();
    ByteReader reader(bytes);
    EXPECT_EQ(reader.text(), anything);
    const QString empty = reader.text();
    EXPECT_TRUE(empty.isEmpty() && !empty.isNull());
    EXPECT_TRUE(reader.text().isNull());
    EXPECT_EQ(reader.text(), u"\U0001f3b5"_s);
    EXPECT_TRUE(reader.isDone());
}

TEST(ByteFields, EveryCutIsNoticed)
{
    const QByteArray bytes = someFields();
    for (qsizetype size = 0; size <= bytes.size(); ++size) {
        ByteReader reader(QByteArrayView(bytes).first(size));
        reader.number<quint8>();
        reader.number<qint64>();
        reader.bytes();
        reader.text();
        EXPECT_EQ(reader.isDone(), size == bytes.size()) << size;
    }
}

TEST(ByteFields, AfterTheFirstThatDoesNotFitAllAreBlank)
{
    const QByteArray bytes = QByteArray::fromHex("00000005ffff07");
    ByteReader reader(bytes);
    EXPECT_TRUE(reader.bytes().isEmpty());
    EXPECT_FALSE(reader.isGood());
    EXPECT_EQ(reader.number<quint8>(), 0);
    EXPECT_TRUE(reader.text().isEmpty());
}

TEST(ByteFields, ATextOfHalfAUnitIsNone)
{
    const QByteArray bytes = QByteArray::fromHex("00000003414243");
    ByteReader reader(bytes);
    EXPECT_TRUE(reader.text().isEmpty());
    EXPECT_FALSE(reader.isGood());
}
