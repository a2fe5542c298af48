// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ContainerTexts.h"

#include "ClipTexts.h"
#include "Signature.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <algorithm>
#include <array>
#include <cstring>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
}

namespace marvola {

namespace {

struct MetadataField
{
    const char *key;
    QString ClipInfo::*field;
};

constexpr std::array<MetadataField, 8> MetadataFields = {{{"title", &ClipInfo::title},
                                                          {"artist", &ClipInfo::artist},
                                                          {"author", &ClipInfo::artist},
                                                          {"album", &ClipInfo::album},
                                                          {"genre", &ClipInfo::genre},
                                                          {"composer", &ClipInfo::composer},
                                                          {"copyright", &ClipInfo::copyright},
                                                          {"comment", &ClipInfo::comment}}};

/// Containers that say nothing of how their texts are encoded, and whose texts libavformat hands over as they are.
constexpr std::array<const char *, 5> FormatsWithoutEncoding = {"avi", "wav", "aiff", "rm", "caf"};

/// More bytes than any text that is shown.
constexpr size_t MostTextBytes = 16384;

bool isWithoutEncoding(const AVInputFormat *format)
{
    return std::any_of(FormatsWithoutEncoding.begin(), FormatsWithoutEncoding.end(),
                       [format](const char *name) { return isFormat(format, name); });
}

QString decoded(const char *value, const AVInputFormat *format, const TextDecoder &decoder)
{
    const size_t size = ::strnlen(value, MostTextBytes);
    const auto ending = size == MostTextBytes ? TextDecoder::Ending::MayBeCut : TextDecoder::Ending::Whole;
    const QByteArrayView bytes(value, static_cast<qsizetype>(size));
    return isWithoutEncoding(format) ? decoder.decode(bytes, ending) : decoder.decodeUtf8(bytes, ending);
}

void addTexts(ClipInfo &info, const AVDictionary *metadata, const AVInputFormat *format, const TextDecoder &decoder)
{
    for (const MetadataField &each : MetadataFields) {
        const AVDictionaryEntry *entry = av_dict_get(metadata, each.key, nullptr, 0);
        if (!entry || !entry->value)
            continue;
        const QString text = decoded(entry->value, format, decoder);
        fillText(info.*each.field, each.field == &ClipInfo::genre ? genreText(text) : text);
    }
}

} // namespace

void addContainerTexts(ClipInfo &info, const AVFormatContext &context, const TextDecoder &decoder)
{
    addTexts(info, context.metadata, context.iformat, decoder);
    // Ogg has no texts of its own, only its streams do. Elsewhere a stream's title is one of the track's.
    if (!isFormat(context.iformat, "ogg"))
        return;
    for (unsigned int index = 0; index < context.nb_streams; ++index)
        addTexts(info, context.streams[index]->metadata, context.iformat, decoder);
}

} // namespace marvola
