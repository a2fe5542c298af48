// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/InfoRecord.h"

#include "scan/ByteFields.h"

#include <QtCore/QtEndian>

namespace marvola {

namespace {

constexpr qsizetype UnitSize = sizeof(char16_t);

/// Takes fields from the front of some bytes; what happened first, an end or an error, stays.
class FieldReader
{
public:
    explicit FieldReader(QByteArrayView bytes) : m_bytes(bytes) {}

    template<typename Number>
    Number number()
    {
        const QByteArrayView field = take(sizeof(Number));
        return field.isEmpty() ? Number(0) : qFromBigEndian<Number>(field.data());
    }

    EncodedText text()
    {
        const auto length = number<quint32>();
        if (length == NullLength || m_size.kind != ParsedSize::Kind::Whole)
            return {};
        if (length % UnitSize != 0) {
            m_size.kind = ParsedSize::Kind::Broken;
            return {};
        }
        return {take(length)};
    }

    ParsedSize size() const { return m_size; }

private:
    QByteArrayView take(qint64 length)
    {
        if (m_size.kind != ParsedSize::Kind::Whole)
            return {};
        const qint64 start = m_size.bytes;
        m_size.bytes += length;
        if (length > m_bytes.size() - start) {
            m_size.kind = ParsedSize::Kind::Truncated;
            return {};
        }
        return m_bytes.sliced(static_cast<qsizetype>(start), static_cast<qsizetype>(length));
    }

    QByteArrayView m_bytes;
    ParsedSize m_size{ParsedSize::Kind::Whole, 0};
};

} // namespace

QString EncodedText::toString() const
{
    QString text(units.size() / UnitSize, Qt::Uninitialized);
    qFromBigEndian<char16_t>(units.data(), text.size(), text.data());
    return text;
}

QByteArray encodedUnits(const QString &text)
{
    QByteArray units(text.size() * UnitSize, Qt::Uninitialized);
    qToBigEndian<char16_t>(text.utf16(), text.size(), units.data());
    return units;
}

void appendRecord(QByteArray &bytes, const InfoRecord &record)
{
    ByteWriter fields;
    fields.number(record.index);
    fields.text(record.path);
    fields.number(record.type);
    fields.text(record.artist);
    fields.text(record.album);
    fields.text(record.genre);
    bytes.append(fields.take());
}

ParsedSize parseRecord(QByteArrayView bytes, EncodedRecord &record)
{
    FieldReader fields(bytes);
    EncodedRecord read;
    fields.number<qint16>(); // the index: nothing needs it
    read.path = fields.text();
    read.type = fields.number<qint8>();
    read.artist = fields.text();
    read.album = fields.text();
    read.genre = fields.text();
    if (fields.size().kind == ParsedSize::Kind::Whole)
        record = read;
    return fields.size();
}

} // namespace marvola
