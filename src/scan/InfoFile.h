// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_SCAN_INFOFILE_H
#define MARVOLA_SCAN_INFOFILE_H

#include "platform/FileDescriptor.h"
#include "platform/FileId.h"
#include "scan/InfoRecord.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <optional>

namespace marvola {

/// An info file that is held open, so that its number tells it from all others: on cards of the FAT family a file keeps
/// its number only while somebody does.
struct HeldFile
{
    FileDescriptor file;
    FileId id;
};

/// The info file: a 16-bit count, then that many records. It is never truncated: what lies behind the last record is
/// left over from before. So that a half-written index reads as empty, the count is 0 while records are written, and
/// becomes their number only when they are on the medium. A link in its place is not followed, and a file that has
/// other names too is not written: a copy takes its place first.
namespace InfoFile {

inline constexpr quint32 FirstRecordOffset = 2;
/// The last byte at which a record may start: the file is reserved at 150,000 bytes, and 1,501 are left for that
/// record.
inline constexpr quint32 LastRecordOffset = 148499;

/// Makes the file at \a path read as empty; on return that is on the medium.
/// \return which file that is; nothing when it could not be done
[[nodiscard]] std::optional<HeldFile> resetCount(const QString &path);

/// Makes \a count records valid, after they are on the medium, and lets everybody read and write the file.
/// \param only the file that holds the records; another one at \a path is left alone
[[nodiscard]] bool publishCount(const QString &path, quint16 count, const std::optional<FileId> &only = {});

} // namespace InfoFile

/// Appends records to an info file, from one offset on. A file that cannot be opened takes records all the same, which
/// then go nowhere.
class InfoFileWriter
{
public:
    /// \param only another file at \a path than this one counts as one that cannot be opened
    InfoFileWriter(const QString &path, quint32 offset, const std::optional<FileId> &only = {});

    /// \return the size of \a record in the file
    quint32 append(const InfoRecord &record);
    /// Writes what is still in memory and closes the file. Without this call, that is lost.
    /// \return how many of the appended records, from the first on, are whole in the file
    int close();

private:
    void flush();

    FileDescriptor m_file;
    qint64 m_offset = 0; ///< of the buffer's first byte
    QByteArray m_buffer;
    int m_buffered = 0; ///< records in the buffer
    int m_written = 0;  ///< records in the file
};

/// Reads an info file's records from the first on, with one pass over the file and memory for little more than one.
class InfoFileReader
{
public:
    /// A file that is missing or no regular file has no records.
    explicit InfoFileReader(const QString &path);

    /// The next record into \a record, valid until the next call.
    /// \return false after the last, and at one that is not whole: a count is not trusted
    [[nodiscard]] bool next(EncodedRecord &record);

private:
    bool fill(qint64 bytes);

    FileDescriptor m_file;
    QByteArray m_buffer;
    qsizetype m_start = 0; ///< of the next record in the buffer
    qint64 m_taken = 0;    ///< bytes read from the file
    int m_left = 0;        ///< records, by the file's count
};

} // namespace marvola

#endif
