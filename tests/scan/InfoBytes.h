// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SCAN_INFOBYTES_H
#define MARVOLA_TESTS_SCAN_INFOBYTES_H

#include "scan/InfoRecord.h"

#include <QtCore/QDataStream>
#include <QtCore/QFile>
#include <QtCore/QList>

#include <gtest/gtest.h>

/// Another reader and writer of the info file, on the stream class whose encoding the file has.
namespace InfoBytes {

using marvola::InfoRecord;

inline bool operator==(const InfoRecord &a, const InfoRecord &b)
{
    return a.index == b.index && a.path == b.path && a.path.isNull() == b.path.isNull() && a.type == b.type &&
           a.artist == b.artist && a.album == b.album && a.genre == b.genre;
}

struct Content
{
    quint16 count = 0;
    QList<InfoRecord> records;
};

inline QByteArray encoded(const InfoRecord &record)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << record.index << record.path << record.type << record.artist << record.album << record.genre;
    return bytes;
}

inline QByteArray encoded(const QList<InfoRecord> &records, quint16 count)
{
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << count;
    for (const InfoRecord &record : records)
        bytes += encoded(record);
    return bytes;
}

inline Content decoded(const QByteArray &bytes)
{
    Content content;
    QDataStream stream(bytes);
    stream >> content.count;
    for (int i = 0; i < content.count; ++i) {
        InfoRecord record;
        stream >> record.index >> record.path >> record.type >> record.artist >> record.album >> record.genre;
        EXPECT_EQ(stream.status(), QDataStream::Ok) << "record " << i;
        content.records.append(record);
    }
    return content;
}

inline QByteArray bytesOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
    return file.readAll();
}

inline void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << qPrintable(path);
    ASSERT_EQ(file.write(bytes), bytes.size());
}

inline Content contentOf(const QString &path)
{
    return decoded(bytesOf(path));
}

} // namespace InfoBytes

#endif
