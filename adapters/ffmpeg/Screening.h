// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_SCREENING_H
#define MARVOLA_FFMPEG_SCREENING_H

#include "FileView.h"
#include "MatroskaElements.h"
#include "VorbisComments.h"

#include <QtCore/QList>

#include <optional>

struct AVInputFormat;
struct ClipInfo;

namespace marvola {

class MediaFile;
class TextDecoder;

/// Looks through a file before libavformat does, and makes the view of it that libavformat gets.
///
/// libavformat trusts a file's numbers: it takes memory as a file announces, and time as the square of what it finds.
/// Of an honest file it sees what it needs; of any other no more than costs a few dozen megabytes and part of a second.
class Screening
{
public:
    /// Screens \a file, which \a format can read from byte \a start on. The file must outlive the screening.
    Screening(MediaFile &file, qint64 start, const AVInputFormat *format);
    Screening(const Screening &) = delete;
    Screening &operator=(const Screening &) = delete;

    /// What a demuxer may see.
    FileView &view() { return m_view; }
    /// Fills the texts that \a info lacks from what the demuxer did not get to see.
    void addTexts(ClipInfo &info, const TextDecoder &decoder) const;

private:
    void screen(qint64 start, const AVInputFormat *format);
    void hideBoxes(qint64 start);
    void shortenSeekTable(qint64 start);

    MediaFile &m_file;
    FileView m_view;
    std::optional<MatroskaElements> m_elements;
    QList<VorbisComments> m_comments;
};

} // namespace marvola

#endif
