// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_CONFIGSYNTAX_H
#define MARVOLA_PLATFORM_CONFIGSYNTAX_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

#include <array>

/// How names, values and lines are spelled in a file of groups and keys. docs/formats.md holds the whole syntax.
///
/// "Raw" bytes are as they stand in the file, without blanks around them. The spelling of a text by escapeName() and
/// escapeValue() is canonical: there is one for each text, so canonical names can be compared without decoding them.
namespace marvola {

/// The longest names and values that are written, in UTF-16 units.
inline constexpr qsizetype MaxNameLength = 65'535;
inline constexpr qsizetype MaxValueLength = 16'777'215;

QByteArray escapeName(QStringView name);
QByteArray escapeValue(QStringView value);

/// The texts of raw bytes that are valid UTF-8. Escapes that are none are taken as they stand. Never null.
QString unescapeName(QByteArrayView raw);
QString unescapeValue(QByteArrayView raw);

/// The canonical spelling of a raw name: \a raw itself where it is canonical already, else \a storage, which then
/// receives it.
QByteArrayView canonicalName(QByteArrayView raw, QByteArray &storage);

enum class LineKind { Blank, Comment, Group, Entry, Unreadable };

/// One line taken apart; the views are parts of the line.
struct ConfigLine
{
    LineKind kind = LineKind::Unreadable;
    QByteArrayView name;  ///< of the group or of the key, raw
    QByteArrayView value; ///< of an entry, raw
};

/// Takes apart a line without its line end. Does not look whether it is valid UTF-8.
ConfigLine parseLine(QByteArrayView line);

/// Blanks of the syntax: spaces, tabs, carriage returns, and the NUL bytes that reserved files consist of.
constexpr bool isBlankByte(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\0';
}

/// The first bytes of some keys. They show of most lines, with one look, that they are of other keys.
class FirstBytes
{
public:
    FirstBytes();
    /// Adds that of \a key, a name in its canonical spelling.
    void add(QByteArrayView key) { m_bytes[static_cast<quint8>(key.front())] = true; }
    /// Whether a line may be an entry of one of the keys.
    bool mayBegin(QByteArrayView line) const { return !line.isEmpty() && m_bytes[static_cast<quint8>(line.front())]; }

private:
    std::array<bool, 256> m_bytes;
};

/// \a bytes without the blanks at both ends.
QByteArrayView withoutBlanks(QByteArrayView bytes);

/// Where the last line of \a bytes that is not blank ends, its line end included; 0 when there is none.
qsizetype endOfText(QByteArrayView bytes);

} // namespace marvola

#endif
