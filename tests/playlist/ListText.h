// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PLAYLIST_LISTTEXT_H
#define MARVOLA_TESTS_PLAYLIST_LISTTEXT_H

#include "playlist/CurrentList.h"

#include <ostream>
#include <string>

/// Lists as short texts, so that a test can say in one line what is in them.

inline void PrintTo(const QString &text, std::ostream *out)
{
    *out << (text.isNull() ? "(null)" : '"' + text.toStdString() + '"');
}

/// "a b c": one item a word.
inline QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

inline std::string shown(const QStringList &items)
{
    return items.join(QLatin1Char(' ')).toStdString();
}

template<typename Number>
std::string shownNumbers(const QList<Number> &numbers)
{
    std::string text;
    for (const Number number : numbers)
        text += (text.empty() ? "" : " ") + std::to_string(static_cast<int>(number));
    return text;
}

/// "items | flags | order | cursor", like "a b c | 0 0 0 | 2 0 1 | -1".
inline std::string shown(const marvola::CurrentList &list)
{
    return shown(list.items()) + " | " + shownNumbers(list.flags()) + " | " + shownNumbers(list.order()) + " | " +
           std::to_string(list.cursor());
}

/// A list of these items, in list order, with flags 10, 11, 12 and so on, and with the cursor at this place.
inline marvola::CurrentList listOf(const char *items, int cursor,
                                   const marvola::Reseed &reseed = marvola::reseedFromClock)
{
    marvola::CurrentList list(reseed);
    const QStringList texts = words(items);
    list.restore(QString(), texts, cursor, marvola::Shuffle::Off);
    for (int index = 0; index < list.count(); ++index)
        list.setFlag(texts.at(index), static_cast<MP_MEDIA_FILE_TYPE_T>(10 + index));
    return list;
}

/// The same, played in this order.
inline marvola::CurrentList listPlayedAs(const char *items, const QList<int> &order, int cursor,
                                         const marvola::Reseed &reseed = marvola::reseedFromClock)
{
    using namespace marvola;
    CurrentList list = listOf(items, 0, reseed);
    for (int place = list.count() - 1; place > 0; --place) {
        list.setActive(order.at(place), Shuffle::On, PickFirst::Yes);
        list.setActive(static_cast<int>(list.order().at(place)), Shuffle::On, PickFirst::Yes);
    }
    list.setActive(order.at(cursor), Shuffle::On, PickFirst::No);
    return list;
}

#endif
