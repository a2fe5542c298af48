// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_VORBISCOMMENTS_H
#define MARVOLA_FFMPEG_VORBISCOMMENTS_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <functional>

struct ClipInfo;

namespace marvola {

class TextDecoder;

/// The texts of a list of Vorbis comments (those of FLAC and Ogg files), read without reading what lies between them.
///
/// libavformat compares each comment with all before it, and copies values of one name again for each that is added; a
/// list of megabytes keeps it busy for hours without a read that could end it. Such a list is read here instead.
class VorbisComments
{
public:
    /// Gives the bytes at a place of the list, fewer where it ends.
    using Source = std::function<QByteArray(qint64 offset, qint64 count)>;

    /// Reads the list of \a size bytes in \a source: at most as many comments as libavformat may see.
    VorbisComments(const Source &source, qint64 size);

    /// Whether libavformat may read the list by itself.
    bool isModest() const { return m_isModest; }
    /// How many comments the list has, or more than libavformat may see.
    int count() const { return m_count; }
    /// Where in the list its number of comments stands, four bytes; -1 when the list ends before.
    qint64 countOffset() const { return m_countOffset; }

    /// Fills the texts that \a info still lacks.
    void addTexts(ClipInfo &info, const TextDecoder &decoder) const;

    /// More comments than this are not seen by libavformat.
    static constexpr int MostComments = 1000;
    /// Nor are lists of more bytes.
    static constexpr qint64 MostSize = qint64(256) * 1024;

private:
    struct Comment
    {
        QByteArray name;
        QByteArray value;
    };

    void read(const Source &source, qint64 from, qint64 size);

    QList<Comment> m_comments;
    qint64 m_countOffset = -1;
    int m_count = 0;
    bool m_isModest;
};

} // namespace marvola

#endif
