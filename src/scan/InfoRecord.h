// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_INFORECORD_H
#define MARVOLA_SCAN_INFORECORD_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>

namespace marvola {

/// What the index keeps of one media file.
struct InfoRecord
{
    qint16 index = 0;
    QString path;
    qint8 type = 0;
    QString artist;
    QString album;
    QString genre;
};

/// A text as it stands in a record: big-endian UTF-16 behind its length in bytes. Looks into the bytes it was parsed
/// from.
struct EncodedText
{
    QByteArrayView units; ///< empty for an empty text and for a null one

    QString toString() const;
};

/// A record as it stands in the info file; looks into the bytes it was parsed from.
struct EncodedRecord
{
    EncodedText path;
    qint8 type = 0;
    EncodedText artist;
    EncodedText album;
    EncodedText genre;
};

/// What parseRecord() found.
struct ParsedSize
{
    enum class Kind {
        Whole,     ///< a record of `bytes` bytes
        Truncated, ///< the record has at least `bytes` bytes, which is more than there are
        Broken     ///< no record
    };
    Kind kind = Kind::Broken;
    qint64 bytes = 0;
};

/// The units of \a text as they stand in a record, without a length.
QByteArray encodedUnits(const QString &text);

/// Appends \a record as it stands in the info file to \a bytes.
void appendRecord(QByteArray &bytes, const InfoRecord &record);

/// Reads the record at the start of \a bytes into \a record, which is blank unless that is whole.
ParsedSize parseRecord(QByteArrayView bytes, EncodedRecord &record);

} // namespace marvola

#endif
