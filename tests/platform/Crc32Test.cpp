// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/Crc32.h"

#include <gtest/gtest.h>

using namespace marvola;

namespace {

/// The definition, one bit a step.
quint32 bitwise(const QByteArray &bytes)
{
    quint32 crc = ~quint32(0);
    for (const char byte : bytes) {
        crc ^= static_cast<quint8>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

} // namespace

TEST(Crc32, PublishedCheckValue)
{
    EXPECT_EQ(crc32("123456789"), 0xCBF43926U);
}

TEST(Crc32, NothingIsZero)
{
    EXPECT_EQ(crc32(QByteArrayView()), 0U);
}

TEST(Crc32, AgreesWithTheDefinitionAtEveryLengthAndAlignment)
{
    QByteArray bytes;
    for (int i = 0; i < 100; ++i)
        bytes.append(static_cast<char>(i * 37 + 200));
    for (qsizetype from = 0; from < 9; ++from) {
        for (qsizetype length = 0; length <= bytes.size() - from; ++length)
            ASSERT_EQ(crc32(QByteArrayView(bytes).sliced(from, length)), bitwise(bytes.mid(from, length)))
                << from << ' ' << length;
    }
}
