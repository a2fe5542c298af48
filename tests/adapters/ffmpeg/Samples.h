// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FFMPEG_SAMPLES_H
#define MARVOLA_TESTS_FFMPEG_SAMPLES_H

#include <marvola/PlayerEngine.h>

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QList>
#include <QtCore/QStringList>

/// One file of the sample collection and what an engine should say of it.
struct Sample
{
    QString name;
    QByteArray path;
    bool isReadable = false;
    int audio = 0;
    int video = 0;
    QStringList texts; ///< in the order of textsOf()
};

inline QByteArray samplePath(const QString &name)
{
    return QByteArray(MARVOLA_SAMPLES "/") + name.toUtf8();
}

/// The bytes of a sample; none of what is no regular file, which one might wait for forever.
inline QByteArray sampleBytes(const QString &name)
{
    QFile file(QString::fromUtf8(samplePath(name)));
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QStringList textsOf(const ClipInfo &info)
{
    return {info.title, info.artist, info.album, info.genre, info.composer, info.copyright, info.comment};
}

inline QList<Sample> allSamples()
{
    QList<Sample> samples;
    const QJsonObject expected = QJsonDocument::fromJson(sampleBytes(QStringLiteral("expected.json"))).object();
    for (auto entry = expected.begin(); entry != expected.end(); ++entry) {
        const QJsonObject facts = entry.value().toObject();
        const auto text = [&facts](const char *key) { return facts.value(QLatin1String(key)).toString(); };
        samples.append({entry.key(),
                        samplePath(entry.key()),
                        facts.value(QLatin1String("readable")).toBool(),
                        facts.value(QLatin1String("audio")).toInt(),
                        facts.value(QLatin1String("video")).toInt(),
                        {text("title"), text("artist"), text("album"), text("genre"), text("composer"),
                         text("copyright"), text("comment")}});
    }
    return samples;
}

#endif
