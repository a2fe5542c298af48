// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/TextSeal.h"

#include "platform/Crc32.h"

#include <algorithm>
#include <limits>

namespace marvola {

namespace {

constexpr QByteArrayView LineStart("#marvola=1 ");

static_assert(LineStart.size() + DecimalFieldSize + 1 + HexFieldSize + 1 + HexFieldSize + 1 == TextSeal::Size);

bool isDecimal(char byte)
{
    return byte >= '0' && byte <= '9';
}

bool isHex(char byte)
{
    return isDecimal(byte) || (byte >= 'a' && byte <= 'f');
}

} // namespace

QByteArray decimalField(quint32 number)
{
    return QByteArray::number(number).rightJustified(DecimalFieldSize, '0');
}

QByteArray hexField(quint32 number)
{
    return QByteArray::number(number, 16).rightJustified(HexFieldSize, '0');
}

std::optional<quint32> fromDecimalField(QByteArrayView digits)
{
    if (digits.size() != DecimalFieldSize || !std::all_of(digits.begin(), digits.end(), isDecimal))
        return std::nullopt;
    const qulonglong number = digits.toByteArray().toULongLong();
    if (number > std::numeric_limits<quint32>::max())
        return std::nullopt;
    return static_cast<quint32>(number);
}

std::optional<quint32> fromHexField(QByteArrayView digits)
{
    if (digits.size() != HexFieldSize || !std::all_of(digits.begin(), digits.end(), isHex))
        return std::nullopt;
    return static_cast<quint32>(digits.toByteArray().toULongLong(nullptr, 16));
}

QByteArray TextSeal::toLine() const
{
    return LineStart.toByteArray() + decimalField(length) + ' ' + hexField(check) + ' ' + hexField(replaced) + '\n';
}

std::optional<TextSeal> TextSeal::fromFile(QByteArrayView file)
{
    if (file.size() < Size || !file.startsWith(LineStart))
        return std::nullopt;
    qsizetype at = LineStart.size();
    const auto length = fromDecimalField(file.sliced(at, DecimalFieldSize));
    at += DecimalFieldSize + 1;
    const auto check = fromHexField(file.sliced(at, HexFieldSize));
    at += HexFieldSize + 1;
    const auto replaced = fromHexField(file.sliced(at, HexFieldSize));
    if (!length || !check || !replaced)
        return std::nullopt;
    const TextSeal seal{*length, *check, *replaced};
    // The separators, and whatever else could differ.
    return file.first(Size) == seal.toLine() ? std::optional(seal) : std::nullopt;
}

bool TextSeal::holdsFor(QByteArrayView file) const
{
    return static_cast<qsizetype>(length) <= file.size() - Size && crc32(file.sliced(Size, length)) == check;
}

} // namespace marvola
