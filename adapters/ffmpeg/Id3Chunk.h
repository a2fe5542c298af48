// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_ID3CHUNK_H
#define MARVOLA_FFMPEG_ID3CHUNK_H

#include <QtCore/qglobal.h>

#include <optional>

namespace marvola {

class MediaFile;

/// Where in a WAV or AIFF file, whose outermost chunk is at \a start, the content of its chunk with an ID3v2 tag is;
/// nowhere when it has none.
std::optional<qint64> findId3Chunk(MediaFile &file, qint64 start);

} // namespace marvola

#endif
