// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FFMPEG_COMMENTBYTES_H
#define MARVOLA_TESTS_FFMPEG_COMMENTBYTES_H

#include "MediaBytes.h"

#include <QtCore/QByteArrayList>

/// A list of Vorbis comments that a program called "program" wrote.
inline QByteArray commentList(const QByteArrayList &comments)
{
    QByteArray bytes = littleEndian(7) + "program" + littleEndian(static_cast<quint32>(comments.size()));
    for (const QByteArray &comment : comments)
        bytes += littleEndian(static_cast<quint32>(comment.size())) + comment;
    return bytes;
}

#endif
