// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_FFMPEG_TEXTDECODER_H
#define MARVOLA_FFMPEG_TEXTDECODER_H

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <optional>

namespace marvola {

/// Turns the bytes of tags into text where the tag does not say, or says wrongly, how they are encoded.
///
/// Such bytes are mostly one of three things: UTF-8, the encoding of the user's language (the codec), or real Latin-1.
/// docs/ffmpeg-engine.md has the rule that tells them apart; it never guesses a codec that was not set.
class TextDecoder
{
public:
    enum class Ending {
        Whole,   ///< the bytes end where the text ends
        MayBeCut ///< the bytes fill a field of fixed length, and the last character may have been cut through
    };

    TextDecoder();

    /// \return false when Qt has no codec of this name; nothing is then decoded by a codec.
    bool setCodec(const QString &name);
    /// The name last set, whether or not there is such a codec.
    const QString &codec() const { return m_codec; }
    bool isCodecAvailable() const { return m_isAvailable; }

    /// The text of bytes that were never Unicode by the rules of their format.
    QString decode(QByteArrayView bytes, Ending ending = Ending::Whole) const;
    /// The text of bytes that are UTF-8 by the rules of their format; what is not is decoded like any other bytes.
    QString decodeUtf8(QByteArrayView bytes, Ending ending = Ending::Whole) const;

private:
    std::optional<QString> decodeByCodec(QByteArrayView bytes) const;
    QString decodeForeign(QByteArrayView bytes, Ending ending) const;

    QString m_codec;
    QByteArray m_codecName;
    bool m_isAvailable = false;
    bool m_isGbFamily = false;
};

} // namespace marvola

#endif
