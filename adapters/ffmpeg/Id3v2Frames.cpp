// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Id3v2Frames.h"

#include "MediaFile.h"

#include <algorithm>
#include <array>
#include <functional>

namespace marvola {

namespace {

/// Gives the bytes at a place, fewer where they end.
using Source = std::function<QByteArray(qint64 offset, qint64 count)>;

constexpr qint64 TagHeaderSize = 10;
constexpr quint8 UnsynchronisedTag = 0x80;
constexpr quint8 ExtendedHeader = 0x40;
constexpr quint8 Footer = 0x10;
/// A text that is longer is none that anybody reads.
constexpr qint64 MostFrameSize = 64 * KiB;
constexpr qint64 MostFrameTextSize = 512 * KiB;
constexpr int MostFrames = 2000;
/// A tag whose frames cannot be told apart without reading it all: this much of it is looked at.
constexpr qint64 MostUnsynchronisedSize = 512 * KiB;

/// A text frame's name in versions 2.3 and 2.4, and in 2.2.
struct FrameName
{
    const char *full;
    const char *brief;
};
constexpr std::array<FrameName, 7> TextFrames = {{{"TIT2", "TT2"},
                                                  {"TPE1", "TP1"},
                                                  {"TALB", "TAL"},
                                                  {"TCON", "TCO"},
                                                  {"TCOM", "TCM"},
                                                  {"TCOP", "TCR"},
                                                  {"COMM", "COM"}}};

/// What the second flag byte of a frame's header says, by the tag's version.
struct FrameFlags
{
    quint8 unreadable = 0; ///< compressed or encrypted
    quint8 grouped = 0;    ///< a byte comes first
    quint8 unsynchronised = 0;
    quint8 lengthTold = 0; ///< four bytes come first
};

constexpr FrameFlags flagsOf(int version)
{
    if (version == 3)
        return {0x80 | 0x40, 0x20, 0, 0};
    return version == 4 ? FrameFlags{0x08 | 0x04, 0x40, 0x02, 0x01} : FrameFlags{};
}

quint8 at(const QByteArray &bytes, qsizetype index)
{
    return static_cast<quint8>(bytes.at(index));
}

qint64 plainSize(const QByteArray &bytes, qsizetype from, int count)
{
    qint64 size = 0;
    for (int index = 0; index < count; ++index)
        size = (size << 8) | at(bytes, from + index);
    return size;
}

/// Seven bits a byte; -1 when an eighth is set.
qint64 synchsafeSize(const QByteArray &bytes, qsizetype from)
{
    qint64 size = 0;
    for (int index = 0; index < 4; ++index) {
        if (at(bytes, from + index) & 0x80)
            return -1;
        size = (size << 7) | at(bytes, from + index);
    }
    return size;
}

/// Takes out the zeros that were put after each FF so that no decoder mistakes a tag for audio.
QByteArray resynchronised(QByteArray bytes)
{
    return bytes.replace(QByteArray("\xFF\x00", 2), QByteArray("\xFF", 1));
}

bool isFrameId(const QByteArray &id)
{
    return std::all_of(id.begin(), id.end(),
                       [](char each) { return (each >= 'A' && each <= 'Z') || (each >= '0' && each <= '9'); });
}

/// Walks over the frames of one tag.
class FrameWalk
{
public:
    FrameWalk(Source source, int version, qint64 from, qint64 end)
        : m_source(std::move(source)), m_version(version), m_position(from), m_end(end)
    {
    }

    QList<Id3v2Frame> textFrames()
    {
        QList<Id3v2Frame> frames;
        qint64 total = 0;
        for (int count = 0; count < MostFrames; ++count) {
            const QByteArray id = frameIdAt(m_position);
            const QByteArray header = id.isEmpty() ? QByteArray() : m_source(m_position, headerSize());
            if (header.size() < headerSize())
                break;
            const qint64 size = contentSize(header);
            const QByteArray name = fullName(id);
            if (!name.isEmpty() && size <= MostFrameSize && total + size <= MostFrameTextSize) {
                total += size;
                addFrame(frames, name, header, m_source(m_position + headerSize(), size));
            }
            m_position += headerSize() + size;
        }
        return frames;
    }

    qint64 position() const { return std::min(m_position, m_end); }

private:
    qint64 headerSize() const { return m_version == 2 ? 6 : 10; }
    qint64 idSize() const { return m_version == 2 ? 3 : 4; }

    /// The name of the frame at \a offset; empty in padding, past the end and where there is no frame.
    QByteArray frameIdAt(qint64 offset) const
    {
        if (offset + headerSize() > m_end)
            return {};
        const QByteArray id = m_source(offset, idSize());
        return id.size() == idSize() && isFrameId(id) ? id : QByteArray();
    }

    qint64 contentSize(const QByteArray &header) const
    {
        if (m_version == 2)
            return plainSize(header, 3, 3);
        const qint64 plain = plainSize(header, 4, 4);
        const qint64 safe = synchsafeSize(header, 4);
        if (m_version == 3 || safe < 0 || safe == plain)
            return plain;
        // Some writers of version 2.4 wrote sizes as 2.3 has them; then only that reading leads to another frame.
        return !isFrameSize(safe) && isFrameSize(plain) ? plain : safe;
    }

    /// Whether a frame of \a size at the present place is followed by another, by padding or by the end of the tag.
    bool isFrameSize(qint64 size) const
    {
        const qint64 next = m_position + headerSize() + size;
        if (next >= m_end)
            return next == m_end;
        return !frameIdAt(next).isEmpty() || m_source(next, 1) == QByteArray(1, '\0');
    }

    static QByteArray fullName(const QByteArray &id)
    {
        const auto name = std::find_if(TextFrames.begin(), TextFrames.end(),
                                       [&id](const FrameName &each) { return id == each.full || id == each.brief; });
        return name == TextFrames.end() ? QByteArray() : QByteArray(name->full);
    }

    void addFrame(QList<Id3v2Frame> &frames, const QByteArray &name, const QByteArray &header, QByteArray content) const
    {
        const FrameFlags known = flagsOf(m_version);
        const quint8 flags = m_version == 2 ? 0 : at(header, 9);
        if (flags & known.unreadable)
            return;
        content.remove(0, (flags & known.grouped ? 1 : 0) + (flags & known.lengthTold ? 4 : 0));
        if (flags & known.unsynchronised)
            content = resynchronised(content);
        if (!content.isEmpty())
            frames.append({name, content});
    }

    Source m_source;
    int m_version;
    qint64 m_position;
    qint64 m_end;
};

/// How long the extended header at \a offset is.
qint64 extendedHeaderSize(const Source &source, qint64 offset, int version)
{
    const QByteArray size = source(offset, 4);
    if (size.size() < 4)
        return 0;
    // Version 2.3 does not count the size's own four bytes, 2.4 does.
    return version == 3 ? plainSize(size, 0, 4) + 4 : std::max<qint64>(synchsafeSize(size, 0), 0);
}

} // namespace

std::optional<Id3v2Tag> readId3v2(MediaFile &file, qint64 offset)
{
    const QByteArray header = file.bytes(offset, TagHeaderSize);
    if (header.size() < TagHeaderSize || !header.startsWith("ID3") || at(header, 3) == 0xFF || at(header, 4) == 0xFF)
        return std::nullopt;
    const qint64 size = synchsafeSize(header, 6);
    if (size < 0)
        return std::nullopt;
    const int version = at(header, 3);
    const quint8 flags = at(header, 5);
    qint64 start = offset + TagHeaderSize;
    const qint64 end = start + size + (flags & Footer ? TagHeaderSize : 0);
    qint64 framesEnd = std::min(start + size, file.size());
    if (version < 2 || version > 4)
        return Id3v2Tag{{}, end};

    Source source = [&file](qint64 from, qint64 count) { return file.bytes(from, count); };
    const bool isInMemory = version < 4 && (flags & UnsynchronisedTag);
    if (isInMemory) {
        // The frames' sizes do not count the zeros put in, so no frame can be passed over unread.
        const QByteArray content =
            resynchronised(file.bytes(start, std::min(framesEnd - start, MostUnsynchronisedSize)));
        source = [content](qint64 from, qint64 count) { return content.mid(from, count); };
        start = 0;
        framesEnd = content.size();
    }
    if (version > 2 && (flags & ExtendedHeader))
        start += extendedHeaderSize(source, start, version);
    FrameWalk walk(source, version, start, framesEnd);
    const QList<Id3v2Frame> frames = walk.textFrames();
    return Id3v2Tag{frames, end > file.size() && !isInMemory ? walk.position() : end};
}

} // namespace marvola
