// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MediaBoxes.h"

#include "ClipTexts.h"
#include "MediaFile.h"
#include "TextDecoder.h"

#include <marvola/PlayerEngine.h>

#include <QtCore/QStringDecoder>
#include <QtCore/QtEndian>

#include <algorithm>
#include <array>

namespace marvola {

namespace {

/// Files cut into fragments have thousands of boxes, but their header comes first.
constexpr int MostBoxes = 1000;
constexpr qint64 MostItemSize = 64 * KiB;
/// A version, flags, and the language of the text that follows.
constexpr qint64 AssetHeaderSize = 6;

struct AssetBox
{
    const char *type;
    QString ClipInfo::*field;
};

/// A performer is the artist; where none is named the author is.
constexpr std::array<AssetBox, 7> AssetBoxes = {{{"titl", &ClipInfo::title},
                                                 {"perf", &ClipInfo::artist},
                                                 {"auth", &ClipInfo::artist},
                                                 {"auth", &ClipInfo::composer},
                                                 {"albm", &ClipInfo::album},
                                                 {"gnre", &ClipInfo::genre},
                                                 {"cprt", &ClipInfo::copyright}}};

/// The text of \a bytes: UTF-16 when a byte order mark says so, else UTF-8; it ends at the first zero.
QString assetText(QByteArrayView bytes, const TextDecoder &decoder)
{
    const bool isUtf16 =
        bytes.startsWith(QByteArrayView("\xFE\xFF", 2)) || bytes.startsWith(QByteArrayView("\xFF\xFE", 2));
    if (isUtf16) {
        QStringDecoder utf16(QStringDecoder::Utf16);
        const QString text = utf16(bytes);
        const qsizetype end = text.indexOf(QChar(u'\0'));
        return end < 0 ? text : text.left(end);
    }
    const auto end = std::find(bytes.begin(), bytes.end(), '\0');
    return decoder.decodeUtf8(bytes.first(end - bytes.begin()));
}

} // namespace

MediaBoxes::MediaBoxes(MediaFile &file, qint64 start) : m_file(file), m_header(find("moov", start, file.size()))
{
}

bool MediaBoxes::hasCompressedHeader() const
{
    return m_header && find("cmov", m_header->content, m_header->end);
}

void MediaBoxes::addTexts(ClipInfo &info, const TextDecoder &decoder) const
{
    const auto user = m_header ? find("udta", m_header->content, m_header->end) : std::nullopt;
    if (!user)
        return;
    for (const AssetBox &asset : AssetBoxes) {
        const auto box = find(asset.type, user->content, user->end);
        if (!box || box->end - box->content <= AssetHeaderSize)
            continue;
        const qint64 text = box->content + AssetHeaderSize;
        const QByteArray bytes = m_file.bytes(text, std::min(box->end - text, MostItemSize));
        fillText(info.*asset.field, assetText(bytes, decoder));
    }
}

/// The box at \a offset within a box that ends at \a end; none where there is none, or one that does not fit.
std::optional<MediaBoxes::Box> MediaBoxes::boxAt(qint64 offset, qint64 end) const
{
    constexpr qint64 BoxHeaderBytes = 8;
    constexpr qint64 LongHeaderSize = 16;
    const QByteArray header = m_file.bytes(offset, std::min(LongHeaderSize, end - offset));
    if (header.size() < BoxHeaderBytes)
        return std::nullopt;
    quint64 size = qFromBigEndian<quint32>(header.constData());
    qint64 content = offset + BoxHeaderBytes;
    if (size == 1 && header.size() == LongHeaderSize) {
        size = qFromBigEndian<quint64>(header.constData() + BoxHeaderBytes);
        content = offset + LongHeaderSize;
    } else if (size == 0) {
        size = static_cast<quint64>(end - offset);
    }
    const auto room = static_cast<quint64>(end - offset);
    if (size < static_cast<quint64>(content - offset) || size > room)
        return std::nullopt;
    return Box{header.mid(4, 4), content, offset + static_cast<qint64>(size)};
}

std::optional<MediaBoxes::Box> MediaBoxes::find(const char *type, qint64 from, qint64 end) const
{
    for (int count = 0; count < MostBoxes; ++count) {
        std::optional<Box> box = boxAt(from, end);
        if (!box || box->type == type)
            return box;
        from = box->end;
    }
    return std::nullopt;
}

} // namespace marvola
