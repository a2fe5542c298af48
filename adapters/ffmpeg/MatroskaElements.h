// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_MATROSKAELEMENTS_H
#define MARVOLA_FFMPEG_MATROSKAELEMENTS_H

#include <QtCore/QByteArray>
#include <QtCore/QHash>
#include <QtCore/QList>

namespace marvola {

class FileView;
class MediaFile;

/// Covers what libavformat must not meet in a Matroska file: chapters, attachments and cues, which are of no use here,
/// and lists of tracks, tags and places that would cost it memory or time out of proportion, of two thousand bytes for
/// every two.
///
/// libavformat enters such an element because it comes next, because another refers to it, or because it looks for one
/// after an error; so each is looked at wherever its identity stands. One that is let through is sound in itself, so
/// that libavformat reads it as it was read here.
class MatroskaElements
{
public:
    /// Looks into \a file; what is within an element is covered by replacements in \a view.
    MatroskaElements(MediaFile &file, FileView &view);

    /// Covers the identities of elements in \a window, which has bytes of the file from \a offset on.
    void cover(qint64 offset, QByteArray &window);

    /// How many bytes beyond a read cover() wants to see.
    static constexpr qint64 Reach = 4;

private:
    /// What the elements that were let through have in them altogether.
    struct Contents
    {
        int tracks = 0;
        qint64 tagCost = 0;
        QList<qint64> coveredPlaces; ///< of elements within tracks
    };

    [[nodiscard]] bool isSound(quint32 identity, qint64 offset);
    [[nodiscard]] bool isSoundInside(quint32 identity, qint64 content, qint64 size);
    [[nodiscard]] static bool addTracks(Contents &contents, const QByteArray &bytes, qint64 offset);
    [[nodiscard]] static bool addTrack(Contents &contents, const QByteArray &bytes, qsizetype from, qsizetype end,
                                       qint64 offset);
    [[nodiscard]] static bool addTags(Contents &contents, const QByteArray &bytes);
    [[nodiscard]] static bool addTagsWithin(Contents &contents, const QByteArray &bytes, qsizetype from, qsizetype end,
                                            int level);

    MediaFile &m_file;
    FileView &m_view;
    QHash<qint64, bool> m_verdicts;
    Contents m_contents;
};

} // namespace marvola

#endif
