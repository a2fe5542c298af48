// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CrashNote.h"

#include "MediaFile.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QFile>
#include <QtCore/QtEndian>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

extern "C" {
#include <libavutil/crc.h>
}

namespace marvola {

namespace {

/// A record is a path's digest, a file's state, a number that tells older culprits from newer ones, and a sum. One of
/// nothing but zeros has a wrong sum, so it is none.
constexpr qsizetype RecordSize = 64;
constexpr qsizetype DigestSize = 20;
constexpr qsizetype StateSize = 24;
constexpr qsizetype AgeOffset = 44;
constexpr qsizetype RecordSumOffset = 60;

constexpr int HeaderRecord = 0;
constexpr int FirstSlot = 1;
constexpr int FirstCulprit = FirstSlot + CrashNote::SlotCount;
constexpr int RecordCount = FirstCulprit + CrashNote::CulpritCount;
static_assert(RecordCount * RecordSize == 4096, "a page, so that a note never takes more room than it has");

constexpr char Header[] = "Marvola crash note 1\n";

QByteArray emptyRecord()
{
    return QByteArray(RecordSize, '\0');
}

QByteArray headerRecord()
{
    return emptyRecord().replace(0, sizeof Header - 1, Header);
}

quint32 sumOf(const QByteArray &record)
{
    return av_crc(av_crc_get_table(AV_CRC_32_IEEE_LE), UINT32_MAX, reinterpret_cast<const quint8 *>(record.constData()),
                  static_cast<size_t>(RecordSumOffset));
}

bool isRecord(const QByteArray &record)
{
    return record.size() == RecordSize &&
           qFromLittleEndian<quint32>(record.constData() + RecordSumOffset) == sumOf(record);
}

QByteArray sealed(QByteArray record)
{
    qToLittleEndian(sumOf(record), record.data() + RecordSumOffset);
    return record;
}

QByteArray digestOf(const QByteArray &path)
{
    return QCryptographicHash::hash(path, QCryptographicHash::Sha1);
}

QByteArray stateOf(const FileIdentity &identity)
{
    constexpr qint64 NanosecondsPerSecond = 1'000'000'000;
    const auto number = [](const timespec &time) {
        return static_cast<quint64>(time.tv_sec) * NanosecondsPerSecond + static_cast<quint64>(time.tv_nsec);
    };
    QByteArray state(StateSize, '\0');
    qToLittleEndian(static_cast<quint64>(identity.size), state.data());
    qToLittleEndian(number(identity.modified), state.data() + 8);
    qToLittleEndian(number(identity.changed), state.data() + 16);
    return state;
}

QByteArray recordOf(const QByteArray &path, const FileIdentity &identity)
{
    return sealed(
        emptyRecord().replace(0, DigestSize, digestOf(path)).replace(DigestSize, StateSize, stateOf(identity)));
}

quint32 ageOf(const QByteArray &record)
{
    return qFromLittleEndian<quint32>(record.constData() + AgeOffset);
}

} // namespace

CrashNote::~CrashNote()
{
    close();
}

bool CrashNote::open(const QString &path)
{
    close();
    if (path.isEmpty())
        return true;
    if (!openFile(path))
        return false;
    const bool mayWrite = lockPatiently(HeaderRecord);
    const bool isOurs = mayWrite ? prepare() : read(HeaderRecord) == headerRecord();
    if (isOurs) {
        takeOver(mayWrite);
        readCulprits();
    }
    if (mayWrite)
        unlock(HeaderRecord);
    if (!isOurs)
        close();
    return m_slot >= 0;
}

bool CrashNote::isCulprit(const QByteArray &path, const FileIdentity &identity) const
{
    if (m_culprits.isEmpty())
        return false;
    const auto culprit = m_culprits.constFind(digestOf(path));
    return culprit != m_culprits.constEnd() && *culprit == stateOf(identity);
}

QByteArray CrashNote::fingerprint() const
{
    QList<QByteArray> culprits;
    for (auto culprit = m_culprits.cbegin(); culprit != m_culprits.cend(); ++culprit)
        culprits.append(culprit.key() + culprit.value());
    std::sort(culprits.begin(), culprits.end());
    return culprits.isEmpty() ? QByteArray() : digestOf(culprits.join()).toHex();
}

void CrashNote::begin(const QByteArray &path, const FileIdentity &identity)
{
    // What cannot be noted is read all the same.
    if (m_slot >= 0)
        (void)write(m_slot, recordOf(path, identity));
}

void CrashNote::end()
{
    if (m_slot >= 0)
        (void)write(m_slot, emptyRecord());
}

/// Closing the file lets go of its locks.
void CrashNote::close()
{
    if (m_descriptor >= 0)
        ::close(m_descriptor);
    m_descriptor = -1;
    m_slot = -1;
    m_culprits.clear();
}

/// Opens the file at \a path if nobody else can have put it there or writes to it by another name.
bool CrashNote::openFile(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    m_descriptor = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY, 0600);
    struct stat status = {};
    const bool isOurs = m_descriptor >= 0 && ::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
                        status.st_uid == ::geteuid() && status.st_nlink == 1;
    if (!isOurs)
        close();
    return isOurs;
}

/// Locks one record against other processes. The lock is the open file's, so other engines of this process count as
/// others, and it ends with the process, however that ends.
bool CrashNote::lock(int record) const
{
    struct flock range = {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = record * RecordSize;
    range.l_len = RecordSize;
    return ::fcntl(m_descriptor, F_OFD_SETLK, &range) == 0;
}

/// Others hold the lock for a moment only, unless they are stopped in it, so nobody waits for long.
bool CrashNote::lockPatiently(int record) const
{
    constexpr int MostTries = 250;
    for (int count = 0; count < MostTries; ++count) {
        if (lock(record))
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return false;
}

void CrashNote::unlock(int record) const
{
    struct flock range = {};
    range.l_type = F_UNLCK;
    range.l_whence = SEEK_SET;
    range.l_start = record * RecordSize;
    range.l_len = RecordSize;
    (void)::fcntl(m_descriptor, F_OFD_SETLK, &range);
}

QByteArray CrashNote::read(int record) const
{
    QByteArray bytes(RecordSize, '\0');
    const ssize_t got = ::pread(m_descriptor, bytes.data(), static_cast<size_t>(RecordSize), record * RecordSize);
    bytes.truncate(std::max<qsizetype>(got, 0));
    return bytes;
}

bool CrashNote::write(int record, const QByteArray &bytes) const
{
    return ::pwrite(m_descriptor, bytes.constData(), static_cast<size_t>(bytes.size()), record * RecordSize) ==
           bytes.size();
}

/// Makes a note file of an empty one. \return false when it is somebody else's.
bool CrashNote::prepare() const
{
    const QByteArray header = read(HeaderRecord);
    if (header == headerRecord())
        return true;
    // All zeros is what a power cut leaves of a file that was being made.
    return header.count('\0') == header.size() &&
           write(HeaderRecord, headerRecord() + QByteArray((RecordCount - 1) * RecordSize, '\0'));
}

/// Finds culprits in slots that nobody has locked, and a slot of our own. What cannot be written now stays in its slot.
void CrashNote::takeOver(bool mayWrite)
{
    for (int slot = FirstSlot; slot < FirstCulprit; ++slot) {
        if (!lock(slot))
            continue;
        const QByteArray record = read(slot);
        if (isRecord(record))
            m_culprits.insert(record.left(DigestSize), record.mid(DigestSize, StateSize));
        const bool isFree = !isRecord(record) || (mayWrite && remember(record) && write(slot, emptyRecord()));
        if (isFree && m_slot < 0)
            m_slot = slot;
        else
            unlock(slot);
    }
}

/// Puts \a record among the culprits: in the place of the same file, else in a free one, else in the oldest one's.
bool CrashNote::remember(const QByteArray &record) const
{
    int place = FirstCulprit;
    quint64 rank = UINT64_MAX;
    quint32 newest = 0;
    for (int each = FirstCulprit; each < RecordCount; ++each) {
        const QByteArray other = read(each);
        const bool isTaken = isRecord(other);
        const bool isSame = isTaken && other.left(DigestSize) == record.left(DigestSize);
        newest = std::max(newest, isTaken ? ageOf(other) : 0);
        const quint64 otherRank = isSame ? 0 : (isTaken ? quint64(ageOf(other)) + 2 : 1);
        if (otherRank < rank) {
            rank = otherRank;
            place = each;
        }
    }
    QByteArray aged = record;
    qToLittleEndian(newest + 1, aged.data() + AgeOffset);
    return write(place, sealed(aged));
}

void CrashNote::readCulprits()
{
    for (int each = FirstCulprit; each < RecordCount; ++each) {
        const QByteArray record = read(each);
        // A slot's note is newer than what is here.
        if (isRecord(record) && !m_culprits.contains(record.left(DigestSize)))
            m_culprits.insert(record.left(DigestSize), record.mid(DigestSize, StateSize));
    }
}

} // namespace marvola
