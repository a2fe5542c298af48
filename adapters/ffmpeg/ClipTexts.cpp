// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "ClipTexts.h"

#include <QtCore/QStringList>

#include <taglib/id3v1genres.h>

#include <algorithm>

namespace marvola {

namespace {

constexpr qsizetype MostCharacters = 4096;
/// Genres have a byte; 255 stands for none.
constexpr uint LastGenre = 254;

QString textOf(const TagLib::String &text)
{
    return QString::fromStdWString(text.toWString());
}

/// The name of the genre that \a digits number; empty when they are no such number.
QString numberedGenre(QStringView digits)
{
    bool isNumber = false;
    const uint number = digits.toUInt(&isNumber);
    return isNumber && number <= LastGenre ? genreName(static_cast<int>(number)) : QString();
}

} // namespace

QString genreName(int number)
{
    return textOf(TagLib::ID3v1::genre(number));
}

QString genreText(const QString &genre)
{
    // "(4)(9)Eurodisco": genres by number, then a text that says the same in words.
    QStringList names;
    QStringView rest(genre);
    while (rest.startsWith(u'(')) {
        const qsizetype close = rest.indexOf(u')');
        const QString name = close > 0 ? numberedGenre(rest.sliced(1, close - 1)) : QString();
        if (name.isEmpty())
            break;
        names.append(name);
        rest = rest.sliced(close + 1);
    }
    if (rest.isEmpty())
        return names.join(QChar(ValueSeparator));
    const QString name = numberedGenre(rest);
    return name.isEmpty() ? rest.toString() : name;
}

void fillText(QString &field, const QString &text)
{
    if (!field.isEmpty())
        return;
    // Fields of a fixed length are filled up with NULs.
    const qsizetype end = text.indexOf(QChar(u'\0'));
    QString filled = (end < 0 ? text : text.left(end)).trimmed();
    if (filled.size() > MostCharacters)
        filled.truncate(filled.at(MostCharacters - 1).isHighSurrogate() ? MostCharacters - 1 : MostCharacters);
    field = filled;
}

} // namespace marvola
