// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_BYTEFIELDS_H
#define MARVOLA_SCAN_BYTEFIELDS_H

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QString>
#include <QtCore/QtEndian>

#include <utility>

/// Fields one after another in a string of bytes: numbers big-endian; bytes, and texts as big-endian UTF-16, behind
/// their length in bytes.
namespace marvola {

/// The length of a null text.
inline constexpr quint32 NullLength = 0xFFFFFFFF;

class ByteWriter
{
public:
    template<typename Number>
    void number(Number value)
    {
        char bytes[sizeof value];
        qToBigEndian(value, bytes);
        m_bytes.append(bytes, sizeof bytes);
    }
    void bytes(QByteArrayView value)
    {
        number(static_cast<quint32>(value.size()));
        m_bytes.append(value);
    }
    void text(const QString &value)
    {
        if (value.isNull()) {
            number(NullLength);
            return;
        }
        number(static_cast<quint32>(value.size() * 2));
        const qsizetype begin = m_bytes.size();
        m_bytes.resize(begin + value.size() * 2);
        qToBigEndian<quint16>(value.utf16(), value.size(), m_bytes.data() + begin);
    }
    void reserve(qsizetype size) { m_bytes.reserve(size); }
    QByteArray take() { return std::exchange(m_bytes, {}); }

private:
    QByteArray m_bytes;
};

/// Reads fields of anybody's bytes. After the first one that does not fit, all are blank and isGood() is false.
class ByteReader
{
public:
    explicit ByteReader(QByteArrayView bytes) : m_left(bytes) {}

    template<typename Number>
    Number number()
    {
        const QByteArrayView field = take(sizeof(Number));
        return field.isEmpty() ? Number() : qFromBigEndian<Number>(field.data());
    }
    QByteArrayView bytes() { return take(number<quint32>()); }
    QString text()
    {
        const auto size = number<quint32>();
        if (size == NullLength)
            return {};
        const QByteArrayView field = take(size);
        m_isGood = m_isGood && field.size() % 2 == 0;
        QString value(m_isGood ? field.size() / 2 : 0, Qt::Uninitialized);
        qFromBigEndian<quint16>(field.data(), value.size(), value.data());
        return value;
    }
    bool isGood() const { return m_isGood; }
    /// Whether every byte was one of a field.
    bool isDone() const { return m_isGood && m_left.isEmpty(); }

private:
    QByteArrayView take(quint32 size)
    {
        m_isGood = m_isGood && size <= static_cast<size_t>(m_left.size());
        if (!m_isGood)
            return {};
        const QByteArrayView field = m_left.first(static_cast<qsizetype>(size));
        m_left = m_left.sliced(field.size());
        return field;
    }

    QByteArrayView m_left;
    bool m_isGood = true;
};

} // namespace marvola

#endif
