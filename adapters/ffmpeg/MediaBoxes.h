// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_MEDIABOXES_H
#define MARVOLA_FFMPEG_MEDIABOXES_H

#include <QtCore/QByteArray>

#include <optional>

struct ClipInfo;

namespace marvola {

class MediaFile;
class TextDecoder;

/// Reads the boxes of MP4 and 3GP files that libavformat does not: the asset texts which phones write into what they
/// record.
///
/// The walk goes down one known path and never recurses; it looks at a bounded number of boxes.
class MediaBoxes
{
public:
    /// \a file has its first box at byte \a start.
    MediaBoxes(MediaFile &file, qint64 start);

    /// Whether the header is compressed; unpacked it may be of any size, so it is not worth a try.
    bool hasCompressedHeader() const;

    /// Fills the texts that \a info still lacks from the asset boxes.
    void addTexts(ClipInfo &info, const TextDecoder &decoder) const;

private:
    struct Box
    {
        QByteArray type;
        qint64 content = 0;
        qint64 end = 0;
    };

    std::optional<Box> boxAt(qint64 offset, qint64 end) const;
    std::optional<Box> find(const char *type, qint64 from, qint64 end) const;

    MediaFile &m_file;
    std::optional<Box> m_header;
};

} // namespace marvola

#endif
