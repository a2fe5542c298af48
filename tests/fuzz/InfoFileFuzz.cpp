// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

// The info file: what a reader gives of anybody's bytes is what Qt's own data stream gives of them, and survives being
// written again.

#include "FuzzInput.h"
#include "Scratch.h"

#include "scan/IndexQueries.h"
#include "scan/InfoFile.h"

#include <QtCore/QDataStream>

#include <vector>

using namespace marvola;

namespace {

std::vector<InfoRecord> readByStream(QByteArrayView bytes)
{
    QDataStream stream(bytes.toByteArray());
    quint16 count = 0;
    stream >> count;
    std::vector<InfoRecord> records;
    for (int left = stream.status() == QDataStream::Ok ? count : 0; left > 0; --left) {
        InfoRecord record;
        stream >> record.index >> record.path >> record.type >> record.artist >> record.album >> record.genre;
        if (stream.status() != QDataStream::Ok)
            break;
        records.push_back(record);
    }
    return records;
}

std::vector<InfoRecord> readByReader(const QString &path)
{
    std::vector<InfoRecord> records;
    InfoFileReader reader(path);
    for (EncodedRecord record; reader.next(record);) {
        records.push_back({0, record.path.toString(), record.type, record.artist.toString(), record.album.toString(),
                           record.genre.toString()});
    }
    return records;
}

bool areSame(const std::vector<InfoRecord> &left, const std::vector<InfoRecord> &right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](const InfoRecord &one, const InfoRecord &other) {
                          return one.path == other.path && one.type == other.type && one.artist == other.artist &&
                                 one.album == other.album && one.genre == other.genre;
                      });
}

void requireSameWrittenAgain(const Scratch &scratch, const std::vector<InfoRecord> &records)
{
    const QString path = scratch.path("again.info");
    require(InfoFile::resetCount(path).has_value(), "an info file can be made");
    InfoFileWriter writer(path, InfoFile::FirstRecordOffset);
    for (const InfoRecord &record : records)
        writer.append(record);
    require(writer.close() == static_cast<int>(records.size()), "every record is whole");
    require(readByReader(path).empty(), "records do not count before they are published");
    require(InfoFile::publishCount(path, static_cast<quint16>(records.size())), "records can be published");
    require(areSame(readByReader(path), records), "records read as they were written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static const Scratch scratch;
    scratch.clear();
    const QByteArrayView bytes = FuzzInput(data, size).rest();
    scratch.write("fuzz.info", bytes);
    const QString path = scratch.path("fuzz.info");

    const std::vector<InfoRecord> records = readByReader(path);
    require(areSame(records, readByStream(bytes)), "the reader agrees with Qt's data stream");
    const QStringList paths = readInfoFile(path, QStringLiteral("media"), {});
    require(paths.size() == static_cast<qsizetype>(records.size()), "a query for all gives every record");
    if (!records.empty()) {
        const InfoRecord &first = records.front();
        const QStringList same = readInfoFile(path, QStringLiteral("artist"), first.artist);
        require(first.type != 1 || same.contains(first.path), "a query for an artist finds the artist's files");
    }
    requireSameWrittenAgain(scratch, records);
    return 0;
}
