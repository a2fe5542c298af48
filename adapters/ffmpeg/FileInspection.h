// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_FILEINSPECTION_H
#define MARVOLA_FFMPEG_FILEINSPECTION_H

#include <marvola/PlayerEngine.h>

#include <optional>

namespace marvola {

class MediaFile;
class TextDecoder;

/// How much is done to learn about a file.
enum class Depth {
    Headers, ///< what its headers say
    Streams  ///< its streams are looked at as well
};

/// What there is to know about one media file.
struct FileFacts
{
    bool hasAudio = false;
    bool hasVideo = false;
    ClipInfo info;
};

/// Learns about the media in \a file; nothing when it is none that the engine knows or cannot be read.
std::optional<FileFacts> inspectFile(MediaFile &file, Depth depth, const TextDecoder &decoder);

} // namespace marvola

#endif
