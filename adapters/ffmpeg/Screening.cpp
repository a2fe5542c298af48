// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Screening.h"

#include "FlacBlocks.h"
#include "MarkCovers.h"
#include "MediaFile.h"
#include "MovieTables.h"
#include "OggPages.h"
#include "Signature.h"

#include <QtCore/QtEndian>

namespace marvola {

Screening::Screening(MediaFile &file, qint64 start, const AVInputFormat *format) : m_file(file), m_view(file, start)
{
    m_view.setCover(markCover(format, file.bytes(start, SignatureSize)), MarkReach);
    screen(start, format);
}

void Screening::screen(qint64 start, const AVInputFormat *format)
{
    if (isFormat(format, "mov")) {
        hideBoxes(start);
    } else if (isFormat(format, "matroska")) {
        m_elements.emplace(m_file, m_view);
        m_view.setCover([this](qint64 offset, QByteArray &window) { m_elements->cover(offset, window); },
                        MatroskaElements::Reach);
    } else if (isFormat(format, "ogg")) {
        const OggPages pages(m_file, start, m_view);
        m_comments = pages.comments();
    } else if (isFormat(format, "flac")) {
        hideFlacBlocks(m_file, start, m_view, m_comments);
    } else if (isFormat(format, "ape")) {
        shortenSeekTable(start);
    }
}

void Screening::addTexts(ClipInfo &info, const TextDecoder &decoder) const
{
    for (const VorbisComments &list : m_comments)
        list.addTexts(info, decoder);
}

void Screening::hideBoxes(qint64 start)
{
    const MovieTables tables(m_file, start);
    for (const qint64 type : tables.hiddenTypes())
        m_view.replace(type, "skip");
    m_view.endAt(tables.end());
}

/// libavformat takes a dozen times the memory of the table that tells where the frames of Monkey's Audio are. What is
/// shortened has a length of days.
void Screening::shortenSeekTable(qint64 start)
{
    constexpr quint32 MostFrames = 500'000;
    constexpr qint64 VersionOffset = 4;
    constexpr quint16 DescriptorVersion = 3980;
    constexpr qint64 DescriptorSizeOffset = 8;
    constexpr qint64 DescriptorSize = 52;
    constexpr qint64 FramesOffset = 12;
    constexpr qint64 OldFramesOffset = 24;
    const auto number = [this](qint64 at) {
        const QByteArray bytes = m_file.bytes(at, 4);
        return bytes.size() == 4 ? qFromLittleEndian<quint32>(bytes.constData()) : 0;
    };
    qint64 at = start + OldFramesOffset;
    if ((number(start + VersionOffset) & 0xFFFF) >= DescriptorVersion)
        at = start + std::max<qint64>(number(start + DescriptorSizeOffset), DescriptorSize) + FramesOffset;
    if (number(at) <= MostFrames)
        return;
    QByteArray most(4, '\0');
    qToLittleEndian(MostFrames, most.data());
    m_view.replace(at, most);
}

} // namespace marvola
