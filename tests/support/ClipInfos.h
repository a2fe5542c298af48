// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_CLIPINFOS_H
#define MARVOLA_TESTS_SUPPORT_CLIPINFOS_H

#include <marvola/PlayerEngine.h>

#include <limits>

inline bool isSameText(const QString &left, const QString &right)
{
    return left == right && left.isNull() == right.isNull();
}

/// Whether the two are the same in every field; null texts differ from empty ones.
inline bool isSame(const ClipInfo &left, const ClipInfo &right)
{
    return isSameText(left.title, right.title) && isSameText(left.artist, right.artist) &&
           isSameText(left.album, right.album) && isSameText(left.genre, right.genre) &&
           isSameText(left.composer, right.composer) && isSameText(left.copyright, right.copyright) &&
           isSameText(left.comment, right.comment) && left.durationMs == right.durationMs &&
           left.bitrate == right.bitrate && left.sampleRate == right.sampleRate && left.channels == right.channels &&
           left.width == right.width && left.height == right.height;
}

/// One whose fields are all different, and as odd as they can be.
inline ClipInfo oddClipInfo()
{
    ClipInfo info;
    info.title = QString(QChar(0xd83c)) + QChar(u'\0') + QChar(0xdc00); // halves of pairs, the wrong way round
    info.artist = QStringLiteral("\u65e5");
    info.album = QStringLiteral("");
    info.genre = QString();
    info.composer = QString(1000, QChar(u'c'));
    info.copyright = QStringLiteral("\u00a9");
    info.comment = QString(QChar(u'\0'));
    info.durationMs = std::numeric_limits<qint64>::min();
    info.bitrate = std::numeric_limits<int>::max();
    info.sampleRate = std::numeric_limits<int>::min();
    info.channels = -1;
    info.width = 2;
    info.height = 3;
    return info;
}

#endif
