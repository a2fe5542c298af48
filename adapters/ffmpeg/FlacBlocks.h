// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_FLACBLOCKS_H
#define MARVOLA_FFMPEG_FLACBLOCKS_H

#include <QtCore/QList>

namespace marvola {

class FileView;
class MediaFile;
class VorbisComments;

/// Hides those blocks before the sound of a FLAC file, which starts at byte \a start of \a file, that libavformat need
/// not read: pictures, chapters, what serves seeking, and comments in such a number or length that they are read here,
/// into \a comments.
void hideFlacBlocks(MediaFile &file, qint64 start, FileView &view, QList<VorbisComments> &comments);

} // namespace marvola

#endif
