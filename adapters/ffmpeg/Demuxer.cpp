// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Demuxer.h"

#include "FileView.h"
#include "MediaFile.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <vector>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/mem.h>
}

namespace marvola {

namespace {

constexpr int IoBufferSize = 16 * 1024;
/// What analysing may look at before it makes do with what it has.
constexpr qint64 AnalysisSize = 1 * MiB;
constexpr qint64 AnalysisTime = qint64(2) * AV_TIME_BASE;
/// What it may read altogether: streams of which no packet ever ends are put together in memory.
constexpr qint64 AnalysisBytes = 16 * MiB;
/// What may be decoded to learn what a stream is: codecs whose containers do not tell it, and of pictures those that
/// tell it without making one. For all others containers and parsers are good enough.
constexpr const char Decoders[] = "aac,aac_latm,ac3,dca,eac3,flac,mp1,mp1float,mp2,mp2float,mp3,mp3float,"
                                  "flv,h263,h263i,h263p,mpeg1video,mpeg2video,mpeg4,mpegvideo,msmpeg4,msmpeg4v1,"
                                  "msmpeg4v2";
/// Decoders take memory for each square of a picture before there is one.
constexpr const char MostPixels[] = "35389440"; // 8192 x 4320
/// What looking for streams may look at.
constexpr int MostPackets = 2000;
constexpr int MostPacketBytes = 1024 * 1024;
/// More streams than this have no place in a file that a phone plays.
constexpr int MostStreams = 64;
/// Those of a program stream, of which each packet may start a new one.
constexpr int MostProgramStreams = 32;
/// Leaves room for adding where the file's part starts.
constexpr qint64 MostOffset = std::numeric_limits<qint64>::max() / 2;

int refuseToOpen(AVFormatContext *, AVIOContext **, const char *, int, AVDictionary **)
{
    return AVERROR(EACCES);
}

/// What libavformat looks through from the start for every one that it adds, or holds on to although nobody asks for
/// it.
constexpr int MostTexts = 2000;
constexpr unsigned int MostChapters = 2000;
constexpr unsigned int MostPrograms = 1000;
constexpr qint64 MostIndexEntries = 2'000'000;

/// Whether \a context has taken up so many times as much as any file that is worth its while.
bool isOvergrown(const AVFormatContext &context, unsigned int times)
{
    qint64 entries = 0;
    int texts = av_dict_count(context.metadata);
    for (unsigned int index = 0; index < context.nb_streams; ++index) {
        entries += avformat_index_get_entries_count(context.streams[index]);
        texts = std::max(texts, av_dict_count(context.streams[index]->metadata));
    }
    return texts > static_cast<int>(times) * MostTexts || context.nb_chapters > times * MostChapters ||
           context.nb_programs > times * MostPrograms || entries > times * MostIndexEntries;
}

bool hasStream(const AVFormatContext *context, AVMediaType type)
{
    return std::any_of(context->streams, context->streams + context->nb_streams,
                       [type](const AVStream *stream) { return stream->codecpar->codec_type == type; });
}

} // namespace

Demuxer::Demuxer(FileView &view) : m_view(view)
{
}

Demuxer::~Demuxer()
{
    avformat_close_input(&m_context);
    if (m_io)
        av_freep(&m_io->buffer);
    avio_context_free(&m_io);
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
    m_context->pb = m_io;
    m_context->interrupt_callback = {isInterrupted, this};
    m_context->io_open = refuseToOpen;
    m_context->protocol_whitelist = av_strdup("");
    m_context->max_streams = std::strcmp(format->name, "mpeg") == 0 ? MostProgramStreams : MostStreams;
    m_context->codec_whitelist = av_strdup(Decoders);
    m_context->probesize = AnalysisSize;
    m_context->max_analyze_duration = AnalysisTime;
    // Indices serve seeking, which nobody does here.
    m_context->flags |= AVFMT_FLAG_CUSTOM_IO | AVFMT_FLAG_IGNIDX;
    return avformat_open_input(&m_context, "", format, nullptr) == 0;
}

/// Reads packets as they are in the file, until \a visit returns false or it is enough, and goes back.
void Demuxer::readPackets(const std::function<bool(const AVPacket &)> &visit)
{
    AVPacket *packet = av_packet_alloc();
    const int flags = m_context->flags;
    const std::int64_t start = avio_tell(m_io);
    m_context->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    int bytes = 0;
    bool isWanted = packet != nullptr;
    for (int count = 0; isWanted && count < MostPackets && bytes < MostPacketBytes; ++count) {
        if (av_read_frame(m_context, packet) < 0)
            break;
        bytes += packet->size;
        isWanted = visit(*packet);
        av_packet_unref(packet);
    }
    av_packet_free(&packet);
    m_context->flags = flags;
    avformat_flush(m_context);
    (void)avio_seek(m_io, start, SEEK_SET);
}

void Demuxer::findStreams()
{
    const auto isMissing = [this](AVMediaType type) { return !hasStream(m_context, type); };
    if (isMissing(AVMEDIA_TYPE_AUDIO) || isMissing(AVMEDIA_TYPE_VIDEO))
        readPackets([&](const AVPacket &) { return isMissing(AVMEDIA_TYPE_AUDIO) || isMissing(AVMEDIA_TYPE_VIDEO); });
}

void Demuxer::analyse()
{
    if (m_context->nb_streams == 0)
        return;
    // Packets are looked at, not kept.
    m_context->flags |= AVFMT_FLAG_NOBUFFER;
    m_context->max_streams = static_cast<int>(m_context->nb_streams);
    m_bytesLeft = AnalysisBytes;
    leaveOneOfEachKind();
    std::vector<AVDictionary *> options(m_context->nb_streams, nullptr);
    for (AVDictionary *&each : options)
        av_dict_set(&each, "max_pixels", MostPixels, 0);
    const std::int64_t start = avio_tell(m_io);
    // What went wrong half-way leaves what was learned until then.
    (void)avformat_find_stream_info(m_context, options.data());
    for (AVDictionary *&each : options)
        av_dict_free(&each);
    avformat_flush(m_context);
    (void)avio_seek(m_io, start, SEEK_SET);
    findPictureSize();
}

/// Some parsers know the size of pictures but keep it to themselves.
void Demuxer::findPictureSize()
{
    const auto end = m_context->streams + m_context->nb_streams;
    const auto found = std::find_if(m_context->streams, end, [](const AVStream *stream) {
        return stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO && stream->codecpar->width == 0;
    });
    AVCodecParserContext *parser = found == end ? nullptr : av_parser_init((*found)->codecpar->codec_id);
    if (!parser)
        return;
    AVCodecParameters &parameters = *(*found)->codecpar;
    AVCodecContext *codec = avcodec_alloc_context3(nullptr);
    parser->flags |= PARSER_FLAG_COMPLETE_FRAMES;
    if (codec && avcodec_parameters_to_context(codec, &parameters) >= 0) {
        readPackets([&](const AVPacket &packet) {
            quint8 *data = nullptr;
            int size = 0;
            if (packet.stream_index == (*found)->index)
                av_parser_parse2(parser, codec, &data, &size, packet.data, packet.size, AV_NOPTS_VALUE, AV_NOPTS_VALUE,
                                 0);
            return parser->width <= 0;
        });
        parameters.width = parser->width;
        parameters.height = parser->height;
    }
    av_parser_close(parser);
    avcodec_free_context(&codec);
}

/// Lets streams that nobody asks about look like data, so that there is nothing to be learned of them.
void Demuxer::leaveOneOfEachKind()
{
    bool isTaken[AVMEDIA_TYPE_NB] = {};
    std::for_each(m_context->streams, m_context->streams + m_context->nb_streams, [&isTaken](AVStream *stream) {
        const AVMediaType type = stream->codecpar->codec_type;
        const bool isPicture = (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
        const bool isMedia = !isPicture && (type == AVMEDIA_TYPE_AUDIO || type == AVMEDIA_TYPE_VIDEO);
        if (isMedia && !isTaken[type]) {
            isTaken[type] = true;
            return;
        }
        stream->discard = AVDISCARD_ALL;
        // A picture goes on to be one of no kind that counts.
        stream->codecpar->codec_type = AVMEDIA_TYPE_DATA;
        stream->codecpar->codec_id = AV_CODEC_ID_NONE;
    });
}

int Demuxer::readPacket(void *demuxer, quint8 *buffer, int size)
{
    // A blob is read in pieces too, so that growth is noticed before all of it is there.
    constexpr int MostAtOnce = 64 * 1024;
    auto *self = static_cast<Demuxer *>(demuxer);
    self->checkGrowth();
    const qint64 left = std::min(self->m_end - self->m_position, self->m_bytesLeft);
    const qint64 wanted = std::clamp<qint64>(left, 0, std::min(size, MostAtOnce));
    const qint64 got = self->m_view.read(self->m_position, reinterpret_cast<char *>(buffer), wanted);
    if (got < 0)
        return AVERROR(EIO);
    self->m_position += got;
    self->m_bytesLeft -= got;
    return got > 0 ? static_cast<int>(got) : AVERROR_EOF;
}

/// Lets the file end here when too much was made of it. What comes before may be read once more, to find what is there.
void Demuxer::checkGrowth()
{
    constexpr unsigned int MostTimes = 2;
    if (!isOvergrown(*m_context, m_times))
        return;
    m_end = m_times == MostTimes ? 0 : m_position;
    m_times = MostTimes;
}

std::int64_t Demuxer::seek(void *demuxer, std::int64_t offset, int whence)
{
    auto *self = static_cast<Demuxer *>(demuxer);
    const qint64 size = self->m_view.size();
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
    return static_cast<Demuxer *>(demuxer)->m_view.isExhausted() ? 1 : 0;
}

} // namespace marvola
