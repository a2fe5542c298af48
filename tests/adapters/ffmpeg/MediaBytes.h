// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FFMPEG_MEDIABYTES_H
#define MARVOLA_TESTS_FFMPEG_MEDIABYTES_H

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QList>
#include <QtCore/QTemporaryDir>
#include <QtCore/QtEndian>

#include "MediaFile.h"

/// A file of given bytes that lasts as long as the object.
class FileOf
{
public:
    explicit FileOf(const QByteArray &bytes, const QString &name = QStringLiteral("song.mp3"))
        : m_path(m_folder.filePath(name))
    {
        write(bytes);
    }

    QByteArray path() const { return m_path.toUtf8(); }

    bool write(const QByteArray &bytes) const
    {
        QFile file(m_path);
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    }
    bool append(const QByteArray &bytes) const
    {
        QFile file(m_path);
        return file.open(QIODevice::Append) && file.write(bytes) == bytes.size();
    }
    bool resize(qint64 size) const { return QFile::resize(m_path, size); }
    bool remove() const { return QFile::remove(m_path); }

private:
    QTemporaryDir m_folder;
    QString m_path;
};

inline constexpr marvola::ReadBudget AmpleBudget = {64 * marvola::MiB, std::chrono::minutes(5)};

inline QByteArray bigEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

inline QByteArray littleEndian(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

inline QByteArray synchsafe(qsizetype size)
{
    QByteArray bytes;
    for (int shift = 21; shift >= 0; shift -= 7)
        bytes.append(static_cast<char>((size >> shift) & 0x7F));
    return bytes;
}

/// Silent frames of MPEG audio, 104 bytes each.
inline QByteArray mp3Frames(int count)
{
    return (QByteArray("\xFF\xFB\x10\x00", 4) + QByteArray(100, '\0')).repeated(count);
}

/// One frame of an ID3v2 tag.
inline QByteArray id3Frame(int version, const QByteArray &id, const QByteArray &content, quint8 flags = 0)
{
    const auto size = static_cast<quint32>(content.size());
    if (version == 2)
        return id + bigEndian(size).mid(1) + content;
    const QByteArray flagBytes = QByteArray(1, '\0') + QByteArray(1, static_cast<char>(flags));
    return id + (version == 4 ? synchsafe(content.size()) : bigEndian(size)) + flagBytes + content;
}

/// An ID3v2 tag around \a frames that says that it has \a size bytes (-1: as many as it has).
inline QByteArray id3Tag(int version, const QByteArray &frames, quint8 flags = 0, qsizetype size = -1)
{
    return QByteArray("ID3") + static_cast<char>(version) + '\0' + static_cast<char>(flags) +
           synchsafe(size < 0 ? frames.size() : size) + frames;
}

/// A box of an MP4 file.
inline QByteArray box(const QByteArray &type, const QByteArray &content)
{
    return bigEndian(static_cast<quint32>(8 + content.size())) + type + content;
}

#endif
