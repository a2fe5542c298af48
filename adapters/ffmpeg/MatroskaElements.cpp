// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MatroskaElements.h"

#include "FileView.h"
#include "MediaFile.h"

#include <QtCore/QtAlgorithms>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <optional>

namespace marvola {

namespace {

constexpr quint32 Info = 0x1549A966;
constexpr quint32 Tracks = 0x1654AE6B;
constexpr quint32 Tags = 0x1254C367;
constexpr quint32 SeekHead = 0x114D9B74;
constexpr quint32 Chapters = 0x1043A770;
constexpr quint32 Attachments = 0x1941A469;
constexpr quint32 Cues = 0x1C53BB6B;
constexpr quint32 TrackEntry = 0xAE;
constexpr quint32 CodecId = 0x86;
constexpr quint32 CodecPrivate = 0x63A2;
constexpr quint32 ContentEncodings = 0x6D80;
constexpr quint32 ContentEncoding = 0x6240;
constexpr quint32 ContentCompression = 0x5034;
constexpr quint32 CompressionAlgorithm = 0x4254;
constexpr quint32 Tag = 0x7373;
constexpr quint32 SimpleTag = 0x67C8;

/// Identities that nobody knows start so; the last byte tells them apart, for libavformat follows no two references to
/// one element.
constexpr char Unknown[] = "\x1F\xFF\xFF";
/// One of two bytes.
constexpr char BriefUnknown[] = "\x7F\xFE";
constexpr qsizetype IdentitySize = 4;

constexpr int MostElements = 64;
constexpr int MostTracks = 64;
/// What FLAC keeps with a track has a list of comments in it, of which libavformat searches the whole for each.
constexpr qint64 MostFlacPrivate = 16 * KiB;
constexpr qint64 MostTagCost = 2 * MiB;
/// What a tag costs beside its bytes.
constexpr qint64 TagCost = 1 * KiB;
/// libavformat gives up at sixteen, some of which are used up before.
constexpr int MostTagLevels = 12;

constexpr qint64 mostSize(quint32 identity)
{
    switch (identity) {
    case Info:
    case Tags:
        return 1 * MiB;
    case Tracks:
        return 512 * KiB;
    case SeekHead:
        return 16 * KiB;
    default:
        return -1;
    }
}

/// An element within bytes.
struct Element
{
    quint32 identity;
    qsizetype content;
    qsizetype end;
};

struct ElementNumber
{
    quint64 value;
    qsizetype size;
};

/// The number of up to \a most bytes at \a from; its first byte tells by its leading zeros how many there are.
std::optional<ElementNumber> numberAt(const QByteArray &bytes, qsizetype from, qsizetype end, qsizetype most)
{
    const auto first = from < end ? static_cast<quint8>(bytes.at(from)) : quint8(0);
    if (first == 0)
        return std::nullopt;
    const qsizetype size = qCountLeadingZeroBits(first) + 1;
    if (size > most || size > end - from)
        return std::nullopt;
    quint64 value = first;
    for (qsizetype at = from + 1; at < from + size; ++at)
        value = (value << 8) | static_cast<quint8>(bytes.at(at));
    return ElementNumber{value, size};
}

/// The length at \a from; none where there is none and where nobody knows.
std::optional<ElementNumber> lengthAt(const QByteArray &bytes, qsizetype from, qsizetype end)
{
    auto length = numberAt(bytes, from, end, 8);
    if (!length)
        return std::nullopt;
    // The bit that ends the leading zeros is not part of it; all ones mean that nobody knows.
    const quint64 marker = quint64(1) << (7 * length->size);
    length->value ^= marker;
    return length->value == marker - 1 ? std::nullopt : length;
}

/// The element at \a from that ends at \a end or before; none where there is no sound one.
std::optional<Element> elementAt(const QByteArray &bytes, qsizetype from, qsizetype end)
{
    const auto identity = numberAt(bytes, from, end, IdentitySize);
    if (!identity)
        return std::nullopt;
    const auto length = lengthAt(bytes, from + identity->size, end);
    if (!length)
        return std::nullopt;
    const qsizetype content = from + identity->size + length->size;
    if (length->value > static_cast<quint64>(end - content))
        return std::nullopt;
    return Element{static_cast<quint32>(identity->value), content, content + static_cast<qsizetype>(length->value)};
}

/// Whether the frames of a track with these encodings, which \a bytes has from \a from to \a end, only lack a start
/// that all of them have. Whatever else they are packed with, they may be thousands of times as long when unpacked.
bool isOnlyStripped(const QByteArray &bytes, qsizetype from, qsizetype end)
{
    const auto encoding = elementAt(bytes, from, end);
    if (!encoding || encoding->identity != ContentEncoding || encoding->end != end)
        return false;
    bool isStripped = false;
    for (qsizetype at = encoding->content; at < encoding->end;) {
        const auto element = elementAt(bytes, at, encoding->end);
        if (!element || (element->identity == ContentCompression && isStripped))
            return false;
        if (element->identity == ContentCompression) {
            const auto algorithm = elementAt(bytes, element->content, element->end);
            isStripped = algorithm && algorithm->identity == CompressionAlgorithm &&
                         bytes.mid(algorithm->content, algorithm->end - algorithm->content) == "\3";
            const auto settings = isStripped && algorithm->end < element->end
                                      ? elementAt(bytes, algorithm->end, element->end)
                                      : algorithm;
            if (!isStripped || !settings || settings->end != element->end ||
                (settings->content != algorithm->content && settings->identity == CompressionAlgorithm))
                return false;
        }
        at = element->end;
    }
    return isStripped;
}

} // namespace

MatroskaElements::MatroskaElements(MediaFile &file, FileView &view) : m_file(file), m_view(view)
{
}

void MatroskaElements::cover(qint64 offset, QByteArray &window)
{
    constexpr std::array<quint32, 7> Known = {Info, Tracks, Tags, SeekHead, Chapters, Attachments, Cues};
    for (qsizetype at = 0; at + IdentitySize <= window.size(); ++at) {
        // All of them start with a byte of which this is the first half.
        if ((static_cast<quint8>(window.at(at)) & 0xF0) != 0x10)
            continue;
        const auto identity = qFromBigEndian<quint32>(window.constData() + at);
        const auto known = std::find(Known.begin(), Known.end(), identity);
        if (known == Known.end() || isSound(identity, offset + at))
            continue;
        std::copy_n(Unknown, IdentitySize - 1, window.begin() + at);
        window[at + IdentitySize - 1] = static_cast<char>(known - Known.begin());
    }
}

bool MatroskaElements::isSound(quint32 identity, qint64 offset)
{
    const qint64 most = mostSize(identity);
    if (most < 0)
        return false;
    const auto known = m_verdicts.constFind(offset);
    if (known != m_verdicts.constEnd())
        return *known;
    if (m_verdicts.size() >= MostElements)
        return false;
    const QByteArray head = m_file.bytes(offset + IdentitySize, 8);
    const auto length = lengthAt(head, 0, head.size());
    const bool isSmall = length && length->value <= static_cast<quint64>(most);
    const bool isGood =
        isSmall && isSoundInside(identity, offset + IdentitySize + length->size, static_cast<qint64>(length->value));
    m_verdicts.insert(offset, isGood);
    return isGood;
}

bool MatroskaElements::isSoundInside(quint32 identity, qint64 content, qint64 size)
{
    if (identity == Info || identity == SeekHead)
        return true;
    const QByteArray bytes = m_file.bytes(content, size);
    Contents contents = m_contents;
    const bool isGood =
        bytes.size() == size && (identity == Tracks ? addTracks(contents, bytes, content) : addTags(contents, bytes));
    if (!isGood)
        return false;
    m_contents = contents;
    for (const qint64 place : std::as_const(m_contents.coveredPlaces))
        m_view.replace(place, QByteArray(BriefUnknown));
    return true;
}

/// Adds the tracks in \a bytes, which are at byte \a offset of the file.
bool MatroskaElements::addTracks(Contents &contents, const QByteArray &bytes, qint64 offset)
{
    for (qsizetype at = 0; at < bytes.size();) {
        const auto element = elementAt(bytes, at, bytes.size());
        if (!element || (element->identity == TrackEntry && ++contents.tracks > MostTracks))
            return false;
        if (element->identity == TrackEntry && !addTrack(contents, bytes, element->content, element->end, offset))
            return false;
        at = element->end;
    }
    return true;
}

bool MatroskaElements::addTrack(Contents &contents, const QByteArray &bytes, qsizetype from, qsizetype end,
                                qint64 offset)
{
    bool isFlac = false;
    bool isPacked = false;
    qsizetype privateSize = 0;
    for (qsizetype at = from; at < end;) {
        const auto element = elementAt(bytes, at, end);
        if (!element)
            return false;
        const qsizetype size = element->end - element->content;
        if (element->identity == CodecId)
            isFlac = isFlac || bytes.mid(element->content, size).startsWith("A_FLAC");
        if (element->identity == CodecPrivate)
            privateSize = std::max(privateSize, size);
        if (element->identity == ContentEncodings) {
            const bool isLeft = isOnlyStripped(bytes, element->content, element->end);
            isPacked = isPacked || isLeft;
            if (!isLeft)
                contents.coveredPlaces.append(offset + at);
            if (contents.coveredPlaces.size() > MostTracks)
                return false;
        }
        at = element->end;
    }
    return !isFlac || (!isPacked && privateSize <= MostFlacPrivate);
}

bool MatroskaElements::addTags(Contents &contents, const QByteArray &bytes)
{
    for (qsizetype at = 0; at < bytes.size();) {
        const auto element = elementAt(bytes, at, bytes.size());
        contents.tagCost += TagCost;
        if (!element || contents.tagCost > MostTagCost)
            return false;
        if (element->identity == Tag && !addTagsWithin(contents, bytes, element->content, element->end, 0))
            return false;
        at = element->end;
    }
    return true;
}

/// Adds what the tags in a part of \a bytes cost. One within another counts twice as much, for it may be told in two
/// languages, which is one more name for every tag in it.
bool MatroskaElements::addTagsWithin(Contents &contents, const QByteArray &bytes, qsizetype from, qsizetype end,
                                     int level)
{
    if (level > MostTagLevels)
        return false;
    for (qsizetype at = from; at < end;) {
        const auto element = elementAt(bytes, at, end);
        if (!element)
            return false;
        contents.tagCost += ((element->identity == SimpleTag ? TagCost : 0) + element->end - at) << level;
        if (contents.tagCost > MostTagCost)
            return false;
        if (element->identity == SimpleTag &&
            !addTagsWithin(contents, bytes, element->content, element->end, level + 1))
            return false;
        at = element->end;
    }
    return true;
}

} // namespace marvola
