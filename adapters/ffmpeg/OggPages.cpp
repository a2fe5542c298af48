// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "OggPages.h"

#include "FileView.h"
#include "MediaFile.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <numeric>

extern "C" {
#include <libavutil/crc.h>
}

namespace marvola {

namespace {

constexpr qint64 PageHeaderSize = 27;
constexpr qint64 PageSumOffset = 22;
constexpr qint64 SumSize = 4;
constexpr char FullSegment = '\xFF';
constexpr quint8 Continued = 1;
/// The longest page there can be; the last one of a file lies within so much of its end.
constexpr qint64 MostPageSize = PageHeaderSize + 255 + qint64(255) * 255;

constexpr int MostLogicalStreams = 64;
/// A header that is longer is one with a picture; the pages in its middle are left out.
constexpr qint64 MostPacketSize = 128 * KiB;
/// Headers are not longer than this altogether, pictures apart.
constexpr qint64 MostHeaders = 1 * MiB;
/// A picture of megabytes takes thousands of pages at the most.
constexpr int MostPages = 10'000;
/// What is to be seen of the packets after the headers.
constexpr qint64 DataSize = 64 * KiB;
constexpr qint64 KindSize = 8;

/// How many headers a stream has before its data, by how the first of them starts. Streams of other kinds do not tell
/// where data starts.
struct StreamKind
{
    const char *start;
    int headers;
};
constexpr std::array<StreamKind, 5> StreamKinds = {
    {{"\1vorbis", 3}, {"\x80theora", 3}, {"OpusHead", 2}, {"Speex   ", 3}, {"OVP80", 2}}};
constexpr const char FlacStart[] = "\x7F"
                                   "FLAC";
constexpr char FlacFrame = '\xFF';

/// Where in a packet that starts with \a head, the one of number \a index in its stream, a list of comments starts; -1
/// in other packets. As libavformat has it, which asks for a byte or two only.
qint64 commentsOffset(const QByteArray &head, int index)
{
    if (index == 0 || head.isEmpty())
        return -1;
    if (head.startsWith("OpusTags"))
        return 8;
    if (head.startsWith('\x03') || head.startsWith('\x81') || head.startsWith("OVP80\x02"))
        return 7;
    if ((head.at(0) & 0x7F) == 4)
        return 4;
    return index == 1 ? 0 : -1;
}

template<typename Ranges, typename Range>
void append(Ranges &ranges, Range range)
{
    if (!ranges.isEmpty() && ranges.last().end == range.from)
        ranges.last().end = range.end;
    else
        ranges.append(range);
}

/// The \a count bytes at \a offset of what \a pieces of \a file hold one after another.
template<typename Ranges>
QByteArray bytesOf(MediaFile &file, const Ranges &pieces, qint64 offset, qint64 count)
{
    QByteArray bytes;
    for (const auto &piece : pieces) {
        const qint64 size = piece.end - piece.from;
        if (offset < size && bytes.size() < count)
            bytes += file.bytes(piece.from + offset, std::min(size - offset, count - bytes.size()));
        offset = std::max<qint64>(offset - size, 0);
    }
    return bytes;
}

} // namespace

OggPages::OggPages(MediaFile &file, qint64 start, FileView &view) : m_file(file), m_view(view)
{
    // libavformat looks for the first page too.
    const qsizetype first = file.bytes(start, MostPageSize).indexOf("OggS");
    qint64 offset = start + std::max<qsizetype>(first, 0);
    bool isSound = true;
    for (int count = 0; isSound && !m_hasData && m_seen <= MostHeaders; ++count) {
        const auto page = pageAt(offset);
        isSound = page && count < MostPages && walkPage(*page);
        if (isSound)
            offset = page->end;
    }
    for (const Stream &stream : std::as_const(m_streams))
        leaveOutMiddle(stream);
    std::sort(m_leftOut.begin(), m_leftOut.end(),
              [](const Range &left, const Range &right) { return left.from < right.from; });
    for (const Range &range : std::as_const(m_leftOut))
        m_view.leaveOut(range.from, range.end);
    showRest(m_hasData ? offset + DataSize : offset);
}

/// Blanks everything from byte \a from on but the last page.
void OggPages::showRest(qint64 from)
{
    m_view.blank(from, m_file.size() - MostPageSize);
}

std::optional<OggPages::Page> OggPages::pageAt(qint64 offset)
{
    const QByteArray header = m_file.bytes(offset, PageHeaderSize);
    if (header.size() < PageHeaderSize || !header.startsWith(QByteArrayView("OggS\0", 5)))
        return std::nullopt;
    Page page;
    page.start = offset;
    page.isContinued = (static_cast<quint8>(header.at(5)) & Continued) != 0;
    page.serial = qFromLittleEndian<quint32>(header.constData() + 14);
    const auto count = static_cast<quint8>(header.at(26));
    page.segments = m_file.bytes(offset + PageHeaderSize, count);
    page.end = std::accumulate(page.segments.cbegin(), page.segments.cend(), offset + PageHeaderSize + count,
                               [](qint64 sum, char size) { return sum + static_cast<quint8>(size); });
    if (page.segments.size() < count || page.end > m_file.size())
        return std::nullopt;
    return page;
}

quint32 OggPages::sumOf(QByteArray page) const
{
    std::fill_n(page.begin() + PageSumOffset, SumSize, '\0');
    return av_crc(av_crc_get_table(AV_CRC_32_IEEE), 0, reinterpret_cast<const quint8 *>(page.constData()),
                  static_cast<size_t>(page.size()));
}

/// libavformat drops a page whose sum is wrong, and looks for others within it.
bool OggPages::hasRightSum(const Page &page)
{
    const QByteArray bytes = m_file.bytes(page.start, page.end - page.start);
    return bytes.size() == page.end - page.start &&
           sumOf(bytes) == qFromBigEndian<quint32>(bytes.constData() + PageSumOffset);
}

/// Takes in \a page. \return false when it must not be seen.
bool OggPages::walkPage(const Page &page)
{
    if (!m_streams.contains(page.serial) && m_streams.size() >= MostLogicalStreams)
        return false;
    Stream &stream = m_streams[page.serial];
    const bool isMiddle =
        stream.size > 0 && !page.segments.isEmpty() && page.segments.count(FullSegment) == page.segments.size();
    // Of a packet that is too long anyway, pages in the middle are not even read.
    if (!isMiddle || stream.size <= MostPacketSize) {
        if (!hasRightSum(page))
            return false;
        m_seen += page.end - page.start;
    }
    if (isMiddle)
        append(stream.middle, Range{page.start, page.end});
    // The rest of a packet whose start was not there. A packet that has a start goes on, whatever the page says.
    bool isLost = page.isContinued && stream.size == 0;
    qint64 offset = page.start + PageHeaderSize + page.segments.size();
    for (const char segment : page.segments) {
        const auto size = static_cast<quint8>(segment);
        if (!isLost)
            addPiece(stream, page, {offset, offset + size});
        offset += size;
        const bool isEnd = segment != FullSegment;
        if (isEnd && !isLost && !finishPacket(stream))
            return false;
        isLost = isLost && !isEnd;
    }
    return true;
}

void OggPages::addPiece(Stream &stream, const Page &page, Range piece)
{
    if (stream.size == 0)
        stream.firstPage = page.start;
    stream.size += piece.end - piece.from;
    append(stream.pieces, piece);
}

/// \return false when the packet that is now complete must not be seen.
bool OggPages::finishPacket(Stream &stream)
{
    const QByteArray head = bytesOf(m_file, stream.pieces, 0, KindSize);
    if (stream.packets == 0)
        stream.kind = head;
    const bool isSound = m_hasData || checkComments(stream, head);
    leaveOutMiddle(stream);
    ++stream.packets;
    const auto kind = std::find_if(StreamKinds.begin(), StreamKinds.end(),
                                   [&stream](const StreamKind &each) { return stream.kind.startsWith(each.start); });
    const bool isFlacFrame = stream.kind.startsWith(FlacStart) && head.startsWith(FlacFrame);
    m_hasData = m_hasData || isFlacFrame || (kind != StreamKinds.end() && stream.packets > kind->headers);
    stream.size = 0;
    stream.pieces.clear();
    stream.middle.clear();
    return isSound;
}

void OggPages::leaveOutMiddle(const Stream &stream)
{
    if (stream.size > MostPacketSize)
        m_leftOut += stream.middle;
}

bool OggPages::checkComments(const Stream &stream, const QByteArray &head)
{
    constexpr int MostComments = 2 * VorbisComments::MostComments;
    const qint64 offset = commentsOffset(head, stream.packets);
    if (offset < 0)
        return true;
    const VorbisComments list(
        [&](qint64 at, qint64 count) { return bytesOf(m_file, stream.pieces, offset + at, count); },
        stream.size - offset);
    m_commentCount += list.count();
    if (list.countOffset() < 0 || (list.isModest() && m_commentCount <= MostComments))
        return true;
    m_comments.append(list);
    return removeComments(stream, offset + list.countOffset());
}

/// Shows a list of comments, whose number is at byte \a countAt of the packet, as one of none.
bool OggPages::removeComments(const Stream &stream, qint64 countAt)
{
    constexpr qint64 CountSize = 4;
    // The number must lie in one page, the first one: its sum is to be made right, and the next may be left out.
    const auto page = pageAt(stream.firstPage);
    const Range first = stream.pieces.first();
    const qint64 at = first.from + countAt;
    if (!page || at + CountSize > std::min(first.end, page->end))
        return false;
    QByteArray bytes = m_file.bytes(page->start, page->end - page->start);
    if (bytes.size() < page->end - page->start)
        return false;
    std::fill_n(bytes.begin() + (at - page->start), CountSize, '\0');
    QByteArray sum(SumSize, '\0');
    qToBigEndian(sumOf(bytes), sum.data());
    m_view.replace(at, QByteArray(CountSize, '\0'));
    m_view.replace(page->start + PageSumOffset, sum);
    return true;
}

} // namespace marvola
