// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Signature.h"

#include <QtCore/QByteArray>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <cstring>

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/avstring.h>
}

namespace marvola {

namespace {

/// Bytes at a place that name a demuxer; a second pair of bytes may be wanted too.
struct FormatMark
{
    qsizetype offset;
    QByteArrayView bytes;
    const char *format;
    qsizetype secondOffset = 0;
    QByteArrayView secondBytes = {};
};

constexpr QByteArrayView view(const char *bytes, qsizetype size)
{
    return QByteArrayView(bytes, size);
}

const FormatMark FormatMarks[] = {
    {0, view("OggS", 4), "ogg"},
    {0, view("fLaC", 4), "flac"},
    {0, view("#!AMR", 5), "amr"},
    {0, view("RIFF", 4), "wav", 8, view("WAVE", 4)},
    {0, view("RF64", 4), "wav", 8, view("WAVE", 4)},
    {0, view("RIFF", 4), "avi", 8, view("AVI", 3)},
    {0, view("FORM", 4), "aiff", 8, view("AIFF", 4)},
    {0, view("FORM", 4), "aiff", 8, view("AIFC", 4)},
    {0, view("\x1A\x45\xDF\xA3", 4), "matroska"},
    {0, view("FLV\x01", 4), "flv"},
    {0, view("\x30\x26\xB2\x75\x8E\x66\xCF\x11\xA6\xD9\x00\xAA\x00\x62\xCE\x6C", 16), "asf"},
    {0, view("\x00\x00\x01\xBA", 4), "mpeg"},
    {0, view("MAC ", 4), "ape"},
    {0, view("wvpk", 4), "wv"},
    {0, view(".RMF", 4), "rm"},
    {0, view("caff", 4), "caf"},
};

/// The demuxers that a guess may end with; a name of any other kind (playlists, subtitles, pictures) is refused.
constexpr const char GuessableFormats[] =
    "aac,aiff,amr,ape,asf,avi,caf,flac,flv,matroska,mov,mp3,mpeg,mpegts,ogg,rm,wav,wv";

/// A guess below this is one that noise reaches too.
constexpr int LeastGuessScore = AVPROBE_SCORE_RETRY;

bool hasBytes(QByteArrayView head, qsizetype offset, QByteArrayView bytes)
{
    return head.size() >= offset + bytes.size() && head.sliced(offset, bytes.size()) == bytes;
}

bool startsWithMediaBox(QByteArrayView head, qint64 fileSize)
{
    if (head.size() < 16)
        return false;
    const QByteArrayView type = head.sliced(4, 4);
    if (type == view("ftyp", 4))
        return true;
    constexpr std::array<QByteArrayView, 6> Firsts = {view("moov", 4), view("mdat", 4), view("free", 4),
                                                      view("skip", 4), view("wide", 4), view("pnot", 4)};
    if (std::find(Firsts.begin(), Firsts.end(), type) == Firsts.end())
        return false;
    // 0 is "to the end of the file", 1 is "the size follows in 64 bits".
    const quint32 size = qFromBigEndian<quint32>(head.data());
    return size <= 1 || (size >= 8 && size <= fileSize);
}

/// Packets of a transport stream start with one byte of 0x47, in plain files every 188 bytes, in recordings with a
/// time stamp before each every 192.
bool startsWithTransportPackets(QByteArrayView head)
{
    constexpr int WantedPackets = 5;
    constexpr std::array<std::pair<qsizetype, qsizetype>, 2> Layouts = {{{0, 188}, {4, 192}}};
    return std::any_of(Layouts.begin(), Layouts.end(), [head](const auto &layout) {
        for (int packet = 0; packet < WantedPackets; ++packet) {
            const qsizetype at = layout.first + packet * layout.second;
            if (at >= head.size() || head[at] != '\x47')
                return false;
        }
        return true;
    });
}

/// The length of the ADTS frame that starts \a header; 0 when it is none.
int adtsFrameSize(QByteArrayView header)
{
    if (header.size() < 7)
        return 0;
    const auto byte = [header](qsizetype at) { return static_cast<quint8>(header[at]); };
    const bool isSync = byte(0) == 0xFF && (byte(1) & 0xF6) == 0xF0;
    const int rateIndex = (byte(2) >> 2) & 0x0F;
    const int size = ((byte(3) & 0x03) << 11) | (byte(4) << 3) | (byte(5) >> 5);
    return isSync && rateIndex < 13 && size > 7 ? size : 0;
}

/// Whether \a head is a chain of frames: enough of them in a row, or right up to the end of the file. Random bytes look
/// like one frame easily and like a chain next to never.
template<typename FrameSize>
bool isFrameChain(QByteArrayView head, qint64 fileSize, FrameSize frameSize)
{
    constexpr int WantedFrames = 3;
    qint64 at = 0;
    for (int frame = 0; frame < WantedFrames; ++frame) {
        if (at >= head.size())
            return frame > 1 || (frame == 1 && at == fileSize);
        const int size = frameSize(head.sliced(at));
        if (size == 0)
            return false;
        at += size;
    }
    return true;
}

} // namespace

int mpegAudioFrameSize(QByteArrayView header)
{
    if (header.size() < 4)
        return 0;
    const auto bits = qFromBigEndian<quint32>(header.data());
    if ((bits >> 21) != 0x7FF)
        return 0;
    const quint32 version = (bits >> 19) & 3; // 0 is 2.5, 2 is 2, 3 is 1
    const quint32 layer = 4 - ((bits >> 17) & 3);
    const quint32 rateIndex = (bits >> 12) & 15;
    const quint32 frequencyIndex = (bits >> 10) & 3;
    if (version == 1 || layer == 4 || rateIndex == 0 || rateIndex == 15 || frequencyIndex == 3)
        return 0;

    // Kilobits per second by row: version 1's layers 1 to 3, then layer 1 and layers 2 and 3 of the others.
    constexpr int Rates[5][15] = {
        {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384},
        {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320},
        {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256},
        {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160},
    };
    constexpr int Frequencies[3] = {44100, 48000, 32000};
    const bool isFirst = version == 3;
    const quint32 row = isFirst ? layer - 1 : (layer == 1 ? 3 : 4);
    const int rate = Rates[row][rateIndex] * 1000;
    const int frequency = Frequencies[frequencyIndex] >> (isFirst ? 0 : (version == 2 ? 1 : 2));
    const auto padding = static_cast<int>((bits >> 9) & 1);
    if (layer == 1)
        return (12 * rate / frequency + padding) * 4;
    return (layer == 3 && !isFirst ? 72 : 144) * rate / frequency + padding;
}

namespace {

/// The demuxers by name, each looked up once: libavformat compares the name with all of its own.
struct Formats
{
    Formats()
    {
        std::transform(std::begin(FormatMarks), std::end(FormatMarks), ofMark.begin(),
                       [](const FormatMark &mark) { return av_find_input_format(mark.format); });
    }

    std::array<const AVInputFormat *, std::size(FormatMarks)> ofMark;
    const AVInputFormat *movie = av_find_input_format("mov");
    const AVInputFormat *transport = av_find_input_format("mpegts");
    const AVInputFormat *adts = av_find_input_format("aac");
    const AVInputFormat *mpegAudio = av_find_input_format("mp3");
};

} // namespace

const AVInputFormat *signatureFormat(QByteArrayView head, qint64 fileSize)
{
    static const Formats formats;
    const auto mark = std::find_if(std::begin(FormatMarks), std::end(FormatMarks), [head](const FormatMark &each) {
        return hasBytes(head, each.offset, each.bytes) && hasBytes(head, each.secondOffset, each.secondBytes);
    });
    if (mark != std::end(FormatMarks))
        return formats.ofMark[static_cast<std::size_t>(mark - std::begin(FormatMarks))];
    if (startsWithMediaBox(head, fileSize))
        return formats.movie;
    if (startsWithTransportPackets(head))
        return formats.transport;
    if (isFrameChain(head, fileSize, adtsFrameSize))
        return formats.adts;
    if (isFrameChain(head, fileSize, mpegAudioFrameSize))
        return formats.mpegAudio;
    return nullptr;
}

const AVInputFormat *guessFormat(QByteArrayView head)
{
    // The probes read past the end by up to this much and want zeros there.
    QByteArray padded(head.data(), head.size());
    padded.append(AVPROBE_PADDING_SIZE, '\0');
    AVProbeData data = {};
    data.filename = "";
    data.buf = reinterpret_cast<unsigned char *>(padded.data());
    data.buf_size = static_cast<int>(head.size());
    int score = 0;
    const AVInputFormat *format = av_probe_input_format3(&data, 1, &score);
    const bool isOurs = format && av_match_list(format->name, GuessableFormats, ',') > 0;
    return isOurs && score >= LeastGuessScore ? format : nullptr;
}

bool isFormat(const AVInputFormat *format, const char *name)
{
    if (!format)
        return false;
    const QByteArrayView wanted(name);
    for (const char *each = format->name;;) {
        const char *end = std::strchr(each, ',');
        if (wanted == (end ? QByteArrayView(each, end) : QByteArrayView(each)))
            return true;
        if (!end)
            return false;
        each = end + 1;
    }
}

} // namespace marvola
