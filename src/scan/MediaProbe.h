// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_MEDIAPROBE_H
#define MARVOLA_SCAN_MEDIAPROBE_H

#include <marvola/Types.h>

#include <QtCore/QString>

class PlayerEngine;

namespace marvola {

/// A media file as the index describes it.
struct MediaDescription
{
    MP_MEDIA_FILE_TYPE_T type = MP_MEDIA_FILE_TYPE_UNKNOWN;
    QString artist;
    QString album;
    QString genre;
};

/// One scan with an engine: from construction until end() the engine is in its scanning state. Without an engine every
/// file is one that cannot be read.
class MediaProbe
{
public:
    /// The index keeps this many UTF-16 units of an artist, album or genre.
    static constexpr int MaxTextLength = 20;

    /// \a unknownText stands for what a file does not say.
    MediaProbe(PlayerEngine *engine, const QString &unknownText);

    MediaDescription describe(const QString &path) const;
    void end();

private:
    QString indexed(const QString &text) const;

    PlayerEngine *m_engine;
    QString m_unknownText;
    int m_settingA = 0;
    int m_settingB = 0;
};

} // namespace marvola

#endif
