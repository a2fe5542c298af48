// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/ConfigSyntax.h"

#include <algorithm>
#include <array>

namespace marvola {

namespace {

constexpr QByteArrayView EmptyName("%");
constexpr char16_t ByteOrderUnit = 0xFEFF;

constexpr bool isControl(char16_t unit)
{
    return unit < 0x20 || unit == 0x7F;
}

/// Characters that some reader of such files takes for a separator, a comment or an escape in a name.
constexpr bool isNameSpecial(char16_t unit)
{
    for (const char16_t special : u"%=[]:\\#;\"") {
        if (unit == special)
            return true;
    }
    return isControl(unit);
}

/// The semicolon is among them because some readers begin a comment at it, also inside a value.
constexpr bool isValueSpecial(char16_t unit)
{
    return unit == u'\\' || unit == u'"' || unit == u';' || isControl(unit);
}

template<typename Predicate>
constexpr std::array<bool, 256> plainBytes(Predicate isSpecial)
{
    std::array<bool, 256> plain{};
    for (std::size_t byte = 0; byte < 0x80; ++byte)
        plain[byte] = !isSpecial(static_cast<char16_t>(byte));
    return plain;
}

constexpr std::array<bool, 256> PlainNameBytes = plainBytes(isNameSpecial);
constexpr std::array<bool, 256> PlainValueBytes = plainBytes(isValueSpecial);

/// Whether \a text is spelled as itself: plain ASCII without blanks at its ends.
bool isPlain(QStringView text, const std::array<bool, 256> &plain)
{
    if (text.isEmpty() || text.front() == u' ' || text.back() == u' ')
        return false;
    return std::all_of(text.begin(), text.end(),
                       [&plain](QChar unit) { return unit.unicode() < 0x80 && plain[unit.unicode()]; });
}

/// Whether the unit cannot stand in UTF-8 text as itself at that place: half of a surrogate pair, a blank at an end
/// (readers trim them), or a byte order mark (decoders drop it).
bool isLostInPlace(QStringView text, qsizetype at)
{
    const QChar unit = text[at];
    if (unit.isHighSurrogate())
        return at + 1 == text.size() || !text[at + 1].isLowSurrogate();
    if (unit.isLowSurrogate())
        return at == 0 || !text[at - 1].isHighSurrogate();
    if (unit.unicode() == ByteOrderUnit)
        return true;
    return (at == 0 || at + 1 == text.size()) && unit.isSpace();
}

void appendHex(QString &out, char16_t unit, int digits, const char *alphabet)
{
    for (int shift = (digits - 1) * 4; shift >= 0; shift -= 4)
        out += QLatin1Char(alphabet[(unit >> shift) & 0xF]);
}

void appendNameEscape(QString &out, char16_t unit)
{
    const bool isShort = unit < 0x100;
    out += isShort ? QLatin1String("%") : QLatin1String("%U");
    appendHex(out, unit, isShort ? 2 : 4, "0123456789ABCDEF");
}

int hexDigit(QChar unit)
{
    const char16_t code = unit.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    if (code >= u'a' && code <= u'f')
        return code - u'a' + 10;
    if (code >= u'A' && code <= u'F')
        return code - u'A' + 10;
    return -1;
}

/// The letter that follows the backslash for \a unit, 0 when it has none.
constexpr char shortEscape(char16_t unit)
{
    switch (unit) {
    case u'\\':
        return '\\';
    case u'"':
        return '"';
    case u'\n':
        return 'n';
    case u'\r':
        return 'r';
    case u'\t':
        return 't';
    default:
        return 0;
    }
}

/// The reverse of shortEscape(); 0 when \a letter stands for none.
constexpr char16_t shortUnescape(char16_t letter)
{
    for (const char16_t unit : {u'\\', u'"', u'\n', u'\r', u'\t'}) {
        if (static_cast<char16_t>(shortEscape(unit)) == letter)
            return unit;
    }
    return 0;
}

/// Reads \a digits hexadecimal digits at \a at; -1 when there are not that many.
int readHex(QStringView text, qsizetype at, int digits)
{
    if (text.size() - at < digits)
        return -1;
    int code = 0;
    for (const QChar unit : text.mid(at, digits)) {
        const int digit = hexDigit(unit);
        if (digit < 0)
            return -1;
        code = code * 16 + digit;
    }
    return code;
}

QString emptyText()
{
    return QStringLiteral("");
}

struct Escape
{
    int code = -1;        ///< the unit it stands for; negative when it is no escape
    qsizetype length = 1; ///< how many units it takes
};

Escape nameEscapeAt(QStringView text, qsizetype at)
{
    if (at + 1 < text.size() && text[at + 1] == u'U')
        return {readHex(text, at + 2, 4), 6};
    return {readHex(text, at + 1, 2), 3};
}

Escape valueEscapeAt(QStringView text, qsizetype at)
{
    if (at + 1 == text.size())
        return {};
    if (text[at + 1] == u'x')
        return {readHex(text, at + 2, 4), 6};
    const char16_t unit = shortUnescape(text[at + 1].unicode());
    return {unit != 0 ? static_cast<int>(unit) : -1, 2};
}

template<typename EscapeAt>
QString unescape(QByteArrayView raw, QChar mark, EscapeAt escapeAt)
{
    if (raw.isEmpty())
        return emptyText();
    QString text = QString::fromUtf8(raw);
    if (!text.contains(mark))
        return text;
    QString out;
    out.reserve(text.size());
    for (qsizetype at = 0; at < text.size();) {
        const Escape escape = text[at] == mark ? escapeAt(text, at) : Escape();
        out += escape.code < 0 ? text[at] : QChar(static_cast<char16_t>(escape.code));
        at += escape.code < 0 ? 1 : escape.length;
    }
    return out;
}

} // namespace

QByteArray escapeName(QStringView name)
{
    if (isPlain(name, PlainNameBytes))
        return name.toLatin1();
    if (name.isEmpty())
        return EmptyName.toByteArray();
    QString out;
    for (qsizetype at = 0; at < name.size(); ++at) {
        const char16_t unit = name[at].unicode();
        if (isNameSpecial(unit) || isLostInPlace(name, at))
            appendNameEscape(out, unit);
        else
            out += name[at];
    }
    return out.toUtf8();
}

QByteArray escapeValue(QStringView value)
{
    if (isPlain(value, PlainValueBytes))
        return value.toLatin1();
    QString out;
    out.reserve(value.size());
    bool afterHex = false;
    for (qsizetype at = 0; at < value.size(); ++at) {
        const QChar unit = value[at];
        const char letter = shortEscape(unit.unicode());
        // Some readers go on taking hexadecimal digits after the fourth, so a digit that follows is escaped as well.
        const bool isHex = letter == 0 && (isValueSpecial(unit.unicode()) || isLostInPlace(value, at) ||
                                           (afterHex && hexDigit(unit) >= 0));
        if (letter != 0) {
            out += QLatin1Char('\\');
            out += QLatin1Char(letter);
        } else if (isHex) {
            out += QLatin1String("\\x");
            appendHex(out, unit.unicode(), 4, "0123456789abcdef");
        } else {
            out += unit;
        }
        afterHex = isHex;
    }
    return out.toUtf8();
}

QString unescapeName(QByteArrayView raw)
{
    return raw == EmptyName ? emptyText() : unescape(raw, u'%', nameEscapeAt);
}

QString unescapeValue(QByteArrayView raw)
{
    return unescape(raw, u'\\', valueEscapeAt);
}

QByteArrayView canonicalName(QByteArrayView raw, QByteArray &storage)
{
    const bool isPlainAscii =
        std::all_of(raw.begin(), raw.end(), [](char byte) { return PlainNameBytes[static_cast<quint8>(byte)]; });
    if (isPlainAscii && !raw.isEmpty())
        return raw;
    storage = escapeName(unescapeName(raw));
    return storage == raw ? raw : QByteArrayView(storage);
}

/// A blank may precede any name, and an escape may stand for any byte; other bytes are spelled as themselves.
FirstBytes::FirstBytes()
{
    for (std::size_t byte = 0; byte < m_bytes.size(); ++byte)
        m_bytes[byte] = !PlainNameBytes[byte] || isBlankByte(static_cast<char>(byte));
}

QByteArrayView withoutBlanks(QByteArrayView bytes)
{
    qsizetype begin = 0;
    qsizetype end = bytes.size();
    while (end > begin && isBlankByte(bytes[end - 1]))
        --end;
    while (begin < end && isBlankByte(bytes[begin]))
        ++begin;
    return bytes.sliced(begin, end - begin);
}

ConfigLine parseLine(QByteArrayView line)
{
    const QByteArrayView text = withoutBlanks(line);
    if (text.isEmpty())
        return {LineKind::Blank, {}, {}};
    if (text.front() == '#' || text.front() == ';')
        return {LineKind::Comment, {}, {}};
    if (text.front() == '[') {
        const qsizetype close = text.indexOf(']');
        if (close < 0)
            return {};
        return {LineKind::Group, withoutBlanks(text.sliced(1, close - 1)), {}};
    }
    const qsizetype equals = text.indexOf('=');
    if (equals < 0)
        return {};
    return {LineKind::Entry, withoutBlanks(text.first(equals)), withoutBlanks(text.sliced(equals + 1))};
}

qsizetype endOfText(QByteArrayView bytes)
{
    qsizetype end = bytes.size();
    while (end > 0 && (bytes[end - 1] == '\n' || isBlankByte(bytes[end - 1])))
        --end;
    if (end == 0)
        return 0;
    const qsizetype newline = bytes.indexOf('\n', end);
    return newline < 0 ? end : newline + 1;
}

} // namespace marvola
