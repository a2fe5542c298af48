// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_TEXTSEAL_H
#define MARVOLA_PLATFORM_TEXTSEAL_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>

#include <optional>

namespace marvola {

/// The first line of a sealed text file: how long its content is, the content's check, and which file it replaced.
///
/// The line is a comment to every reader of such files: it begins with "#" for those that know comments by it, and
/// holds a "=" for those that do not.
struct TextSeal
{
    quint32 length = 0;   ///< bytes of content, which begins behind the line
    quint32 check = 0;    ///< CRC-32 of the content
    quint32 replaced = 0; ///< identity of the file that was replaced

    /// The length of the line, its line end included.
    static constexpr qsizetype Size = 40;
    /// What the line begins with, whatever the version.
    static constexpr QByteArrayView Mark{"#marvola="};

    QByteArray toLine() const;
    /// The seal that \a file begins with; nothing when the line is not exactly as toLine() makes it.
    static std::optional<TextSeal> fromFile(QByteArrayView file);
    /// Whether \a file holds the content that the seal speaks of, behind the seal's line.
    bool holdsFor(QByteArrayView file) const;
};

/// Fixed-width numbers of the seal and of the journal; a text that is not all digits of the kind gives nothing.
QByteArray decimalField(quint32 number);
QByteArray hexField(quint32 number);
std::optional<quint32> fromDecimalField(QByteArrayView digits);
std::optional<quint32> fromHexField(QByteArrayView digits);
inline constexpr qsizetype DecimalFieldSize = 10;
inline constexpr qsizetype HexFieldSize = 8;

} // namespace marvola

#endif
