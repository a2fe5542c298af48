// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "MarkCovers.h"

#include "MediaFile.h"
#include "Signature.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QtEndian>

#include <algorithm>
#include <cstring>
#include <limits>

namespace marvola {

namespace {

/// How a number near a mark is written.
enum class NumberForm { Little32, Little64, Big32, Big64 };

/// Bytes to cover where a number near them is too large.
struct CoveredMark
{
    const char *format;
    QByteArrayView bytes;
    QByteArrayView cover;
    qint64 most = -1;       ///< covered where the number is above this; -1: always
    qsizetype numberAt = 0; ///< from where the mark starts
    NumberForm number = NumberForm::Little32;
    QByteArrayView head = {}; ///< only in files that start so
};

constexpr QByteArrayView markBytes(const char *bytes, qsizetype size)
{
    return QByteArrayView(bytes, size);
}

/// libavformat takes memory for as many bytes as a chunk says that it has, and fills it with zeros for some, before it
/// reads any of them.
constexpr qint64 MostSize = 1 * MiB;
/// Names of texts in a list that is announced by its length.
constexpr qint64 MostKeys = 4096;

constexpr const char Nothing[] = "skip";

const CoveredMark CoveredMarks[] = {
    {"wav", markBytes("INFO", 4), markBytes(Nothing, 4), MostSize, -4},
    {"avi", markBytes("INFO", 4), markBytes(Nothing, 4), MostSize, -4},
    // Here lengths are written the other way around, of which libavformat makes what it likes.
    {"wav", markBytes("INFO", 4), markBytes(Nothing, 4), -1, 0, NumberForm::Little32, markBytes("RIFX", 4)},
    // Tags whose frames may be packed, and grow to thousands of times their size; their texts are read elsewhere.
    {"wav", markBytes("ID3 ", 4), markBytes(Nothing, 4)},
    {"wav", markBytes("id3 ", 4), markBytes(Nothing, 4)},
    // Chapters, and their names.
    {"wav", markBytes("cue ", 4), markBytes(Nothing, 4)},
    {"wav", markBytes("adtl", 4), markBytes(Nothing, 4)},
    {"aiff", markBytes("ID3 ", 4), markBytes(Nothing, 4)},
    {"aac", markBytes("ID3", 3), markBytes("id3", 3)},
    // Texts, and what a stream is.
    {"aiff", markBytes("NAME", 4), markBytes(Nothing, 4), MostSize, 4, NumberForm::Big32},
    {"aiff", markBytes("AUTH", 4), markBytes(Nothing, 4), MostSize, 4, NumberForm::Big32},
    {"aiff", markBytes("(c) ", 4), markBytes(Nothing, 4), MostSize, 4, NumberForm::Big32},
    {"aiff", markBytes("ANNO", 4), markBytes(Nothing, 4), MostSize, 4, NumberForm::Big32},
    {"wav", markBytes("fmt ", 4), markBytes(Nothing, 4), MostSize, 4},
    {"avi", markBytes("strf", 4), markBytes(Nothing, 4), MostSize, 4},
    {"avi", markBytes("strd", 4), markBytes(Nothing, 4), MostSize, 4},
    {"avi", markBytes("strn", 4), markBytes(Nothing, 4), MostSize, 4},
    {"caf", markBytes("kuki", 4), markBytes(Nothing, 4), MostSize, 4, NumberForm::Big64},
    // One entry of an index may stand for millions, and indices refer to indices.
    {"avi", markBytes("idx1", 4), markBytes(Nothing, 4)},
    {"avi", markBytes("indx", 4), markBytes(Nothing, 4)},
    {"mov", markBytes("keys", 4), markBytes(Nothing, 4), MostKeys, 8, NumberForm::Big32},
    // A stream's properties, and markers (chapters).
    {"asf", markBytes("\x91\x07\xDC\xB7\xB7\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65", 16), markBytes(Nothing, 4),
     MostSize, 16, NumberForm::Little64},
    {"asf", markBytes("\x01\xCD\x87\xF4\x51\xA9\xCF\x11\x8E\xE6\x00\xC0\x0C\x20\x53\x65", 16), markBytes(Nothing, 4)},
};

quint64 numberNear(const QByteArray &window, qsizetype at, NumberForm number)
{
    const qsizetype size = number == NumberForm::Little64 || number == NumberForm::Big64 ? 8 : 4;
    // What is not to be seen here is in reach of the read that needs it.
    if (at < 0 || at + size > window.size())
        return std::numeric_limits<quint64>::max();
    const char *bytes = window.constData() + at;
    switch (number) {
    case NumberForm::Little64:
        return qFromLittleEndian<quint64>(bytes);
    case NumberForm::Big64:
        return qFromBigEndian<quint64>(bytes);
    case NumberForm::Big32:
        return qFromBigEndian<quint32>(bytes);
    case NumberForm::Little32:
        break;
    }
    return qFromLittleEndian<quint32>(bytes);
}

/// QByteArray takes ten times as long to find that there are none.
qsizetype indexOf(QByteArrayView mark, QByteArrayView window, qsizetype from)
{
    const void *found = from < window.size() ? ::memmem(window.data() + from, std::size_t(window.size() - from),
                                                        mark.data(), std::size_t(mark.size()))
                                             : nullptr;
    return found ? static_cast<const char *>(found) - window.data() : -1;
}

void coverMark(const CoveredMark &mark, QByteArray &window)
{
    for (qsizetype at = indexOf(mark.bytes, window, 0); at >= 0; at = indexOf(mark.bytes, window, at + 1)) {
        if (mark.most < 0 || numberNear(window, at + mark.numberAt, mark.number) > quint64(mark.most))
            std::copy(mark.cover.begin(), mark.cover.end(), window.begin() + at);
    }
}

} // namespace

FileView::Cover markCover(const AVInputFormat *format, QByteArrayView head)
{
    QList<const CoveredMark *> marks;
    for (const CoveredMark &mark : CoveredMarks) {
        if (isFormat(format, mark.format) && head.startsWith(mark.head))
            marks.append(&mark);
    }
    if (marks.isEmpty())
        return {};
    return [marks](qint64, QByteArray &window) {
        for (const CoveredMark *mark : marks)
            coverMark(*mark, window);
    };
}

} // namespace marvola
