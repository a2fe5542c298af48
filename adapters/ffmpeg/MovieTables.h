// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_MOVIETABLES_H
#define MARVOLA_FFMPEG_MOVIETABLES_H

#include <QtCore/QByteArray>
#include <QtCore/QList>

#include <optional>

namespace marvola {

class MediaFile;

/// Finds what would make libavformat build a large index of an MP4 or 3GP file, and what it would fill memory for that
/// is of no use here: pictures, references to other files, texts of more bytes than anybody reads.
///
/// A few bytes can announce billions of samples, and libavformat takes memory for each of them without reading on. An
/// index serves playing only, so its tables can be kept from libavformat where they are large; streams, texts and
/// lengths do not depend on them.
///
/// The walk follows libavformat's rules for where a box lies, not the standard's: a box that is too large ends with the
/// one around it, and a table counts wherever it stands. Boxes and levels are bounded.
class MovieTables
{
public:
    /// \a file has its first box at byte \a start.
    MovieTables(MediaFile &file, qint64 start);

    /// Where the types of the boxes are that are not to be seen, in bytes of the file, ascending.
    const QList<qint64> &hiddenTypes() const { return m_hidden; }
    /// Where the file is to end: before its fragments, which come after all headers and have tables of their own; 0
    /// when it is not to be read at all.
    qint64 end() const { return m_end; }

private:
    struct Box
    {
        quint32 type = 0; ///< its four letters, the first in the highest byte
        qint64 start = 0;
        qint64 content = 0;
        qint64 end = 0;
    };

    std::optional<Box> boxAt(qint64 offset, qint64 end) const;
    qint64 numberAt(qint64 offset) const;
    qint64 metaContent(const Box &box) const;
    void walkFile(qint64 start);
    void walk(const Box &around, qint64 from, int level);
    void enter(const Box &box, quint32 around, int level);
    bool isHeavyText(const Box &box, quint32 around);
    void count(const Box &box);
    void searchEntries(const Box &box);
    void addCost(qint64 entries, qint64 times);
    void refuse();

    MediaFile &m_file;
    QList<qint64> m_tables;
    QList<qint64> m_hidden;
    qint64 m_end;
    qint64 m_cost = 0;
    qint64 m_tracks = 0;
    qint64 m_mostSamples = 0;
    qint64 m_mostEdits = 0;
    int m_boxes = 0;
    int m_texts = 0;
};

} // namespace marvola

#endif
