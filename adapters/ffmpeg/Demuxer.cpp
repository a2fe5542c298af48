// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Demuxer.h"

#include "MediaFile.h"
#include "Signature.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <cstdio>
#include <limits>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace marvola {

namespace {

constexpr int IoBufferSize = 16 * 1024;
/// What analysing may look at before it makes do with what it has.
constexpr qint64 AnalysisSize = 1 * MiB;
constexpr qint64 AnalysisTime = qint64(2) * AV_TIME_BASE;
/// What looking for streams may look at.
constexpr int MostPackets = 2000;
constexpr int MostPacketBytes = 1024 * 1024;
/// More streams than this have no place in a file that a phone plays.
constexpr int MostStreams = 64;
/// Leaves room for adding where the file's part starts.
constexpr qint64 MostOffset = std::numeric_limits<qint64>::max() / 2;

int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EACCES);
}

/// Writes a type that means nothing over those of \a types that lie in the \a size bytes at \a offset, or half in them.
void coverTypes(const QList<qint64> &types, qint64 offset, quint8 *buffer, qint64 size)
{
    constexpr const char Cover[] = "skip";
    constexpr qint64 CoverSize = sizeof Cover - 1;
    auto type = std::upper_bound(types.begin(), types.end(), offset - CoverSize);
    for (; type != types.end() && *type < offset + size; ++type) {
        for (qint64 at = 0; at < CoverSize; ++at) {
            const qint64 place = *type + at - offset;
            if (place >= 0 && place < size)
                buffer[place] = static_cast<quint8>(Cover[at]);
        }
    }
}

bool hasStream(const AVFormatContext *context, AVMediaType type)
{
    return std::any_of(context->streams, context->streams + context->nb_streams,
                       [type](const AVStream *stream) { return stream->codecpar->codec_type == type; });
}

} // namespace

Demuxer::Demuxer(MediaFile &file, qint64 start) : m_file(file), m_start(start), m_end(file.size())
{
}

Demuxer::~Demuxer()
{
    avformat_close_input(&m_context);
    if (m_io)
        av_freep(&m_io->buffer);
    avio_context_free(&m_io);
}

void Demuxer::hide(const QList<qint64> &types, qint64 end)
{
    m_hiddenTypes = types;
    m_end = std::min(end, m_file.size());
}

bool Demuxer::open(const AVInputFormat *format)
{
    auto *buffer = static_cast<unsigned char *>(av_malloc(IoBufferSize));
    m_io = avio_alloc_context(buffer, IoBufferSize, 0, this, readPacket, nullptr, seek);
    m_context = avformat_alloc_context();
    if (!m_io)
        av_free(buffer);
    if (!m_io || !m_context)
        return false;
    m_isRiff = isFormat(format, "wav") || isFormat(format, "avi");
    m_context->pb = m_io;
    m_context->interrupt_callback = {isInterrupted, this};
    m_context->io_open = refuseToOpen;
    m_context->protocol_whitelist = av_strdup("");
    m_context->max_streams = MostStreams;
    m_context->probesize = AnalysisSize;
    m_context->max_analyze_duration = AnalysisTime;
    // Indices serve seeking, which nobody does here.
    m_context->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_IGNIDX;
    return avformat_open_input(&m_context, "", format, nullptr) == 0;
}

void Demuxer::findStreams()
{
    AVPacket *packet = av_packet_alloc();
    m_context->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    int bytes = 0;
    for (int count = 0; packet && count < MostPackets && bytes < MostPacketBytes; ++count) {
        if (hasStream(m_context, AVMEDIA_TYPE_AUDIO) && hasStream(m_context, AVMEDIA_TYPE_VIDEO))
            break;
        if (av_read_frame(m_context, packet) < 0)
            break;
        bytes += packet->size;
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
}

void Demuxer::analyse()
{
    // What went wrong half-way leaves what was learned until then.
    (void)avformat_find_stream_info(m_context, nullptr);
}

int Demuxer::readPacket(void *demuxer, quint8 *buffer, int size)
{
    auto *self = static_cast<Demuxer *>(demuxer);
    const qint64 offset = self->m_start + self->m_position;
    const qint64 got = self->m_file.read(offset, buffer, std::clamp<qint64>(self->m_end - offset, 0, size));
    if (got < 0)
        return AVERROR(EIO);
    coverTypes(self->m_hiddenTypes, offset, buffer, got);
    if (self->m_isRiff && !self->coverLargeLists(offset, buffer, got))
        return AVERROR(EIO);
    self->m_position += got;
    return got > 0 ? static_cast<int>(got) : AVERROR_EOF;
}

/// Covers lists of texts that are too long in the \a size bytes at \a offset: libavformat fills with zeros what a text
/// says that it needs before it reads any of it. \return false when the bytes around cannot be looked at.
bool Demuxer::coverLargeLists(qint64 offset, quint8 *buffer, qint64 size)
{
    constexpr qint64 MostListSize = 1 * MiB;
    constexpr qsizetype TypeOffset = 8;
    constexpr qsizetype HeaderSize = 12;
    const qint64 from = std::max<qint64>(offset - HeaderSize, 0);
    const QByteArray window = m_file.bytes(from, offset + size + HeaderSize - from);
    for (qsizetype at = window.indexOf("INFO"); at >= 0; at = window.indexOf("INFO", at + 1)) {
        const bool isList = at >= TypeOffset && window.mid(at - TypeOffset, 4) == "LIST";
        if (isList && qFromLittleEndian<quint32>(window.constData() + at - 4) > MostListSize)
            coverTypes({from + at}, offset, buffer, size);
    }
    return from + window.size() >= offset + size;
}

std::int64_t Demuxer::seek(void *demuxer, std::int64_t offset, int whence)
{
    auto *self = static_cast<Demuxer *>(demuxer);
    const qint64 size = std::max<qint64>(self->m_end - self->m_start, 0);
    if (whence & AVSEEK_SIZE)
        return size;
    whence &= ~AVSEEK_FORCE;
    const qint64 base = whence == SEEK_CUR ? self->m_position : (whence == SEEK_END ? size : 0);
    qint64 target = 0;
    // Past the end is a place to be, as in any file; reading there gives nothing.
    if (__builtin_add_overflow(base, offset, &target) || target < 0 || target > MostOffset)
        return AVERROR(EINVAL);
    return self->m_position = target;
}

int Demuxer::isInterrupted(void *demuxer)
{
    return static_cast<Demuxer *>(demuxer)->m_file.isExhausted() ? 1 : 0;
}

} // namespace marvola
