// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_DEMUXER_H
#define MARVOLA_FFMPEG_DEMUXER_H

#include <QtCore/QList>

#include <cstdint>

struct AVFormatContext;
struct AVInputFormat;
struct AVIOContext;

namespace marvola {

class MediaFile;

/// One of libavformat's demuxers on a MediaFile. It reads that file and nothing else: what the file refers to is never
/// opened, and the file's budget ends every wait.
class Demuxer
{
public:
    /// Sees \a file from byte \a start on; the file must outlive the demuxer.
    Demuxer(MediaFile &file, qint64 start);
    ~Demuxer();
    Demuxer(const Demuxer &) = delete;
    Demuxer &operator=(const Demuxer &) = delete;

    /// Lets the file end at byte \a end and look as if boxes that nobody knows were those whose types are at \a types,
    /// ascending. Before open().
    void hide(const QList<qint64> &types, qint64 end);

    /// Reads the headers as \a format. \return false when they are not that or cannot be read; try no second time.
    [[nodiscard]] bool open(const AVInputFormat *format);
    /// Reads packets until audio and video have both shown up, within bounds; for containers whose headers do not
    /// list their streams.
    void findStreams();
    /// Reads packets until the streams' parameters and lengths are known, within bounds.
    void analyse();

    /// What was read; valid after open().
    const AVFormatContext &context() const { return *m_context; }

private:
    static int readPacket(void *demuxer, quint8 *buffer, int size);
    static std::int64_t seek(void *demuxer, std::int64_t offset, int whence);
    static int isInterrupted(void *demuxer);
    [[nodiscard]] bool coverLargeLists(qint64 offset, quint8 *buffer, qint64 size);

    MediaFile &m_file;
    qint64 m_start;
    qint64 m_end;
    QList<qint64> m_hiddenTypes;
    bool m_isRiff = false;
    qint64 m_position = 0;
    AVIOContext *m_io = nullptr;
    AVFormatContext *m_context = nullptr;
};

} // namespace marvola

#endif
