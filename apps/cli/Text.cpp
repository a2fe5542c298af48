// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Text.h"

#include <clocale>
#include <cstring>
#include <cwchar>
#include <langinfo.h>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

struct CodePoint
{
    char32_t value; ///< half of a surrogate pair stands for itself
    int units;
};

CodePoint codePointAt(const QString &text, qsizetype index)
{
    const QChar first = text.at(index);
    if (first.isHighSurrogate() && index + 1 < text.size() && text.at(index + 1).isLowSurrogate()) {
        return {QChar::surrogateToUcs4(first, text.at(index + 1)), 2};
    }
    return {first.unicode(), 1};
}

bool isSafe(char32_t value)
{
    constexpr char32_t ZeroWidthNonJoiner = 0x200c;
    constexpr char32_t ZeroWidthJoiner = 0x200d; // holds the parts of one emoji together
    if (value == ZeroWidthNonJoiner || value == ZeroWidthJoiner) {
        return true;
    }
    switch (QChar::category(value)) {
    case QChar::Other_Control:
    case QChar::Other_Format: // turns the direction of writing, among others
    case QChar::Other_Surrogate:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return false;
    default:
        return true;
    }
}

QString escape(char32_t value)
{
    switch (value) {
    case U'\n':
        return u"\\n"_s;
    case U'\r':
        return u"\\r"_s;
    case U'\t':
        return u"\\t"_s;
    default:
        break;
    }
    const auto number = static_cast<uint>(value);
    if (number < 0x100) {
        return u"\\x%1"_s.arg(number, 2, 16, '0'_L1);
    }
    return number < 0x10000 ? u"\\u%1"_s.arg(number, 4, 16, '0'_L1) : u"\\U%1"_s.arg(number, 8, 16, '0'_L1);
}

} // namespace

QString printable(const QString &text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype index = 0; index < text.size();) {
        const CodePoint point = codePointAt(text, index);
        if (isSafe(point.value)) {
            result += QStringView(text).mid(index, point.units);
        } else {
            result += escape(point.value);
        }
        index += point.units;
    }
    return result;
}

QString wellFormed(const QString &text)
{
    QString result = text;
    for (qsizetype index = 0; index < text.size();) {
        const CodePoint point = codePointAt(text, index);
        if (point.units == 1 && text.at(index).isSurrogate()) {
            result[index] = QChar::ReplacementCharacter;
        }
        index += point.units;
    }
    return result;
}

void useWideCharacters()
{
    if (std::strcmp(::nl_langinfo(CODESET), "UTF-8") != 0) {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

int displayWidth(const QString &text)
{
    int width = 0;
    for (qsizetype index = 0; index < text.size();) {
        const CodePoint point = codePointAt(text, index);
        const int columns = ::wcwidth(static_cast<wchar_t>(point.value));
        width += columns < 0 ? 1 : columns;
        index += point.units;
    }
    return width;
}

QString padded(const QString &text, int width)
{
    const int missing = width - displayWidth(text);
    return missing > 0 ? text + QString(missing, u' ') : text;
}

} // namespace marvola
