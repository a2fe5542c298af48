// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FileInspection.h"

#include "ClipTexts.h"
#include "ContainerTexts.h"
#include "Demuxer.h"
#include "Id3Chunk.h"
#include "Id3Texts.h"
#include "Id3v2Frames.h"
#include "MediaBoxes.h"
#include "MediaFile.h"
#include "Screening.h"
#include "Signature.h"
#include "TextDecoder.h"

#include <QtCore/QList>

#include <algorithm>
#include <array>
#include <limits>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/mathematics.h>
}

namespace marvola {

namespace {

/// Some writers put a new tag before the old one; more than these are no mishap, and a file that has them is left to
/// nobody.
constexpr int MostTags = 4;

/// Containers whose headers do not list their streams.
constexpr std::array<const char *, 4> FormatsWithoutStreamList = {"mpeg", "mpegts", "flv", "rm"};
/// Bare streams of audio, which have no texts of their own, only tags around them.
constexpr std::array<const char *, 2> BareStreams = {"mp3", "aac"};
/// Containers that keep an ID3v2 tag in a chunk.
constexpr std::array<const char *, 2> FormatsWithId3Chunk = {"wav", "aiff"};

template<size_t Size>
bool isOneOf(const AVInputFormat *format, const std::array<const char *, Size> &names)
{
    return std::any_of(names.begin(), names.end(), [format](const char *name) { return isFormat(format, name); });
}

struct LeadingTags
{
    QList<Id3v2Tag> tags;
    qint64 end = 0; ///< where the media starts
};

/// The tags at the start; nothing where there are too many, which libavformat must not read.
std::optional<LeadingTags> readLeadingTags(MediaFile &file)
{
    LeadingTags leading;
    while (const auto tag = readId3v2(file, leading.end)) {
        if (leading.tags.size() == MostTags || tag->end <= leading.end)
            return std::nullopt;
        leading.end = tag->end;
        leading.tags.append(*tag);
    }
    return leading;
}

const AVInputFormat *formatAt(MediaFile &file, qint64 start)
{
    const QByteArray head = file.bytes(start, SignatureSize);
    if (head.isEmpty())
        return nullptr;
    const AVInputFormat *format = signatureFormat(head, file.size() - start);
    return format ? format : guessFormat(file.bytes(start, GuessSize));
}

int boundedInt(qint64 value)
{
    return static_cast<int>(std::clamp<qint64>(value, 0, std::numeric_limits<int>::max()));
}

bool isPicture(const AVStream &stream)
{
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

qint64 durationMs(const AVFormatContext &context)
{
    qint64 longest = std::max<qint64>(context.duration, 0) / (AV_TIME_BASE / 1000);
    if (longest > 0)
        return longest;
    for (unsigned int index = 0; index < context.nb_streams; ++index) {
        const AVStream &stream = *context.streams[index];
        if (stream.duration > 0 && stream.time_base.num > 0 && stream.time_base.den > 0)
            longest = std::max<qint64>(longest, av_rescale_q(stream.duration, stream.time_base, {1, 1000}));
    }
    return longest;
}

/// The first audio stream and the first video stream are what a player plays.
void addStream(FileFacts &facts, const AVStream &stream)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    if (parameters.codec_type == AVMEDIA_TYPE_AUDIO && !facts.hasAudio) {
        facts.hasAudio = true;
        facts.info.sampleRate = boundedInt(parameters.sample_rate);
        facts.info.channels = boundedInt(parameters.ch_layout.nb_channels);
    }
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO && !isPicture(stream) && !facts.hasVideo) {
        facts.hasVideo = true;
        facts.info.width = boundedInt(parameters.width);
        facts.info.height = boundedInt(parameters.height);
    }
}

FileFacts factsOf(const AVFormatContext &context)
{
    FileFacts facts;
    qint64 bitrate = 0;
    for (unsigned int index = 0; index < context.nb_streams; ++index) {
        addStream(facts, *context.streams[index]);
        if (!isPicture(*context.streams[index]))
            bitrate += boundedInt(context.streams[index]->codecpar->bit_rate);
    }
    facts.info.durationMs = durationMs(context);
    facts.info.bitrate = boundedInt(context.bit_rate > 0 ? context.bit_rate : bitrate);
    return facts;
}

void addTagTexts(ClipInfo &info, const LeadingTags &leading, const TextDecoder &decoder)
{
    for (const Id3v2Tag &tag : leading.tags)
        addId3v2Texts(info, tag, decoder);
}

/// libavformat reads such chunks too, but takes whatever bytes are there for Latin-1.
void addChunkTexts(ClipInfo &info, MediaFile &file, qint64 start, const TextDecoder &decoder)
{
    const auto chunk = findId3Chunk(file, start);
    const auto tag = chunk ? readId3v2(file, *chunk) : std::nullopt;
    if (tag)
        addId3v2Texts(info, *tag, decoder);
}

} // namespace

std::optional<FileFacts> inspectFile(MediaFile &file, Depth depth, const TextDecoder &decoder)
{
    const auto tags = readLeadingTags(file);
    const LeadingTags leading = tags.value_or(LeadingTags());
    const AVInputFormat *format = tags ? formatAt(file, leading.end) : nullptr;
    if (!format)
        return std::nullopt;
    std::optional<MediaBoxes> boxes;
    if (isFormat(format, "mov"))
        boxes.emplace(file, leading.end);
    if (boxes && boxes->hasCompressedHeader())
        return std::nullopt;

    Screening screening(file, leading.end, format);
    Demuxer demuxer(screening.view());
    if (!demuxer.open(format))
        return std::nullopt;
    if (isOneOf(format, FormatsWithoutStreamList))
        demuxer.findStreams();
    if (depth == Depth::Streams)
        demuxer.analyse();

    FileFacts facts = factsOf(demuxer.context());
    if (isOneOf(format, BareStreams)) {
        addTagTexts(facts.info, leading, decoder);
        addTrailingTexts(facts.info, file, decoder);
        return facts;
    }
    if (isOneOf(format, FormatsWithId3Chunk))
        addChunkTexts(facts.info, file, leading.end, decoder);
    addContainerTexts(facts.info, demuxer.context(), decoder);
    screening.addTexts(facts.info, decoder);
    addTagTexts(facts.info, leading, decoder);
    if (boxes)
        boxes->addTexts(facts.info, decoder);
    return facts;
}

} // namespace marvola
