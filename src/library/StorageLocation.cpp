// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "library/StorageLocation.h"

#include "platform/DirectoryLock.h"
#include "platform/DiskFile.h"
#include "platform/FileDescriptor.h"
#include "platform/FileNames.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace marvola {

namespace {

constexpr qint64 SpaceNeed = 200000;          // both index files
constexpr qint64 SpaceNeedBesideInfo = 50000; // when the info file has grown to SpaceNeed by itself
constexpr qint64 ListReservation = 50000;
constexpr qint64 InfoReservation = 150000;

bool writeZeros(int fd, qint64 size)
{
    const QByteArray zeros(4096, '\0');
    for (qint64 done = 0; done < size;) {
        const ssize_t written =
            ::pwrite(fd, zeros.constData(), static_cast<size_t>(qMin(size - done, qint64(4096))), done);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        done += written;
    }
    return true;
}

// Gives the file the blocks for its first bytes. Writing at the end alone would take one block and leave a hole.
bool occupy(int fd, qint64 size)
{
    int error = EINTR;
    while (error == EINTR)
        error = ::posix_fallocate(fd, 0, size);
    const bool unsupported = error == EOPNOTSUPP || error == ENOSYS || error == EINVAL;
    return error == 0 || (unsupported && writeZeros(fd, size));
}

enum class Durability { Needed, NotNeeded };

bool createFilled(const QByteArray &path, qint64 size, char last, Durability durability)
{
    FileDescriptor file = FileDescriptor::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0666);
    if (!file.isOpen())
        return false;
    const bool filled = occupy(file.get(), size) && ::pwrite(file.get(), &last, 1, size - 1) == 1 &&
                        (durability == Durability::NotNeeded || ::fdatasync(file.get()) == 0);
    if (file.close() && filled)
        return true;
    ::unlink(path.constData());
    return false;
}

// Where a reservation is made before it gets the file's name: a file that is there has all of its space. Not the name
// of the copies that commits make, which may be worth keeping.
QByteArray unfinishedName(const QString &path)
{
    return QFile::encodeName(path) + ".reserved";
}

bool probe(const QString &dir, qint64 need)
{
    const QByteArray path = QFile::encodeName(joinPath(dir, ProbeFileName));
    // What an earlier probe left behind when the process died, or whatever else has the name, is never written through.
    ::unlink(path.constData());
    for (const QLatin1String name : {ListFileName, InfoFileName})
        ::unlink(unfinishedName(joinPath(dir, name)).constData());
    const bool filled = createFilled(path, need, ' ', Durability::NotNeeded);
    ::unlink(path.constData());
    return filled;
}

enum class Reserved { AlreadyThere, Created, Failed };

// An existing file keeps its size; that the space up to the reservation belongs to it is tried, but a file that is
// there is the work directory's in any case.
void backWithBlocks(const QByteArray &path, qint64 size)
{
    const FileDescriptor file = FileDescriptor::open(path.constData(), O_WRONLY | O_NONBLOCK);
    if (file.isOpen())
        (void)::fallocate(file.get(), FALLOC_FL_KEEP_SIZE, 0, size);
}

// Makes the file with all of its space, at once and durably. The name is known to be free.
bool createReserved(const QByteArray &name, const QByteArray &unfinished, qint64 size)
{
    if (!createFilled(unfinished, size, '\0', Durability::Needed))
        return false;
    if (std::rename(unfinished.constData(), name.constData()) != 0) {
        ::unlink(unfinished.constData());
        return false;
    }
    if (syncRenamed(name))
        return true;
    ::unlink(name.constData());
    return false;
}

Reserved reserve(const QString &path, qint64 size)
{
    const QByteArray name = QFile::encodeName(path);
    const QByteArray unfinished = unfinishedName(path);
    ::unlink(unfinished.constData()); // of a process that died
    struct stat status = {};
    if (::lstat(name.constData(), &status) != 0) {
        // Only a name that is known to be free gets a new file: the medium may be failing for a moment.
        const bool isFree = errno == ENOENT;
        return isFree && createReserved(name, unfinished, size) ? Reserved::Created : Reserved::Failed;
    }
    // A link on a card would have the index written over whatever it leads to.
    if (S_ISLNK(status.st_mode))
        return Reserved::Failed;
    backWithBlocks(name, size);
    return Reserved::AlreadyThere;
}

bool isDirectory(const QString &dir)
{
    // A name with a NUL is no file's name, and Qt would say so aloud.
    return !dir.isEmpty() && !dir.contains(QChar(u'\0')) && QFileInfo(dir).isDir();
}

qint64 sizeOf(const QString &path)
{
    return QFileInfo(path).size();
}

} // namespace

bool hasEnoughSpace(const QString &dir)
{
    if (!isDirectory(dir))
        return false;
    const QString infoFile = joinPath(dir, InfoFileName);
    const QString listFile = joinPath(dir, ListFileName);
    // Two that try for the space at once would take it from one another, and one's file from under the other.
    const DirectoryLock lock(QFile::encodeName(dir), DirectoryLock::Patience::Wait);
    if (lock.isHeldByAnother())
        return false;
    qint64 need = SpaceNeed;
    if (QFileInfo::exists(infoFile))
        need = sizeOf(infoFile) < SpaceNeed ? SpaceNeed - sizeOf(infoFile) : SpaceNeedBesideInfo;
    if (QFileInfo::exists(listFile)) {
        if (sizeOf(listFile) >= need)
            return true;
        need -= sizeOf(listFile);
    }
    return probe(dir, need);
}

QStringList cardRoots()
{
    QStringList roots;
    for (const QLatin1StringView kind : {QLatin1StringView("/mmc/mmca"), QLatin1StringView("/sd/sda")}) {
        for (int number = 1; number <= 4; ++number)
            roots.append(kind + QString::number(number));
    }
    return roots;
}

/// The folder is looked at before the mount: one that is seen after the card has gone is not taken for the card's.
PlacedFile WorkDirectory::listFile() const
{
    PlacedFile file = PlacedFile::here(m_listFile);
    return m_mountPoint.isMounted() ? file : PlacedFile();
}

bool WorkDirectory::choose(const QString &dir)
{
    if (!isDirectory(dir))
        return false;
    const QString listFile = joinPath(dir, ListFileName);
    const QString infoFile = joinPath(dir, InfoFileName);
    // Others may be choosing the directory too, or saving to the list file that is being looked for.
    const DirectoryLock lock(QFile::encodeName(dir), DirectoryLock::Patience::Wait);
    if (lock.isHeldByAnother())
        return false;
    const Reserved list = reserve(listFile, ListReservation);
    if (list == Reserved::Failed)
        return false;
    if (reserve(infoFile, InfoReservation) == Reserved::Failed) {
        if (list == Reserved::Created)
            QFile::remove(listFile);
        return false;
    }
    m_path = dir;
    m_canonicalPath = QFileInfo(dir).canonicalFilePath();
    m_listFile = listFile;
    m_infoFile = infoFile;
    m_mountPoint = MountPoint(dir);
    return true;
}

} // namespace marvola
