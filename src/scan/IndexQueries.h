// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_INDEXQUERIES_H
#define MARVOLA_SCAN_INDEXQUERIES_H

#include "platform/PlacedFile.h"

#include <QtCore/QStringList>

namespace marvola {

/// The paths in the info file \a infoFile, in its order, of the files of \a kind: "media" (all), "audio", "video", and
/// "artist", "album" or "genre" for the audio files whose text is exactly \a value. Other kinds have no files.
QStringList readInfoFile(const QString &infoFile, const QString &kind, const QString &value);

/// The entries of the numbered group \a group of the list file \a listFile, in order; entries whose key is missing are
/// left out, and playlist names come without their prefix.
QStringList readListGroup(const PlacedFile &listFile, const QString &group);

} // namespace marvola

#endif
