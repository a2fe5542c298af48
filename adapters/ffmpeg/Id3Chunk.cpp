// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Id3Chunk.h"

#include "MediaFile.h"

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

namespace marvola {

std::optional<qint64> findId3Chunk(MediaFile &file, qint64 start)
{
    constexpr qint64 ChunkHeaderSize = 8;
    constexpr qint64 OuterHeaderSize = 12;
    constexpr int MostChunks = 1000;
    const bool isBigEndian = file.bytes(start, 4) == "FORM";
    qint64 position = start + OuterHeaderSize;
    for (int count = 0; count < MostChunks; ++count) {
        const QByteArray header = file.bytes(position, ChunkHeaderSize);
        if (header.size() < ChunkHeaderSize)
            break;
        position += ChunkHeaderSize;
        if (header.left(4).toLower() == "id3 ")
            return position;
        const char *size = header.constData() + 4;
        const qint64 bytes = isBigEndian ? qFromBigEndian<quint32>(size) : qFromLittleEndian<quint32>(size);
        // A chunk of odd length is followed by a byte that it does not count.
        position += bytes + bytes % 2;
    }
    return std::nullopt;
}

} // namespace marvola
