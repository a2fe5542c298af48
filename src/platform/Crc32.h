// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CRC32_H
#define MARVOLA_PLATFORM_CRC32_H

#include <QtCore/QByteArrayView>
#include <QtCore/QtEndian>

#include <array>

/// The CRC-32 of IEEE 802.3 (reflected polynomial 0xEDB88320), the one that zip archives use: anybody can check a file.
namespace marvola {

using Crc32Tables = std::array<std::array<quint32, 256>, 16>;

constexpr Crc32Tables makeCrc32Tables()
{
    Crc32Tables tables{};
    for (quint32 byte = 0; byte < 256; ++byte) {
        quint32 remainder = byte;
        for (int bit = 0; bit < 8; ++bit)
            remainder = (remainder >> 1) ^ ((remainder & 1U) != 0 ? 0xEDB88320U : 0U);
        tables[0][byte] = remainder;
    }
    for (std::size_t table = 1; table < tables.size(); ++table) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const quint32 before = tables[table - 1][byte];
            tables[table][byte] = (before >> 8) ^ tables[0][before & 0xFFU];
        }
    }
    return tables;
}

inline constexpr Crc32Tables CrcTables = makeCrc32Tables();

/// What four bytes become that are followed by \a Behind more of the same step.
template<std::size_t Behind>
constexpr quint32 crcOfWord(quint32 word)
{
    return CrcTables[Behind + 3][word & 0xFFU] ^ CrcTables[Behind + 2][(word >> 8) & 0xFFU] ^
           CrcTables[Behind + 1][(word >> 16) & 0xFFU] ^ CrcTables[Behind][word >> 24];
}

/// The check of \a bytes. Sixteen bytes a step, because every read and every commit of a file passes through here.
inline quint32 crc32(QByteArrayView bytes)
{
    const char *at = bytes.data();
    qsizetype left = bytes.size();
    quint32 crc = ~quint32(0);
    for (; left >= 16; at += 16, left -= 16) {
        crc = crcOfWord<12>(qFromLittleEndian<quint32>(at) ^ crc) ^ crcOfWord<8>(qFromLittleEndian<quint32>(at + 4)) ^
              crcOfWord<4>(qFromLittleEndian<quint32>(at + 8)) ^ crcOfWord<0>(qFromLittleEndian<quint32>(at + 12));
    }
    for (; left > 0; ++at, --left)
        crc = (crc >> 8) ^ CrcTables[0][(crc ^ static_cast<quint8>(*at)) & 0xFFU];
    return ~crc;
}

} // namespace marvola

#endif
