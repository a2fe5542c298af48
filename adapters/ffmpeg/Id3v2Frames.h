// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_ID3V2FRAMES_H
#define MARVOLA_FFMPEG_ID3V2FRAMES_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <optional>

namespace marvola {

class MediaFile;

/// One frame of an ID3v2 tag: its name as versions 2.3 and 2.4 write it, and its content freed of everything that the
/// tag's version and flags put around it.
struct Id3v2Frame
{
    QByteArray id;
    QByteArray content;
};

/// What was read of an ID3v2 tag.
struct Id3v2Tag
{
    /// The frames that a clip's texts are made of, in the tag's order. Cover art of megabytes is passed over without
    /// being read; compressed and encrypted frames and texts of absurd length are left out.
    QList<Id3v2Frame> frames;
    /// Where in the file the tag ends. A tag that claims to go past the end of the file ends where its frames do.
    qint64 end = 0;
};

/// The tag at \a offset of \a file; none when there is no tag.
std::optional<Id3v2Tag> readId3v2(MediaFile &file, qint64 offset);

} // namespace marvola

#endif
