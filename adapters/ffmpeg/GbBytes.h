// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_GBBYTES_H
#define MARVOLA_FFMPEG_GBBYTES_H

#include <QtCore/QByteArrayView>

/// What bytes look like when they may be text of the GB family (GB2312, GBK, GB18030).
///
/// All of it rests on how these encodings and Western languages are written, not on dictionaries: the hanzi of everyday
/// Chinese are the 3755 of GB2312's first level, whose pairs have a lead byte B0 to D7; accented letters stand next to
/// plain ones, mostly one at a time, in words that keep to one case.
namespace marvola {

/// Where Windows has an apostrophe and Latin-1 a control character.
inline constexpr char16_t WindowsApostrophe = 0x92;

/// Whether \a bytes, which a GB codec decodes cleanly, are Western words all the same: each byte above 7F is a letter
/// of a Latin-1 word.
bool isLatinInGb(QByteArrayView bytes);

/// Whether \a bytes, which are valid UTF-8, are Chinese all the same: a few everyday hanzi whose bytes happen to form
/// UTF-8 sequences, like the one that is C4 A3.
bool isGbInUtf8(QByteArrayView bytes);

} // namespace marvola

#endif
