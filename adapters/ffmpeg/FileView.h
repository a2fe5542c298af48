// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_FILEVIEW_H
#define MARVOLA_FFMPEG_FILEVIEW_H

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QMap>

#include <functional>

namespace marvola {

class MediaFile;

/// What a demuxer is to see of a file: the part from a start to an end, without the pieces that are left out, and with
/// other bytes in the places where the file's own would cost memory or time out of proportion.
///
/// Every place that is set is an offset in the file; positions, in read() and size() alone, count what is seen. The
/// pieces left out and blanked are set before the first read, replacements may also come while it reads.
class FileView
{
public:
    /// Changes bytes just before they are seen. \a window has bytes of the file from \a offset on, some more at both
    /// ends than are asked for, so that a mark across the end of a read is whole once.
    using Cover = std::function<void(qint64 offset, QByteArray &window)>;

    /// Sees \a file from byte \a start to its end; the file must outlive the view.
    FileView(MediaFile &file, qint64 start);

    /// Lets the file end at byte \a end.
    void endAt(qint64 end);
    /// Shows \a bytes in place of those at byte \a at.
    void replace(qint64 at, const QByteArray &bytes);
    /// Shows zeros from byte \a from to byte \a end, which are then not read.
    void blank(qint64 from, qint64 end);
    /// Moves what follows byte \a end to byte \a from. Pieces come in ascending order and do not touch.
    void leaveOut(qint64 from, qint64 end);
    /// Has \a cover see all bytes first, \a reach more on either side.
    void setCover(Cover cover, qint64 reach);

    /// How many bytes there are to see.
    qint64 size() const;
    /// Reads up to \a count bytes at \a position into \a buffer.
    /// \return how many were read, 0 at the end, -1 on an error and when the file's budget is used up.
    qint64 read(qint64 position, char *buffer, qint64 count);
    /// Whether the file's budget is used up.
    bool isExhausted() const;

private:
    struct Piece
    {
        qint64 from;
        qint64 end;
    };

    qint64 readFile(qint64 offset, char *buffer, qint64 count);
    void applyReplacements(qint64 offset, char *buffer, qint64 count) const;

    MediaFile &m_file;
    qint64 m_start;
    qint64 m_end;
    QList<Piece> m_leftOut;
    QList<Piece> m_blanks;
    QMap<qint64, QByteArray> m_replacements;
    qint64 m_longestReplacement = 0;
    Cover m_cover;
    qint64 m_reach = 0;
};

} // namespace marvola

#endif
