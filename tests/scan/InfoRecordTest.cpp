// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/InfoRecord.h"

#include "InfoBytes.h"

#include <gtest/gtest.h>

#include <random>

using namespace Qt::StringLiterals;
using marvola::EncodedRecord;
using marvola::InfoRecord;
using marvola::ParsedSize;
using marvola::parseRecord;

namespace {

const InfoRecord plain{0, u"/a"_s, 1, u"B"_s, u"<Unknown>"_s, u""_s};

QByteArray encoded(const InfoRecord &record)
{
    QByteArray bytes;
    marvola::appendRecord(bytes, record);
    return bytes;
}

QByteArray withPathLength(const char *lengthHex)
{
    return QByteArray::fromHex("0000") + QByteArray::fromHex(lengthHex) + QByteArray(200, '\0');
}

} // namespace

TEST(InfoRecord, BytesAreTheDocumentedOnes)
{
    EXPECT_EQ(encoded({258, u"/ä"_s, 2, u"B"_s, QString(), u""_s}).toHex(' '),
              "01 02 "                   // index
              "00 00 00 04 00 2f 00 e4 " // path
              "02 "                      // type
              "00 00 00 02 00 42 "       // artist
              "ff ff ff ff "             // album: null
              "00 00 00 00");            // genre: empty
}

TEST(InfoRecord, BytesAreThoseOfTheStreamClass)
{
    const InfoRecord records[] = {
        plain,
        {-1, u"/\U0001f3b5/音乐.mp3"_s, -1, QString(QChar(0xd83c)), QString(QChar(0)), u"x"_s.repeated(20)},
        {32767, QString(), 0, QString(), QString(), QString()},
        {-32768, u"p"_s.repeated(4000), 127, u" "_s, u"\n"_s, u"\uffff\ufeff"_s},
    };
    for (const InfoRecord &record : records)
        EXPECT_EQ(encoded(record).toHex(), InfoBytes::encoded(record).toHex());
}

TEST(InfoRecord, ParsesWhatItWrote)
{
    const InfoRecord record{7, u"/\U0001f3b5.mp3"_s, -3, QString(QChar(0xd83c)), QString(), u"g"_s};
    const QByteArray bytes = encoded(record);
    EncodedRecord parsed;
    const ParsedSize size = parseRecord(bytes + "behind", parsed);
    ASSERT_EQ(size.kind, ParsedSize::Kind::Whole);
    EXPECT_EQ(size.bytes, bytes.size());
    EXPECT_EQ(parsed.path.toString(), record.path);
    EXPECT_EQ(parsed.type, -3);
    EXPECT_EQ(parsed.artist.toString(), record.artist);
    EXPECT_EQ(parsed.album.toString(), QString());
    EXPECT_EQ(parsed.genre.toString(), record.genre);
}

TEST(InfoRecord, CutAnywhereIsTruncatedAndAsksForMore)
{
    const QByteArray bytes = encoded(plain);
    for (qsizetype cut = 0; cut < bytes.size(); ++cut) {
        EncodedRecord parsed;
        const ParsedSize size = parseRecord(bytes.first(cut), parsed);
        EXPECT_EQ(size.kind, ParsedSize::Kind::Truncated) << cut;
        EXPECT_GT(size.bytes, cut);
        EXPECT_LE(size.bytes, bytes.size());
        EXPECT_TRUE(parsed.path.units.isEmpty()) << "filled only when whole";
    }
}

TEST(InfoRecord, LengthsThatLieAreSafe)
{
    EncodedRecord parsed;
    EXPECT_EQ(parseRecord(withPathLength("00000003"), parsed).kind, ParsedSize::Kind::Broken);
    EXPECT_EQ(parseRecord(withPathLength("fffffffd"), parsed).kind, ParsedSize::Kind::Broken);
    EXPECT_EQ(parseRecord(withPathLength("80000001"), parsed).kind, ParsedSize::Kind::Broken);
    const ParsedSize huge = parseRecord(withPathLength("fffffffe"), parsed);
    EXPECT_EQ(huge.kind, ParsedSize::Kind::Truncated);
    EXPECT_EQ(huge.bytes, 6 + qint64(0xfffffffe));
    EXPECT_EQ(parseRecord(withPathLength("7ffffffe"), parsed).kind, ParsedSize::Kind::Truncated);
    EXPECT_EQ(parseRecord(withPathLength("ffffffff"), parsed).kind, ParsedSize::Kind::Whole) << "null";
}

TEST(InfoRecord, RandomBytesAreSafe)
{
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int round = 0; round < 20000; ++round) {
        QByteArray bytes(int(random() % 64), Qt::Uninitialized);
        for (char &byte : bytes)
            byte = static_cast<char>(random() % 4 == 0 ? random() : 0);
        EncodedRecord parsed;
        const ParsedSize size = parseRecord(bytes, parsed);
        if (size.kind == ParsedSize::Kind::Whole) {
            ASSERT_LE(size.bytes, bytes.size());
            ASSERT_LE(parsed.path.toString().size() * 2, bytes.size());
        } else if (size.kind == ParsedSize::Kind::Truncated) {
            ASSERT_GT(size.bytes, bytes.size());
        }
    }
}
