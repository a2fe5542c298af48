// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextSeal.h"

#include "platform/Crc32.h"

#include <gtest/gtest.h>

using namespace marvola;

namespace {

const QByteArray content = "[g]\nk=v\n";

TextSeal sealOf(const QByteArray &text)
{
    return {static_cast<quint32>(text.size()), crc32(text), 0xABCDEF01U};
}

} // namespace

TEST(TextSeal, IsACommentLineOfFixedWidth)
{
    const TextSeal seal{8, 0x0000BEEFU, 0xFFFFFFFFU};
    EXPECT_EQ(seal.toLine(), "#marvola=1 0000000008 0000beef ffffffff\n");
    EXPECT_EQ(TextSeal({0xFFFFFFFFU, 0, 0}).toLine().size(), TextSeal::Size);
}

TEST(TextSeal, ComesBackFromAFile)
{
    const auto seal = TextSeal::fromFile(sealOf(content).toLine() + content);
    ASSERT_TRUE(seal.has_value());
    EXPECT_EQ(seal->length, 8U);
    EXPECT_EQ(seal->check, crc32(content));
    EXPECT_EQ(seal->replaced, 0xABCDEF01U);
    EXPECT_TRUE(seal->holdsFor(sealOf(content).toLine() + content));
    EXPECT_TRUE(seal->holdsFor(sealOf(content).toLine() + content + "padding"));
}

TEST(TextSeal, AnyOtherBitMakesItNoSealOrOneThatDoesNotHold)
{
    const QByteArray file = sealOf(content).toLine() + content;
    // The last field tells of another file and is no part of the check.
    const qsizetype replacedAt = TextSeal::Size - 1 - HexFieldSize;
    for (qsizetype bit = 0; bit < file.size() * 8; ++bit) {
        QByteArray flipped = file;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << (bit % 8)));
        const auto seal = TextSeal::fromFile(flipped);
        const bool isInReplaced = bit / 8 >= replacedAt && bit / 8 < TextSeal::Size - 1;
        ASSERT_FALSE(!isInReplaced && seal && seal->holdsFor(flipped)) << bit;
    }
}

TEST(TextSeal, AFileCutAnywhereHasNone)
{
    const QByteArray file = sealOf(content).toLine() + content;
    for (qsizetype size = 0; size < file.size(); ++size) {
        const auto seal = TextSeal::fromFile(file.first(size));
        ASSERT_FALSE(seal && seal->holdsFor(file.first(size))) << size;
    }
}

TEST(TextSeal, NumbersThatAreNoneAreRefused)
{
    EXPECT_EQ(fromDecimalField("0000000042"), 42U);
    EXPECT_EQ(fromDecimalField("4294967295"), 0xFFFFFFFFU);
    EXPECT_EQ(fromDecimalField("4294967296"), std::nullopt);
    EXPECT_EQ(fromDecimalField("9999999999"), std::nullopt);
    for (const char *text :
         {"", "42", "-000000042", "+000000042", " 000000042", "000000042 ", "000000004a", "00000000042"})
        EXPECT_EQ(fromDecimalField(text), std::nullopt) << text;
    EXPECT_EQ(fromHexField("00c0ffee"), 0x00C0FFEEU);
    for (const char *text : {"", "c0ffee", "00C0FFEE", "0x00ffee", "-0c0ffee", "00c0ffeg", "000c0ffee"})
        EXPECT_EQ(fromHexField(text), std::nullopt) << text;
}
