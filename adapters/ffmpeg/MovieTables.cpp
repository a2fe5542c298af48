// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MovieTables.h"

#include "MediaFile.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <array>
#include <limits>

namespace marvola {

namespace {

/// Entries that an index may have in all tracks together, at 24 bytes each: six hours of music with an edit.
constexpr qint64 MostEntries = 2'000'000;
constexpr qint64 Excess = MostEntries + 1;
constexpr int MostTableBoxes = 20'000;
/// libavformat gives up the whole file where there are more.
constexpr int MostLevels = 10;
constexpr qint64 BoxHeaderSize = 8;
constexpr qint64 LongHeaderSize = 16;
constexpr qint64 TypeOffset = 4;

/// The number that the four letters of a type make.
constexpr quint32 typeOf(const char (&letters)[5])
{
    quint32 type = 0;
    for (int i = 0; i < 4; ++i)
        type = type << 8 | static_cast<quint8>(letters[i]);
    return type;
}

constexpr std::array Containers = {typeOf("moov"), typeOf("trak"), typeOf("mdia"), typeOf("minf"), typeOf("stbl"),
                                   typeOf("dinf"), typeOf("edts"), typeOf("mvex"), typeOf("tref"), typeOf("udta"),
                                   typeOf("ilst"), typeOf("meta"), typeOf("wave"), typeOf("sinf"), typeOf("schi"),
                                   typeOf("gmhd"), typeOf("traf"), typeOf("iprp"), typeOf("ipco")};
constexpr std::array Tables = {typeOf("stsz"), typeOf("stz2"), typeOf("stts"), typeOf("stsc"),
                               typeOf("stco"), typeOf("co64"), typeOf("ctts"), typeOf("stss"),
                               typeOf("stps"), typeOf("elst"), typeOf("sidx")};
/// What is never needed here: how to decrypt samples, how they depend on one another, fragments, a header of any size
/// in disguise, files that are referred to, pictures.
constexpr std::array Needless = {typeOf("senc"), typeOf("saiz"), typeOf("saio"), typeOf("sdtp"),
                                 typeOf("sbgp"), typeOf("sgpd"), typeOf("moof"), typeOf("trun"),
                                 typeOf("cmov"), typeOf("dref"), typeOf("covr")};
/// Boxes in which every box that is not known otherwise is a text.
constexpr std::array TextLists = {typeOf("udta"), typeOf("ilst")};
/// libavformat looks through all texts for each one. There is one for each piece of a long recording at the most.
constexpr int MostMovieTexts = 2000;
/// It fills with zeros what a text says that it needs before it reads any of it.
constexpr qint64 MostMovieTextSize = 1 * MiB;

template<std::size_t Size>
bool isAmong(quint32 type, const std::array<quint32, Size> &types)
{
    return std::find(types.begin(), types.end(), type) != types.end();
}

} // namespace

MovieTables::MovieTables(MediaFile &file, qint64 start) : m_file(file), m_end(file.size())
{
    walkFile(start);
    if (m_cost > MostEntries)
        m_hidden += m_tables;
    std::sort(m_hidden.begin(), m_hidden.end());
}

void MovieTables::walkFile(qint64 start)
{
    bool hasHeader = false;
    for (qint64 offset = start; m_end - offset >= BoxHeaderSize;) {
        const auto box = boxAt(offset, m_end);
        if (!box || (hasHeader && box->type == typeOf("moof")) || ++m_boxes > MostTableBoxes) {
            m_end = std::min(m_end, offset);
            return;
        }
        // libavformat looks for a lost header in free space.
        const QByteArray inner = m_file.bytes(box->content + 4, 4);
        if ((box->type == typeOf("free") || box->type == typeOf("hoov")) && (inner == "mvhd" || inner == "cmov"))
            walk(*box, box->content, 1);
        hasHeader = hasHeader || box->type == typeOf("moov");
        enter(*box, 0, 0);
        offset = box->end;
    }
}

void MovieTables::walk(const Box &around, qint64 from, int level)
{
    while (around.end - from >= BoxHeaderSize) {
        const auto box = boxAt(from, around.end);
        if (!box)
            return;
        if (++m_boxes > MostTableBoxes) {
            refuse();
            return;
        }
        enter(*box, around.type, level);
        from = box->end;
    }
}

void MovieTables::enter(const Box &box, quint32 around, int level)
{
    const bool isContainer = isAmong(box.type, Containers);
    if (isAmong(box.type, Tables))
        count(box);
    else if (isAmong(box.type, Needless) || (isContainer && level >= MostLevels) || isHeavyText(box, around))
        m_hidden.append(box.start + TypeOffset);
    else if (box.type == typeOf("stsd"))
        searchEntries(box);
    else if (isContainer) {
        m_tracks += box.type == typeOf("trak") ? 1 : 0;
        walk(box, box.type == typeOf("meta") ? metaContent(box) : box.content, level + 1);
    }
}

/// Whether \a box is a text that is too long, or one too many.
bool MovieTables::isHeavyText(const Box &box, quint32 around)
{
    const bool isText = (isAmong(around, TextLists) && !isAmong(box.type, Containers)) || box.type == typeOf("uuid");
    return isText && (++m_texts > MostMovieTexts || box.end - box.content > MostMovieTextSize);
}

void MovieTables::count(const Box &box)
{
    m_tables.append(box.start + TypeOffset);
    if (box.type == typeOf("stsz") || box.type == typeOf("stz2")) {
        const qint64 samples = numberAt(box.content + 8);
        m_mostSamples = std::max(m_mostSamples, samples);
        addCost(samples, m_mostEdits + 1);
    } else if (box.type == typeOf("elst")) {
        // Every edit may play, and so list, all samples once more.
        const qint64 edits = numberAt(box.content + 4);
        m_mostEdits = std::max(m_mostEdits, edits);
        addCost(edits, m_mostSamples);
    } else if (box.type == typeOf("sidx")) {
        constexpr qint64 ReferenceSize = 12;
        constexpr qint64 MostReferences = 0xFFFF;
        addCost(std::min((box.end - box.start) / ReferenceSize, MostReferences), std::max<qint64>(m_tracks, 1));
    } else if (box.type == typeOf("stts") && numberAt(box.content + 4) == 1) {
        // Raw audio, whose index follows from the chunks instead. A length below zero is made one.
        const qint64 length = numberAt(box.content + 12);
        const bool isRaw = length == 1 || length > std::numeric_limits<qint32>::max();
        addCost(isRaw ? Excess : 0, 1);
    }
}

/// The fields of a description end where its format says, and boxes follow; a table among them has no business there.
void MovieTables::searchEntries(const Box &box)
{
    constexpr qint64 MostDescriptionSize = 1 * MiB;
    if (box.end - box.content > MostDescriptionSize) {
        refuse();
        return;
    }
    const QByteArray content = m_file.bytes(box.content, box.end - box.content);
    for (qsizetype at = 0; at + 4 <= content.size(); ++at) {
        const auto type = qFromBigEndian<quint32>(content.constData() + at);
        if (isAmong(type, Tables) || isAmong(type, Needless))
            m_hidden.append(box.content + at);
    }
}

/// Where the boxes within \a box, a "meta", start: at its "hdlr", before which a version may stand or not.
qint64 MovieTables::metaContent(const Box &box) const
{
    constexpr qint64 MostSearched = 64 * KiB;
    const QByteArray content = m_file.bytes(box.content, std::min(box.end - box.content, MostSearched));
    for (qsizetype at = 4; at + 4 <= content.size(); at += 4) {
        if (content.mid(at, 4) == "hdlr")
            return box.content + at - TypeOffset;
    }
    return box.content;
}

std::optional<MovieTables::Box> MovieTables::boxAt(qint64 offset, qint64 end) const
{
    const QByteArray header = m_file.bytes(offset, LongHeaderSize);
    if (header.size() < BoxHeaderSize)
        return std::nullopt;
    qint64 size = numberAt(offset);
    qint64 headerSize = BoxHeaderSize;
    if (size == 1 && header.size() == LongHeaderSize && end - offset >= LongHeaderSize) {
        size = qFromBigEndian<qint64>(header.constData() + BoxHeaderSize);
        headerSize = LongHeaderSize;
    } else if (size == 0) {
        size = end - offset;
    }
    if (size < headerSize)
        return std::nullopt;
    return Box{qFromBigEndian<quint32>(header.constData() + TypeOffset), offset, offset + headerSize,
               offset + std::min(size, end - offset)};
}

qint64 MovieTables::numberAt(qint64 offset) const
{
    const QByteArray bytes = m_file.bytes(offset, 4);
    return bytes.size() == 4 ? qFromBigEndian<quint32>(bytes.constData()) : 0;
}

void MovieTables::addCost(qint64 entries, qint64 times)
{
    qint64 product = 0;
    const bool isTooMuch = __builtin_mul_overflow(entries, times, &product) || product > MostEntries;
    m_cost = std::min(m_cost + (isTooMuch ? Excess : product), Excess);
}

/// Too much to have a look at; nothing of the file is to be seen.
void MovieTables::refuse()
{
    m_end = 0;
}

} // namespace marvola
