// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_OGGPAGES_H
#define MARVOLA_FFMPEG_OGGPAGES_H

#include "VorbisComments.h"

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QList>

#include <optional>

namespace marvola {

class FileView;
class MediaFile;

/// Walks over the pages at the start of an Ogg file and shows libavformat no more of it than headers of a sensible
/// size, a little of what follows them, and the last page, which tells the length.
///
/// libavformat puts the packets of a stream together whatever their size, and looks for comments in all of them. Here
/// the pages in the middle of a packet that is too long (one with a picture among its comments) are left out, and a
/// list of comments that is too long is made one of no comments, and read here.
class OggPages
{
public:
    /// Walks over \a file from byte \a start and sets up \a view.
    OggPages(MediaFile &file, qint64 start, FileView &view);

    /// The lists of comments that libavformat does not get to see.
    const QList<VorbisComments> &comments() const { return m_comments; }

private:
    struct Range
    {
        qint64 from;
        qint64 end;
    };

    struct Page
    {
        qint64 start = 0;
        qint64 end = 0;
        quint32 serial = 0;
        bool isContinued = false;
        QByteArray segments;
    };

    /// What is known of one stream and the packet of it that is being put together.
    struct Stream
    {
        QByteArray kind;      ///< how its first packet starts
        int packets = 0;      ///< how many are complete
        qint64 size = 0;      ///< of the packet so far
        QList<Range> pieces;  ///< of the packet, neighbours joined
        QList<Range> middle;  ///< pages that have nothing but a part of the packet, neighbours joined
        qint64 firstPage = 0; ///< where the packet starts
    };

    std::optional<Page> pageAt(qint64 offset);
    bool hasRightSum(const Page &page);
    quint32 sumOf(QByteArray page) const;
    bool walkPage(const Page &page);
    void addPiece(Stream &stream, const Page &page, Range piece);
    bool finishPacket(Stream &stream);
    bool checkComments(const Stream &stream, const QByteArray &head);
    bool removeComments(const Stream &stream, qint64 countAt);
    void leaveOutMiddle(const Stream &stream);
    void showRest(qint64 from);

    MediaFile &m_file;
    FileView &m_view;
    QHash<quint32, Stream> m_streams;
    QList<Range> m_leftOut;
    QList<VorbisComments> m_comments;
    int m_commentCount = 0;
    bool m_hasData = false;
    qint64 m_seen = 0;
};

} // namespace marvola

#endif
