// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_SIGNATURE_H
#define MARVOLA_FFMPEG_SIGNATURE_H

#include <QtCore/QByteArrayView>
#include <QtCore/QList>

struct AVInputFormat;

/// Tells from a file's bytes which of libavformat's demuxers reads it. Only containers that stand for themselves are
/// ever named: nothing that refers to other files or addresses.
namespace marvola {

/// How many bytes signatureFormat() wants to see, at most.
inline constexpr qint64 SignatureSize = 4096;
/// How many bytes guessFormat() wants to see, at most.
inline constexpr qint64 GuessSize = 65536;

/// The demuxer that the first bytes name beyond doubt; null when they name none.
/// \a head is what the file starts with, \a fileSize how long all of it is.
const AVInputFormat *signatureFormat(QByteArrayView head, qint64 fileSize);

/// The demuxer that likes \a head best, for files without a signature at the start; null when it is none of ours.
const AVInputFormat *guessFormat(QByteArrayView head);

/// Whether \a format is \a name or has it among its names ("mov" is one of "mov,mp4,m4a").
bool isFormat(const AVInputFormat *format, const char *name);

/// The length of the MPEG audio frame that starts with the four bytes of \a header; 0 when they are no such header or
/// do not tell the length.
int mpegAudioFrameSize(QByteArrayView header);

} // namespace marvola

#endif
