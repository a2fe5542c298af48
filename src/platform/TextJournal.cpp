// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextJournal.h"

#include "platform/ConfigSyntax.h"
#include "platform/Crc32.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace marvola {

namespace {

constexpr auto Encoding = QByteArray::Base64Encoding | QByteArray::OmitTrailingEquals;

/// Offset, length, the three fields of the seal, and a blank behind each.
constexpr qsizetype FieldsSize = 3 * (DecimalFieldSize + 1) + 2 * (HexFieldSize + 1);

constexpr qsizetype encodedSize(qsizetype length)
{
    return (length * 4 + 2) / 3;
}

std::optional<QByteArray> decoded(QByteArrayView text, qsizetype length)
{
    if (text.size() != encodedSize(length))
        return std::nullopt;
    const QByteArray encoded = QByteArray::fromRawData(text.data(), text.size());
    auto result = QByteArray::fromBase64Encoding(encoded, Encoding | QByteArray::AbortOnBase64DecodingErrors);
    return result && result.decoded.size() == length ? std::optional(std::move(result.decoded)) : std::nullopt;
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
                            hexField(seal.check) + ' ' + hexField(seal.replaced) + ' ' + changed.toBase64(Encoding);
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
    auto changed = decoded(rest.sliced(FieldsSize), *size);
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
