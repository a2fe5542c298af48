// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FileView.h"

#include "MediaFile.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <utility>

namespace marvola {

FileView::FileView(MediaFile &file, qint64 start) : m_file(file), m_start(start), m_end(file.size())
{
}

void FileView::endAt(qint64 end)
{
    m_end = std::min(end, m_file.size());
}

void FileView::replace(qint64 at, const QByteArray &bytes)
{
    m_replacements.insert(at, bytes);
    m_longestReplacement = std::max<qint64>(m_longestReplacement, bytes.size());
}

void FileView::blank(qint64 from, qint64 end)
{
    if (from < end)
        m_blanks.append({from, end});
}

void FileView::leaveOut(qint64 from, qint64 end)
{
    if (from < end)
        m_leftOut.append({from, end});
}

void FileView::setCover(Cover cover, qint64 reach)
{
    m_cover = std::move(cover);
    m_reach = reach;
}

qint64 FileView::size() const
{
    qint64 size = std::max<qint64>(m_end - m_start, 0);
    for (const Piece &piece : m_leftOut)
        size -= std::max<qint64>(std::min(piece.end, m_end) - piece.from, 0);
    return size;
}

qint64 FileView::read(qint64 position, char *buffer, qint64 count)
{
    // Past the end is a place to be, as in any file; reading there gives nothing.
    constexpr qint64 MostPosition = std::numeric_limits<qint64>::max() / 4;
    if (position < 0 || position > MostPosition)
        return position < 0 ? -1 : 0;
    qint64 offset = m_start + position;
    qint64 limit = m_end;
    for (const Piece &piece : std::as_const(m_leftOut)) {
        if (offset < piece.from) {
            limit = std::min(limit, piece.from);
            break;
        }
        offset += piece.end - piece.from;
    }
    const auto next =
        std::find_if(m_blanks.cbegin(), m_blanks.cend(), [offset](const Piece &piece) { return offset < piece.end; });
    const bool isBlank = next != m_blanks.cend() && offset >= next->from;
    if (next != m_blanks.cend())
        limit = std::min(limit, isBlank ? next->end : next->from);
    count = std::clamp<qint64>(limit - offset, 0, count);
    if (!isBlank)
        return readFile(offset, buffer, count);
    if (isExhausted())
        return -1;
    std::memset(buffer, 0, static_cast<size_t>(count));
    return count;
}

bool FileView::isExhausted() const
{
    return m_file.isExhausted();
}

qint64 FileView::readFile(qint64 offset, char *buffer, qint64 count)
{
    qint64 got = 0;
    if (m_cover && count > 0) {
        const qint64 from = std::max<qint64>(offset - m_reach, 0);
        QByteArray window(offset + count + m_reach - from, Qt::Uninitialized);
        window.truncate(std::max<qint64>(m_file.read(from, window.data(), window.size()), 0));
        got = std::min<qint64>(window.size() - (offset - from), count);
        // The file does not end here, so this is a broken medium or the end of the budget.
        if (got <= 0)
            return -1;
        m_cover(from, window);
        std::memcpy(buffer, window.constData() + (offset - from), static_cast<size_t>(got));
    } else {
        got = m_file.read(offset, buffer, count);
    }
    applyReplacements(offset, buffer, got);
    return got;
}

void FileView::applyReplacements(qint64 offset, char *buffer, qint64 count) const
{
    auto each = m_replacements.lowerBound(offset - m_longestReplacement);
    for (; each != m_replacements.cend() && each.key() < offset + count; ++each) {
        const qint64 from = std::max(each.key(), offset);
        const qint64 end = std::min(each.key() + each->size(), offset + count);
        if (from < end)
            std::memcpy(buffer + (from - offset), each->constData() + (from - each.key()),
                        static_cast<size_t>(end - from));
    }
}

} // namespace marvola
