// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextJournal.h"

#include "platform/ConfigSyntax.h"
#include "platform/Crc32.h"

#include <algorithm>
#include <cstring>

namespace marvola {

namespace {

/// The changed bytes are packed in pieces of this size, so that a forged line cannot unpack to more than a piece a
/// time beyond what the file itself is long.
constexpr qsizetype PieceSize = qsizetype(64) * 1024;
constexpr qsizetype MaxPackedPieceSize = 2 * PieceSize;
constexpr char PieceSeparator = ',';
constexpr auto Encoding = QByteArray::Base64Encoding | QByteArray::OmitTrailingEquals;

/// Offset, length, the three fields of the seal, and a blank behind each.
constexpr qsizetype FieldsSize = 3 * (DecimalFieldSize + 1) + 2 * (HexFieldSize + 1);

QByteArray packed(QByteArrayView bytes)
{
    QByteArray out;
    for (qsizetype at = 0; at < bytes.size(); at += PieceSize) {
        const QByteArray piece = bytes.sliced(at, std::min(PieceSize, bytes.size() - at)).toByteArray();
        if (at > 0)
            out += PieceSeparator;
        out += qCompress(piece).toBase64(Encoding);
    }
    return out;
}

std::optional<QByteArray> unpackedPiece(QByteArrayView text, qsizetype length)
{
    if (text.size() > MaxPackedPieceSize)
        return std::nullopt;
    const auto decoded =
        QByteArray::fromBase64Encoding(text.toByteArray(), Encoding | QByteArray::AbortOnBase64DecodingErrors);
    // The packed form begins with the length that it claims to unpack to.
    if (!decoded || decoded.decoded.size() < 4 || qFromBigEndian<quint32>(decoded.decoded.constData()) != length)
        return std::nullopt;
    QByteArray piece = qUncompress(decoded.decoded);
    return piece.size() == length ? std::optional(std::move(piece)) : std::nullopt;
}

std::optional<QByteArray> unpacked(QByteArrayView text, qsizetype length)
{
    QByteArray out;
    while (out.size() < length) {
        const qsizetype separator = text.indexOf(PieceSeparator);
        const QByteArrayView first = separator < 0 ? text : text.first(separator);
        const auto piece = unpackedPiece(first, std::min(PieceSize, length - out.size()));
        if (!piece)
            return std::nullopt;
        out += *piece;
        text = separator < 0 ? QByteArrayView() : text.sliced(separator + 1);
    }
    return text.isEmpty() ? std::optional(std::move(out)) : std::nullopt;
}

/// The last line that is not blank, without its line end.
QByteArrayView lastLine(QByteArrayView file)
{
    const QByteArrayView text = file.first(endOfText(file));
    const QByteArrayView line = text.endsWith('\n') ? text.chopped(1) : text;
    return line.sliced(line.lastIndexOf('\n') + 1);
}

} // namespace

TextJournal TextJournal::between(QByteArrayView before, QByteArrayView after, const TextSeal &seal)
{
    const qsizetype end = TextSeal::Size + static_cast<qsizetype>(seal.length);
    const qsizetype common = std::min(end, before.size());
    qsizetype first = std::min(TextSeal::Size, common);
    while (first < common && before[first] == after[first])
        ++first;
    qsizetype last = end;
    while (last > first && last <= before.size() && before[last - 1] == after[last - 1])
        --last;
    return {seal, first, after.sliced(first, last - first).toByteArray()};
}

QByteArray TextJournal::toLine() const
{
    const QByteArray rest = decimalField(static_cast<quint32>(offset)) + ' ' +
                            decimalField(static_cast<quint32>(changed.size())) + ' ' + decimalField(seal.length) + ' ' +
                            hexField(seal.check) + ' ' + hexField(seal.replaced) + ' ' + packed(changed);
    return Mark.toByteArray() + hexField(crc32(rest)) + ' ' + rest + '\n';
}

std::optional<TextJournal> TextJournal::fromFile(QByteArrayView file)
{
    const QByteArrayView line = lastLine(file);
    constexpr qsizetype RestAt = Mark.size() + HexFieldSize + 1;
    if (!line.startsWith(Mark) || line.size() < RestAt + FieldsSize || line[RestAt - 1] != ' ')
        return std::nullopt;
    const QByteArrayView rest = line.sliced(RestAt);
    if (fromHexField(line.sliced(Mark.size(), HexFieldSize)) != crc32(rest))
        return std::nullopt;
    constexpr qsizetype Step = DecimalFieldSize + 1;
    const auto offset = fromDecimalField(rest.first(DecimalFieldSize));
    const auto size = fromDecimalField(rest.sliced(Step, DecimalFieldSize));
    const auto length = fromDecimalField(rest.sliced(2 * Step, DecimalFieldSize));
    const auto check = fromHexField(rest.sliced(3 * Step, HexFieldSize));
    const auto replaced = fromHexField(rest.sliced(3 * Step + HexFieldSize + 1, HexFieldSize));
    if (!offset || !size || !length || !check || !replaced)
        return std::nullopt;
    // Neither the change nor the content may reach into the journal's own line.
    const qsizetype room = line.data() - file.data();
    const qsizetype end = TextSeal::Size + static_cast<qsizetype>(*length);
    if (end > room || *offset < TextSeal::Size || static_cast<qsizetype>(*offset) + *size > end)
        return std::nullopt;
    auto changed = unpacked(rest.sliced(FieldsSize), *size);
    if (!changed)
        return std::nullopt;
    return TextJournal{{*length, *check, *replaced}, *offset, std::move(*changed)};
}

std::optional<QByteArray> TextJournal::applied(QByteArrayView file) const
{
    QByteArray image = file.toByteArray();
    std::memcpy(image.data(), seal.toLine().constData(), TextSeal::Size);
    if (!changed.isEmpty())
        std::memcpy(image.data() + offset, changed.constData(), static_cast<std::size_t>(changed.size()));
    const auto end = TextSeal::Size + static_cast<qsizetype>(seal.length);
    std::fill(image.begin() + end, image.end(), '\n');
    return seal.holdsFor(image) ? std::optional(std::move(image)) : std::nullopt;
}

} // namespace marvola
