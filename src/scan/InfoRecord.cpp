// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/InfoRecord.h"

#include "scan/ByteFields.h"

#include <QtCore/QtEndian>

#include <utility>

namespace marvola {

namespace {

constexpr qsizetype UnitSize = sizeof(char16_t);

/// Takes fields from the front of some bytes. Behind the first one that is not there all are blank, and size() tells of
/// that one.
class FieldReader
{
public:
    explicit FieldReader(QByteArrayView bytes) : m_begin(bytes.data()), m_at(m_begin), m_end(m_begin + bytes.size()) {}

    template<typename Number>
    Number number()
    {
        const char *const field = take(sizeof(Number));
        return field == nullptr ? Number(0) : qFromBigEndian<Number>(field);
    }

    EncodedText text()
    {
        const auto length = number<quint32>();
        if (length == NullLength)
            return {};
        if (length % UnitSize != 0)
            fail({ParsedSize::Kind::Broken, 0});
        const char *const units = take(length);
        return units == nullptr ? EncodedText() : EncodedText{{units, static_cast<qsizetype>(length)}};
    }

    ParsedSize size() const { return m_hasFailed ? m_failure : ParsedSize{ParsedSize::Kind::Whole, m_at - m_begin}; }

private:
    const char *take(qint64 length)
    {
        if (length > m_end - m_at)
            fail({ParsedSize::Kind::Truncated, m_at - m_begin + length});
        return m_hasFailed ? nullptr : std::exchange(m_at, m_at + length);
    }

    void fail(ParsedSize failure)
    {
        if (!m_hasFailed)
            m_failure = failure;
        m_hasFailed = true;
    }

    const char *m_begin;
    const char *m_at;
    const char *m_end;
    ParsedSize m_failure;
    bool m_hasFailed = false;
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
    fields.number<qint16>(); // the index: nothing needs it
    record.path = fields.text();
    record.type = fields.number<qint8>();
    record.artist = fields.text();
    record.album = fields.text();
    record.genre = fields.text();
    if (fields.size().kind != ParsedSize::Kind::Whole)
        record = {};
    return fields.size();
}

} // namespace marvola
