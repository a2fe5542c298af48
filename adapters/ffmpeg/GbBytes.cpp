// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "GbBytes.h"

#include <algorithm>

namespace marvola {

namespace {

constexpr bool isHigh(quint8 byte)
{
    return byte >= 0x80;
}

constexpr bool isPlainLetter(quint8 byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z');
}

constexpr bool isAccentedLetter(quint8 byte)
{
    constexpr quint8 MultiplicationSign = 0xD7;
    constexpr quint8 DivisionSign = 0xF7;
    return byte >= 0xC0 && byte != MultiplicationSign && byte != DivisionSign;
}

constexpr bool isWordByte(quint8 byte)
{
    return isPlainLetter(byte) || isAccentedLetter(byte);
}

/// A sharp s is the same in words of either case.
constexpr quint8 SharpS = 0xDF;

constexpr bool isUpper(quint8 byte)
{
    return (byte >= 'A' && byte <= 'Z') || (isAccentedLetter(byte) && byte < SharpS);
}

constexpr bool isLower(quint8 byte)
{
    return isWordByte(byte) && !isUpper(byte) && byte != SharpS;
}

constexpr bool isEverydayHanzi(quint8 lead, quint8 trail)
{
    return lead >= 0xB0 && lead <= 0xD7 && trail >= 0xA1 && trail != 0xFF;
}

quint8 at(QByteArrayView bytes, qsizetype index)
{
    return index >= 0 && index < bytes.size() ? static_cast<quint8>(bytes[index]) : 0;
}

/// Whether the byte at \a index is the apostrophe of Windows within a word, as in "Don’t".
bool isApostrophe(QByteArrayView bytes, qsizetype index)
{
    return at(bytes, index) == WindowsApostrophe && isPlainLetter(at(bytes, index - 1)) &&
           isPlainLetter(at(bytes, index + 1));
}

/// "word", "WORD" or "Word".
bool keepsToOneCase(QByteArrayView word)
{
    const auto upper = [](char byte) { return isUpper(static_cast<quint8>(byte)); };
    const auto lower = [](char byte) { return isLower(static_cast<quint8>(byte)); };
    return std::none_of(word.begin() + 1, word.end(), upper) || std::none_of(word.begin(), word.end(), lower);
}

/// Whether the accented letters of \a word stand as they do in Western words: alone next to a plain letter, or two
/// between plain letters.
bool areAccentsSparse(QByteArrayView word)
{
    qsizetype end = 0;
    for (qsizetype start = 0; start < word.size(); start = end + 1) {
        for (end = start; isHigh(at(word, end)); ++end)
            ;
        const bool hasLeft = start > 0;
        const bool hasRight = end < word.size();
        const qsizetype run = end - start;
        if (run > 2 || (run == 2 && !(hasLeft && hasRight)) || (run == 1 && !(hasLeft || hasRight)))
            return false;
    }
    return true;
}

/// Whether some plain letter is one in the Chinese reading too, rather than the second half of a pair.
bool hasLetterOfItsOwn(QByteArrayView bytes)
{
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        const quint8 byte = at(bytes, index);
        if (isPlainLetter(byte))
            return true;
        index += isHigh(byte) ? 1 : 0;
    }
    return false;
}

} // namespace

bool isLatinInGb(QByteArrayView bytes)
{
    if (!hasLetterOfItsOwn(bytes))
        return false;
    qsizetype end = 0;
    for (qsizetype start = 0; start < bytes.size(); start = end + 1) {
        for (end = start; isWordByte(at(bytes, end)); ++end)
            ;
        // The byte at the end belongs to no word: a sign of Chinese if it is above 7F.
        if (isHigh(at(bytes, end)) && !isApostrophe(bytes, end))
            return false;
        const QByteArrayView word = bytes.sliced(start, end - start);
        if (!word.isEmpty() && !(keepsToOneCase(word) && areAccentsSparse(word)))
            return false;
    }
    return true;
}

bool isGbInUtf8(QByteArrayView bytes)
{
    int count = 0;
    quint8 leastLead = 0xFF;
    quint8 mostLead = 0;
    for (qsizetype index = 0; index < bytes.size(); ++index) {
        const quint8 lead = at(bytes, index);
        if (!isHigh(lead))
            continue;
        const bool isPartOfWord = isPlainLetter(at(bytes, index - 1)) || isPlainLetter(at(bytes, index + 2));
        if (isPartOfWord || !isEverydayHanzi(lead, at(bytes, index + 1)))
            return false;
        leastLead = std::min(leastLead, lead);
        mostLead = std::max(mostLead, lead);
        ++count;
        ++index;
    }
    // The letters of one alphabet share one or two lead bytes; hanzi are spread over forty.
    const bool isOneAlphabet = count > 2 && mostLead - leastLead <= 1;
    return count > 0 && !isOneAlphabet;
}

} // namespace marvola
