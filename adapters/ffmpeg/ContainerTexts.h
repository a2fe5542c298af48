// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_CONTAINERTEXTS_H
#define MARVOLA_FFMPEG_CONTAINERTEXTS_H

struct AVFormatContext;
struct ClipInfo;

namespace marvola {

class TextDecoder;

/// Fills the texts that \a info still lacks from the metadata that libavformat found.
void addContainerTexts(ClipInfo &info, const AVFormatContext &context, const TextDecoder &decoder);

} // namespace marvola

#endif
