// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TYPES_H
#define MARVOLA_TYPES_H

#include <QtCore/QList>
#include <QtCore/qglobal.h>

/// An unsigned 8-bit number: progress values and small status codes.
using UINT8 = quint8;

/// An ordered list of values.
template<typename T>
using QValueList = QList<T>;

/// What a media file holds. A file with a video stream is video, whatever else it holds.
///
/// The library stores and returns the values that the player gives it unchanged, so any `int` is representable.
enum MP_MEDIA_FILE_TYPE_T : int {
    MP_MEDIA_FILE_TYPE_UNKNOWN = 0, ///< neither audio nor video, or not known
    MP_MEDIA_FILE_TYPE_AUDIO = 1,   ///< audio without video
    MP_MEDIA_FILE_TYPE_VIDEO = 2    ///< video, with or without audio
};

#endif
