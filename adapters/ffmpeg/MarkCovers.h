// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_MARKCOVERS_H
#define MARVOLA_FFMPEG_MARKCOVERS_H

#include "FileView.h"

#include <QtCore/QByteArrayView>

struct AVInputFormat;

namespace marvola {

/// How far on either side of a read markCover() looks.
inline constexpr qint64 MarkReach = 64;

/// Covers the marks of what libavformat must not meet in a file of \a format: what it takes memory for as the file
/// says, not as the file has, what it searches in its whole length again and again, and what is in tags read elsewhere.
/// A mark is covered wherever it stands, for nobody can tell by which way libavformat gets there; in coded sound or
/// pictures, where it means nothing, that does no harm here. \a head is what the file starts with. \return a function
/// to give to a FileView; none when there is nothing to cover.
FileView::Cover markCover(const AVInputFormat *format, QByteArrayView head);

} // namespace marvola

#endif
