// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FFMPEG_OGGBYTES_H
#define MARVOLA_TESTS_FFMPEG_OGGBYTES_H

#include "MediaBytes.h"

/// The sum that a page carries, one bit after another as the format's description has it.
inline quint32 oggSum(const QByteArray &page)
{
    quint32 sum = 0;
    for (const char each : page) {
        sum ^= static_cast<quint32>(static_cast<quint8>(each)) << 24;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum << 1) ^ (sum & 0x80000000U ? 0x04C11DB7U : 0U);
    }
    return sum;
}

/// A page of stream \a serial with these segments, which \a content is as long as.
inline QByteArray oggPage(quint32 serial, const QByteArray &segments, const QByteArray &content, int flags = 0)
{
    QByteArray page = QByteArray("OggS\0", 5) + static_cast<char>(flags) + QByteArray(8, '\0') + littleEndian(serial) +
                      QByteArray(8, '\0') + static_cast<char>(segments.size()) + segments + content;
    return page.replace(22, 4, littleEndian(oggSum(page)));
}

/// The pages of one packet, each with at most so many segments.
inline QByteArrayList oggPages(quint32 serial, const QByteArray &packet, int flags = 0, qsizetype mostSegments = 255)
{
    const QByteArray sizes = QByteArray(packet.size() / 255, '\xFF') + static_cast<char>(packet.size() % 255);
    QByteArrayList pages;
    qsizetype at = 0;
    for (qsizetype first = 0; first < sizes.size(); first += mostSegments) {
        const QByteArray segments = sizes.mid(first, mostSegments);
        const bool isLast = first + mostSegments >= sizes.size();
        const qsizetype size = isLast ? packet.size() - at : segments.size() * 255;
        pages.append(oggPage(serial, segments, packet.mid(at, size), flags | (first > 0 ? 1 : 0)));
        at += size;
    }
    return pages;
}

inline QByteArray oggPacket(quint32 serial, const QByteArray &packet, int flags = 0)
{
    return oggPages(serial, packet, flags).join();
}

/// The first packet of an Opus stream.
inline QByteArray opusHead()
{
    return QByteArray("OpusHead\1\2\0\0", 12) + littleEndian(48000) + QByteArray(3, '\0');
}

#endif
