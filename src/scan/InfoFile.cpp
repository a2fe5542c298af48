// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "scan/InfoFile.h"

#include "platform/DiskFile.h"
#include "platform/PlacedFile.h"

#include <QtCore/QtEndian>

#include <algorithm>
#include <cstdio>
#include <sys/stat.h>

namespace marvola {

namespace {

constexpr mode_t ForEverybody = 0666;
constexpr qsizetype KiB = 1024;
constexpr qsizetype MiB = 1024 * KiB;
constexpr qsizetype WriteBufferSize = 64 * KiB;
/// Takes the whole of a file of usual size at once.
constexpr qint64 ReadChunkSize = 256 * KiB;
/// Bounds for a file that somebody else made: a longer record is not whole, and what lies further back is not read.
constexpr qint64 MaxRecordSize = 16 * MiB;
constexpr qint64 MaxFileSize = 256 * MiB;
/// A hundred times what an index comes to; more is somebody else's file.
constexpr qsizetype MaxSeparatedSize = 16 * MiB;

/// Opens a regular file; anything else (a FIFO, a device) could block or do worse, and a link that somebody put on the
/// card would have another file overwritten.
FileDescriptor openRegular(const QString &path, int flags)
{
    if (path.isEmpty() || path.contains(QChar(0)))
        return {};
    FileDescriptor file =
        FileDescriptor::open(path.toUtf8().constData(), flags | O_NONBLOCK | O_NOFOLLOW, ForEverybody);
    struct stat status = {};
    if (file.isOpen() && (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)))
        file.close();
    return file;
}

bool hasOtherNames(const FileDescriptor &file)
{
    struct stat status = {};
    return ::fstat(file.get(), &status) == 0 && status.st_nlink > 1;
}

/// Gives the name \a path a file of its own with the same bytes; the file's other names keep the old one.
bool separate(const QByteArray &path)
{
    const DiskFile shared = readDiskFile(path, MaxSeparatedSize);
    const QByteArray copy = path + ".new";
    ::unlink(copy.constData()); // of an earlier call that a crash ended
    if (shared.outcome != DiskFile::Outcome::Read || createDiskFile(copy, shared.bytes, path) != 0)
        return false;
    if (std::rename(copy.constData(), path.constData()) == 0)
        return syncRenamed(path);
    ::unlink(copy.constData());
    return false;
}

/// Opens a regular file to change it, or makes it. A hard link, too, would have another file overwritten: such a name
/// gets a file of its own first.
FileDescriptor openToWrite(const QString &path)
{
    FileDescriptor file = openRegular(path, O_RDWR | O_CREAT);
    if (!file.isOpen() || !hasOtherNames(file))
        return file;
    file.close();
    if (separate(path.toUtf8()))
        file = openRegular(path, O_RDWR);
    return file;
}

/// The same, unless it is another file than \a only.
FileDescriptor openToWrite(const QString &path, const std::optional<FileId> &only)
{
    FileDescriptor file = only ? openRegular(path, O_RDWR) : openToWrite(path);
    if (only && !(idOf(file) == only))
        file.close();
    return file;
}

/// Writes \a bytes at \a offset and says how many of them it could.
qsizetype writeAt(int fd, QByteArrayView bytes, qint64 offset)
{
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t now =
            ::pwrite(fd, bytes.data() + written, static_cast<size_t>(bytes.size() - written), offset + written);
        if (now < 0 && errno == EINTR)
            continue;
        if (now <= 0)
            break;
        written += now;
    }
    return written;
}

/// Whether what was written is on the medium, as far as its file system can tell.
bool makeDurable(int fd)
{
    int result = 0;
    do
        result = ::fdatasync(fd);
    while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || errno == ENOSYS;
}

bool writeCount(int fd, quint16 count)
{
    const quint16 bigEndian = qToBigEndian(count);
    const QByteArrayView bytes(reinterpret_cast<const char *>(&bigEndian), sizeof bigEndian);
    return writeAt(fd, bytes, 0) == bytes.size() && makeDurable(fd);
}

} // namespace

std::optional<HeldFile> InfoFile::resetCount(const QString &path)
{
    FileDescriptor file = openToWrite(path);
    if (!file.isOpen() || !writeCount(file.get(), 0))
        return std::nullopt;
    const auto id = idOf(file);
    return id ? std::optional(HeldFile{std::move(file), *id}) : std::nullopt;
}

bool InfoFile::publishCount(const QString &path, quint16 count, const std::optional<FileId> &only)
{
    const FileDescriptor file = openToWrite(path, only);
    if (!file.isOpen())
        return false;
    // Records that did not reach the medium must not be counted: the count stays 0.
    const bool published = makeDurable(file.get()) && writeCount(file.get(), count);
    return ::fchmod(file.get(), ForEverybody) == 0 && published;
}

InfoFileWriter::InfoFileWriter(const QString &path, quint32 offset, const std::optional<FileId> &only)
    : m_file(openToWrite(path, only)), m_offset(offset)
{
}

quint32 InfoFileWriter::append(const InfoRecord &record)
{
    const qsizetype before = m_buffer.size();
    appendRecord(m_buffer, record);
    const qsizetype size = m_buffer.size() - before;
    ++m_buffered;
    if (m_buffer.size() >= WriteBufferSize)
        flush();
    return static_cast<quint32>(size);
}

int InfoFileWriter::close()
{
    flush();
    return m_file.close() ? m_written : 0;
}

void InfoFileWriter::flush()
{
    const qsizetype written = m_file.isOpen() ? writeAt(m_file.get(), m_buffer, m_offset) : 0;
    if (written == m_buffer.size()) {
        m_written += m_buffered;
    } else {
        // Nothing is written behind a gap: records are found only one after another.
        m_file.close();
        EncodedRecord record;
        QByteArrayView rest = QByteArrayView(m_buffer).first(written);
        for (ParsedSize size; (size = parseRecord(rest, record)).kind == ParsedSize::Kind::Whole; ++m_written)
            rest = rest.sliced(static_cast<qsizetype>(size.bytes));
    }
    m_offset += m_buffer.size();
    m_buffer.clear();
    m_buffered = 0;
}

InfoFileReader::InfoFileReader(const QString &path) : m_file(openRegular(path, O_RDONLY))
{
    if (!m_file.isOpen() || !fill(InfoFile::FirstRecordOffset))
        return;
    m_left = qFromBigEndian<quint16>(m_buffer.constData());
    m_start = InfoFile::FirstRecordOffset;
}

bool InfoFileReader::next(EncodedRecord &record)
{
    while (m_left > 0) {
        const ParsedSize size = parseRecord(QByteArrayView(m_buffer).sliced(m_start), record);
        if (size.kind == ParsedSize::Kind::Whole) {
            m_start += static_cast<qsizetype>(size.bytes);
            --m_left;
            return true;
        }
        if (size.kind == ParsedSize::Kind::Broken || !fill(size.bytes))
            m_left = 0;
    }
    return false;
}

/// Makes at least \a bytes bytes from m_start on present in the buffer.
bool InfoFileReader::fill(qint64 bytes)
{
    if (bytes > MaxRecordSize)
        return false;
    m_buffer.remove(0, m_start);
    m_start = 0;
    while (m_buffer.size() < bytes && m_taken < MaxFileSize) {
        const qsizetype end = m_buffer.size();
        const qint64 wanted = std::max(ReadChunkSize, bytes - end);
        m_buffer.resize(end + static_cast<qsizetype>(wanted));
        ssize_t got = 0;
        do
            got = ::pread(m_file.get(), m_buffer.data() + end, static_cast<size_t>(wanted), m_taken);
        while (got < 0 && errno == EINTR);
        m_buffer.resize(end + std::max<ssize_t>(got, 0));
        if (got <= 0)
            break;
        m_taken += got;
    }
    return m_buffer.size() >= bytes;
}

} // namespace marvola
