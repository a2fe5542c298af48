// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "IndexSize.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QtEndian>

using namespace Qt::StringLiterals;

namespace marvola {

namespace {

/// Far more than any index takes; what claims to be larger is not read.
constexpr qint64 LargestIndex = qint64{64} * 1024 * 1024;

/// Steps over the parts of an index held in memory. A step past the end moves nothing and fails.
class IndexCursor
{
public:
    explicit IndexCursor(const QByteArray &bytes) : m_bytes(bytes) {}

    qint64 position() const { return m_position; }

    [[nodiscard]] bool skip(qint64 count)
    {
        if (count > m_bytes.size() - m_position) {
            return false;
        }
        m_position += count;
        return true;
    }

    /// A text: its length in bytes in four bytes, then the bytes; all bits set stand for a null text without bytes.
    [[nodiscard]] bool skipText()
    {
        constexpr quint32 NullText = 0xffffffff;
        const qint64 start = m_position;
        if (!skip(4)) {
            return false;
        }
        const auto length = qFromBigEndian<quint32>(m_bytes.constData() + start);
        if (length == NullText || skip(length)) {
            return true;
        }
        m_position = start;
        return false;
    }

    /// A record: number, path, type code, artist, album, genre.
    [[nodiscard]] bool skipRecord()
    {
        const qint64 start = m_position;
        if (skip(2) && skipText() && skip(1) && skipText() && skipText() && skipText()) {
            return true;
        }
        m_position = start;
        return false;
    }

private:
    const QByteArray &m_bytes;
    qint64 m_position = 0;
};

} // namespace

QString infoFileIn(const QString &workDirectory)
{
    return workDirectory + (workDirectory.endsWith(u'/') ? u""_s : u"/"_s) + u".marvola.info"_s;
}

IndexSize measureIndex(const QString &workDirectory)
{
    IndexSize size;
    QFile file(infoFileIn(workDirectory));
    if (workDirectory.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return size;
    }
    size.bytesReserved = file.size();
    const QByteArray bytes = file.read(LargestIndex);
    IndexCursor cursor(bytes);
    if (!cursor.skip(2)) {
        return size;
    }
    const int count = qFromBigEndian<quint16>(bytes.constData());
    while (size.records < count && cursor.skipRecord()) {
        ++size.records;
    }
    size.bytesUsed = cursor.position();
    return size;
}

} // namespace marvola
