// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FlacBlocks.h"

#include "FileView.h"
#include "MediaFile.h"
#include "VorbisComments.h"

#include <QtCore/QtEndian>

namespace marvola {

namespace {

constexpr qint64 MarkerSize = 4;
constexpr qint64 BlockHeaderSize = 4;
constexpr int MostBlocks = 2000;

constexpr quint8 LastBlock = 0x80;
constexpr quint8 StreamInfo = 0;
constexpr quint8 Padding = 1;
constexpr quint8 Comments = 4;

} // namespace

void hideFlacBlocks(MediaFile &file, qint64 start, FileView &view, QList<VorbisComments> &comments)
{
    if (file.bytes(start, MarkerSize) != "fLaC")
        return;
    qint64 offset = start + MarkerSize;
    bool hasComments = false;
    for (int count = 0; count < MostBlocks; ++count) {
        const QByteArray header = file.bytes(offset, BlockHeaderSize);
        if (header.size() < BlockHeaderSize)
            return;
        const quint32 fields = qFromBigEndian<quint32>(header.constData());
        const auto flags = static_cast<quint8>(fields >> 24);
        const qint64 size = fields & 0xFFFFFF;
        const qint64 content = offset + BlockHeaderSize;
        const auto type = static_cast<quint8>(flags & ~LastBlock);
        bool isSeen = type == StreamInfo;
        if (type == Comments && !hasComments) {
            const VorbisComments list(
                [&](qint64 at, qint64 wanted) { return file.bytes(content + at, std::min(wanted, size - at)); }, size);
            isSeen = list.isModest();
            if (!isSeen)
                comments.append(list);
            hasComments = true;
        }
        if (!isSeen)
            view.replace(offset, QByteArray(1, static_cast<char>((flags & LastBlock) | Padding)));
        offset = content + size;
        if (flags & LastBlock)
            return;
    }
    view.endAt(offset);
}

} // namespace marvola
