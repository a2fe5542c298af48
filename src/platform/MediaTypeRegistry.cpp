// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/MediaTypeRegistry.h>

#include <QtCore/QHash>
#include <QtCore/QMutex>

namespace {

struct Registry
{
    QMutex mutex;
    QHash<int, QStringList> extensions;
};

/// Never destroyed: a refresh may still ask while the process ends.
Registry &registry()
{
    static Registry &instance =
        *new Registry{{},
                      {{MediaTypeRegistry::MediaPlayer,
                        QString::fromLatin1("mp3 m4a aac ogg oga opus flac wav wma amr awb mid midi mka ape aif aiff "
                                            "mp4 m4v 3gp 3g2 mkv webm avi mov mpg mpeg ts wmv asf flv ogv")
                            .split(QLatin1Char(' '))}}};
    return instance;
}

} // namespace

void MediaTypeRegistry::querySupportedExtensions(QStringList &extensions, int category)
{
    Registry &known = registry();
    const QMutexLocker locker(&known.mutex);
    extensions = known.extensions.value(category);
}

void MediaTypeRegistry::setSupportedExtensions(int category, const QStringList &extensions)
{
    Registry &known = registry();
    const QMutexLocker locker(&known.mutex);
    known.extensions.insert(category, extensions);
}
