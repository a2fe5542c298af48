// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/CacheFile.h"

#include "platform/Crc32.h"
#include "platform/DirectoryLock.h"
#include "platform/DiskFile.h"

#include <QtCore/QFile>
#include <QtCore/QtEndian>

#include <cstdio>
#include <unistd.h>

namespace marvola {

namespace {

constexpr quint32 Version = 1;
constexpr qsizetype VersionOffset = 16;
constexpr qsizetype CheckOffset = 20;
constexpr qsizetype LengthOffset = 24;
constexpr const char NewSuffix[] = ".new";

/// Whether a file with these bytes is to be replaced by a new one: it is one of ours, whole or not, or nobody's.
bool isOurs(const QByteArray &bytes)
{
    return bytes.startsWith(CacheFile::Mark) || bytes.count('\0') == bytes.size();
}

QByteArray framed(QByteArrayView content)
{
    QByteArray file(CacheFile::HeaderSize, Qt::Uninitialized);
    file.replace(0, CacheFile::Mark.size(), CacheFile::Mark);
    qToBigEndian(Version, file.data() + VersionOffset);
    qToBigEndian(crc32(content), file.data() + CheckOffset);
    qToBigEndian(static_cast<quint64>(content.size()), file.data() + LengthOffset);
    return file.append(content);
}

} // namespace

CacheFile::CacheFile(const QString &path)
{
    if (!path.contains(QChar(u'\0')))
        m_path = QFile::encodeName(path);
}

QByteArray CacheFile::read() const
{
    if (m_path.isEmpty())
        return {};
    const QByteArray file = readDiskFile(m_path, MaxSize).bytes;
    if (file.size() < HeaderSize || !file.startsWith(Mark))
        return {};
    const char *header = file.constData();
    const QByteArrayView content = QByteArrayView(file).sliced(HeaderSize);
    const bool isWhole = qFromBigEndian<quint32>(header + VersionOffset) == Version &&
                         qFromBigEndian<quint64>(header + LengthOffset) == static_cast<quint64>(content.size()) &&
                         qFromBigEndian<quint32>(header + CheckOffset) == crc32(content);
    return isWhole ? content.toByteArray() : QByteArray();
}

bool CacheFile::write(QByteArrayView content) const
{
    if (m_path.isEmpty() || content.size() > MaxSize - HeaderSize)
        return false;
    // Whoever holds the folder may be writing this very file; theirs is as good.
    const DirectoryLock lock(directoryOf(m_path), DirectoryLock::Patience::DoNotWait);
    if (!lock.isHeld())
        return false;
    const DiskFile old = readDiskFile(m_path, MaxSize);
    if (old.outcome == DiskFile::Outcome::Refused || !isOurs(old.bytes))
        return false;
    const QByteArray copy = m_path + NewSuffix;
    ::unlink(copy.constData()); // of a process that died
    if (createDiskFile(copy, framed(content), m_path) != 0)
        return false;
    if (std::rename(copy.constData(), m_path.constData()) == 0)
        return true;
    ::unlink(copy.constData());
    return false;
}

} // namespace marvola
