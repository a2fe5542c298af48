// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_ID3TEXTS_H
#define MARVOLA_FFMPEG_ID3TEXTS_H

struct ClipInfo;

namespace marvola {

class MediaFile;
class TextDecoder;
struct Id3v2Tag;

/// Fills the texts that \a info still lacks from \a tag.
void addId3v2Texts(ClipInfo &info, const Id3v2Tag &tag, const TextDecoder &decoder);

/// Fills the texts that \a info still lacks from the tags at the end of \a file: an APE tag, then ID3v1.
void addTrailingTexts(ClipInfo &info, MediaFile &file, const TextDecoder &decoder);

} // namespace marvola

#endif
