// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CRC32_H
#define MARVOLA_PLATFORM_CRC32_H

#include <QtCore/QByteArrayView>
#include <QtCore/QtEndian>

#include <array>

/// The CRC-32 of IEEE 802.3 (reflected polynomial 0xEDB88320), the one that zip archives use: anybody can check a file.
namespace marvola {

using Crc32Tables = std::array<std::array<quint32, 256>, 8>;

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

/// The check of \a bytes. Eight bytes a step, because every read and every commit of a file passes through here.
inline quint32 crc32(QByteArrayView bytes)
{
    const auto &t = CrcTables;
    const char *at = bytes.data();
    qsizetype left = bytes.size();
    quint32 crc = ~quint32(0);
    for (; left >= 8; at += 8, left -= 8) {
        const quint32 low = qFromLittleEndian<quint32>(at) ^ crc;
        const quint32 high = qFromLittleEndian<quint32>(at + 4);
        crc = t[7][low & 0xFFU] ^ t[6][(low >> 8) & 0xFFU] ^ t[5][(low >> 16) & 0xFFU] ^ t[4][low >> 24] ^
              t[3][high & 0xFFU] ^ t[2][(high >> 8) & 0xFFU] ^ t[1][(high >> 16) & 0xFFU] ^ t[0][high >> 24];
    }
    for (; left > 0; ++at, --left)
        crc = (crc >> 8) ^ t[0][(crc ^ static_cast<quint8>(*at)) & 0xFFU];
    return ~crc;
}

} // namespace marvola

#endif
