// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "TextDecoder.h"

#include "GbBytes.h"

#include <QtCore/QStringDecoder>
#include <QtCore/QStringEncoder>

#include <algorithm>
#include <array>

namespace marvola {

namespace {

constexpr const char *DefaultCodec = "GBK";

/// The names of the GB family that converters go by.
constexpr std::array<const char *, 8> GbFamily = {"gbk",   "gb2312",      "gb18030", "cp936",
                                                  "ms936", "windows-936", "euc-cn",  "x-gbk"};

bool isAboveAscii(char byte)
{
    return static_cast<quint8>(byte) >= 0x80;
}

bool isAscii(QByteArrayView bytes)
{
    return std::none_of(bytes.begin(), bytes.end(), isAboveAscii);
}

/// \a bytes without the start of a UTF-8 sequence at their end that lacks the rest.
QByteArrayView withoutCutSequence(QByteArrayView bytes)
{
    constexpr qsizetype LongestCut = 3;
    for (qsizetype cut = 1; cut <= std::min(LongestCut, bytes.size()); ++cut) {
        const auto byte = static_cast<quint8>(bytes[bytes.size() - cut]);
        const bool isContinuation = (byte & 0xC0) == 0x80;
        const qsizetype wanted = byte >= 0xF0 ? 4 : (byte >= 0xE0 ? 3 : 2);
        if (!isContinuation)
            return byte >= 0xC0 && cut < wanted ? bytes.chopped(cut) : bytes;
    }
    return bytes;
}

/// Characters that no tag means: what a converter gives for bytes without a meaning of their own.
bool isSenseless(QChar character)
{
    constexpr char16_t FirstPrivate = 0xE000;
    constexpr char16_t LastPrivate = 0xF8FF;
    return character == QChar::ReplacementCharacter ||
           (character.unicode() >= FirstPrivate && character.unicode() <= LastPrivate);
}

} // namespace

TextDecoder::TextDecoder()
{
    setCodec(QString::fromLatin1(DefaultCodec));
}

bool TextDecoder::setCodec(const QString &name)
{
    m_codec = name;
    m_codecName = name.toLatin1();
    m_isAvailable = !m_codecName.isEmpty() && QStringDecoder(m_codecName.constData()).isValid();
    const QByteArray lower = m_codecName.toLower();
    m_isGbFamily = std::any_of(GbFamily.begin(), GbFamily.end(), [&](const char *each) { return lower == each; });
    return m_isAvailable;
}

QString TextDecoder::decode(QByteArrayView bytes, Ending ending) const
{
    if (isAscii(bytes))
        return QString::fromLatin1(bytes);
    const QByteArrayView whole = ending == Ending::MayBeCut ? withoutCutSequence(bytes) : bytes;
    const bool isUtf8 = !isAscii(whole) && whole.isValidUtf8();
    if (isUtf8 && !(m_isGbFamily && m_isAvailable && isGbInUtf8(whole)))
        return QString::fromUtf8(whole);
    return decodeForeign(bytes, ending);
}

QString TextDecoder::decodeUtf8(QByteArrayView bytes, Ending ending) const
{
    const QByteArrayView whole = ending == Ending::MayBeCut ? withoutCutSequence(bytes) : bytes;
    return whole.isValidUtf8() ? QString::fromUtf8(whole) : decodeForeign(bytes, ending);
}

QString TextDecoder::decodeForeign(QByteArrayView bytes, Ending ending) const
{
    if (const auto text = decodeByCodec(bytes))
        return *text;
    const bool isCut = ending == Ending::MayBeCut && isAboveAscii(bytes.back()) && !isAscii(bytes.chopped(1));
    if (const auto text = isCut ? decodeByCodec(bytes.chopped(1)) : std::nullopt)
        return *text;
    // Latin-1 has only a control character there.
    return QString::fromLatin1(bytes).replace(QChar(WindowsApostrophe), QChar(0x2019));
}

/// The text by the codec; none when the bytes are not text of that codec.
std::optional<QString> TextDecoder::decodeByCodec(QByteArrayView bytes) const
{
    if (!m_isAvailable)
        return std::nullopt;
    QStringDecoder decoder(m_codecName.constData());
    const QString text = decoder(bytes);
    if (decoder.hasError() || std::any_of(text.begin(), text.end(), isSenseless))
        return std::nullopt;
    // The decoder does not report every error (a cut last character is none to it); encoding back finds the rest.
    QStringEncoder encoder(m_codecName.constData());
    const QByteArray encoded = encoder(text);
    if (encoder.hasError() || encoded != bytes || (m_isGbFamily && isLatinInGb(bytes)))
        return std::nullopt;
    return text;
}

} // namespace marvola
