// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_DEMUXER_H
#define MARVOLA_FFMPEG_DEMUXER_H

#include <QtCore/qglobal.h>

#include <cstdint>
#include <functional>
#include <limits>

struct AVFormatContext;
struct AVInputFormat;
struct AVIOContext;
struct AVPacket;

namespace marvola {

class FileView;

/// One of libavformat's demuxers on what there is to see of a file. It reads that and nothing else: what the file
/// refers to is never opened, and the file's budget ends every wait. A file whose texts, chapters, programs or entries
/// of an index grow beyond all measure ends where that is noticed, for libavformat finds room for everything that it
/// meets.
class Demuxer
{
public:
    /// Reads \a view, which must outlive the demuxer.
    explicit Demuxer(FileView &view);
    ~Demuxer();
    Demuxer(const Demuxer &) = delete;
    Demuxer &operator=(const Demuxer &) = delete;

    /// Reads the headers as \a format. \return false when they are not that or cannot be read; try no second time.
    [[nodiscard]] bool open(const AVInputFormat *format);
    /// Reads packets until audio and video have both shown up, within bounds, and goes back to where it started; for
    /// containers whose headers do not list their streams.
    void findStreams();
    /// Reads packets until the parameters of the first stream of sound and the first of pictures and the lengths are
    /// known, within bounds. Streams that were not found before are not found any more.
    void analyse();

    /// What was read; valid after open().
    const AVFormatContext &context() const { return *m_context; }

private:
    void readPackets(const std::function<bool(const AVPacket &)> &visit);
    void leaveOneOfEachKind();
    void findPictureSize();
    void checkGrowth();
    static int readPacket(void *demuxer, quint8 *buffer, int size);
    static std::int64_t seek(void *demuxer, std::int64_t offset, int whence);
    static int isInterrupted(void *demuxer);

    FileView &m_view;
    qint64 m_position = 0;
    qint64 m_bytesLeft = std::numeric_limits<qint64>::max();
    qint64 m_end = std::numeric_limits<qint64>::max();
    unsigned int m_times = 1;
    AVIOContext *m_io = nullptr;
    AVFormatContext *m_context = nullptr;
};

} // namespace marvola

#endif
