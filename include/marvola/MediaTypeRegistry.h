// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_MEDIATYPEREGISTRY_H
#define MARVOLA_MEDIATYPEREGISTRY_H

#include <marvola/Export.h>

#include <QtCore/QStringList>

/// Knows which file extensions the device can play, by category. All operations may be called from any thread.
class MARVOLA_EXPORT MediaTypeRegistry
{
public:
    /// Categories of extensions.
    enum Category {
        MediaPlayer = 2 ///< what the media player plays, audio and video
    };

    MediaTypeRegistry() = delete;

    /// Puts the extensions of \a category, without dots, into \a extensions, replacing what it held. A category that
    /// nobody filled gives an empty list.
    static void querySupportedExtensions(QStringList &extensions, int category);

    /// Replaces the extensions of \a category. An engine's adapter calls this with what the engine can play; until
    /// then the media player's category holds the usual audio and video extensions.
    static void setSupportedExtensions(int category, const QStringList &extensions);
};

#endif
