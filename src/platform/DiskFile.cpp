// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "platform/DiskFile.h"

#include "platform/FileDescriptor.h"

#include <algorithm>
#include <climits>
#include <vector>

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>

namespace marvola {

namespace {

constexpr int MaxLinks = 40;
constexpr mode_t NewFileMode = 0666;
constexpr mode_t NewDirectoryMode = 0777;
constexpr mode_t ModeBits = 07777;

/// One call takes less than 2 GiB; this much is as good.
constexpr std::size_t MaxTransfer = std::size_t(1) << 30;

DiskFile::Outcome outcomeOf(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
        return DiskFile::Outcome::Missing;
    case EIO:
        return DiskFile::Outcome::Damaged;
    default:
        return DiskFile::Outcome::Refused;
    }
}

bool isReadable(const struct stat &status, qsizetype maxSize)
{
    return S_ISREG(status.st_mode) && status.st_size <= maxSize;
}

/// Fills \a bytes from the start of the file, or cuts them to what there is. \return 0, or the system's error.
int readAll(int fd, QByteArray &bytes)
{
    qsizetype have = 0;
    while (have < bytes.size()) {
        const auto wanted = std::min(MaxTransfer, static_cast<std::size_t>(bytes.size() - have));
        const ssize_t got = ::read(fd, bytes.data() + have, wanted);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return errno;
        if (got == 0)
            break;
        have += got;
    }
    bytes.truncate(have);
    return 0;
}

/// Like the file that is replaced, as far as this process may.
void takeAfter(int fd, const QByteArray &model)
{
    struct stat status = {};
    if (::stat(model.constData(), &status) != 0)
        return;
    // The owner first: changing it may clear mode bits. Who may not give files away keeps his own.
    if (::fchown(fd, status.st_uid, status.st_gid) != 0)
        static_cast<void>(::fchown(fd, static_cast<uid_t>(-1), status.st_gid));
    static_cast<void>(::fchmod(fd, status.st_mode & ModeBits));
}

/// \return 0, or the system's error
int fill(FileDescriptor &file, QByteArrayView bytes, const QByteArray &model)
{
    takeAfter(file.get(), model);
    if (!writeAllAt(file.get(), 0, bytes) || ::fdatasync(file.get()) != 0 || !file.close())
        return errno;
    return 0;
}

/// Makes the entries of a directory durable.
bool syncDirectory(const QByteArray &directory)
{
    const FileDescriptor entry = FileDescriptor::open(directory.constData(), O_RDONLY | O_DIRECTORY);
    // A directory that may be written but not read cannot be synchronised by anybody.
    if (!entry.isOpen())
        return errno == EACCES;
    if (::fsync(entry.get()) == 0)
        return true;
    return errno == EINVAL || errno == ENOTSUP || errno == ENOSYS || errno == EROFS;
}

bool syncFile(const QByteArray &path)
{
    const FileDescriptor file = FileDescriptor::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK);
    return !file.isOpen() || ::fsync(file.get()) == 0;
}

bool isDirectory(const QByteArray &path)
{
    struct stat status = {};
    return ::stat(path.constData(), &status) == 0 && S_ISDIR(status.st_mode);
}

} // namespace

DiskFile readDiskFile(const QByteArray &path, qsizetype maxSize)
{
    // Not blocking, because opening a pipe would wait for its writer.
    FileDescriptor file = FileDescriptor::open(path.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY);
    if (!file.isOpen())
        return {outcomeOf(errno), {}};
    struct stat status = {};
    if (::fstat(file.get(), &status) != 0)
        return {outcomeOf(errno), {}};
    if (!isReadable(status, maxSize))
        return {DiskFile::Outcome::Refused, {}};
    QByteArray bytes(static_cast<qsizetype>(status.st_size), Qt::Uninitialized);
    const int error = readAll(file.get(), bytes);
    if (error != 0)
        return {outcomeOf(error), {}};
    return {DiskFile::Outcome::Read, std::move(bytes)};
}

bool existsOnDisk(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0;
}

bool isNameFree(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) != 0 && outcomeOf(errno) == DiskFile::Outcome::Missing;
}

bool isNoFile(const QByteArray &path)
{
    struct stat status = {};
    return ::lstat(path.constData(), &status) == 0 && !S_ISREG(status.st_mode);
}

bool isDiskWritable(const QByteArray &path, qsizetype maxSize)
{
    struct stat status = {};
    if (::stat(path.constData(), &status) == 0)
        return isReadable(status, maxSize) && ::faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) == 0;
    if (errno != ENOENT)
        return false;
    QByteArray above = directoryOf(path);
    while (!existsOnDisk(above) && above != directoryOf(above))
        above = directoryOf(above);
    return isDirectory(above) && ::faccessat(AT_FDCWD, above.constData(), W_OK | X_OK, AT_EACCESS) == 0;
}

QByteArray resolvedPath(const QByteArray &path)
{
    QByteArray resolved = path;
    for (int link = 0; link < MaxLinks; ++link) {
        char target[PATH_MAX];
        const ssize_t length = ::readlink(resolved.constData(), target, sizeof target);
        if (length <= 0 || length == static_cast<ssize_t>(sizeof target))
            break;
        const QByteArray text(target, length);
        resolved = text.startsWith('/') ? text : directoryOf(resolved) + '/' + text;
    }
    return resolved;
}

QByteArray directoryOf(const QByteArray &path)
{
    qsizetype end = path.size();
    while (end > 1 && path[end - 1] == '/')
        --end;
    const qsizetype slash = path.lastIndexOf('/', end - 1);
    if (slash < 0)
        return QByteArrayLiteral(".");
    qsizetype length = slash;
    while (length > 1 && path[length - 1] == '/')
        --length;
    return path.first(std::max<qsizetype>(length, 1));
}

bool makeDirectories(const QByteArray &directory)
{
    std::vector<QByteArray> missing;
    QByteArray at = directory;
    while (!existsOnDisk(at) && at != directoryOf(at)) {
        missing.push_back(at);
        at = directoryOf(at);
    }
    for (auto path = missing.rbegin(); path != missing.rend(); ++path) {
        const bool made = ::mkdir(path->constData(), NewDirectoryMode) == 0;
        if (!made && errno != EEXIST)
            return false;
        if (!made || syncDirectory(directoryOf(*path)))
            continue;
        // Gone again, so that the next one to need it makes it durable.
        ::rmdir(path->constData());
        return false;
    }
    return isDirectory(directory);
}

bool syncRenamed(const QByteArray &path)
{
    const QByteArray directory = directoryOf(path);
    // Where renames are fragile the entry is written with the file that it names, not with the directory that it is in.
    if (hasFragileRenames(directory) && !syncFile(path))
        return false;
    return syncDirectory(directory);
}

int createDiskFile(const QByteArray &path, QByteArrayView bytes, const QByteArray &model)
{
    FileDescriptor file = FileDescriptor::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, NewFileMode);
    if (!file.isOpen())
        return errno;
    const int error = fill(file, bytes, model);
    if (error != 0)
        ::unlink(path.constData());
    return error;
}

bool growDiskFile(int fd, qsizetype size)
{
    struct stat status = {};
    if (::fstat(fd, &status) != 0)
        return false;
    const auto oldSize = static_cast<qsizetype>(status.st_size);
    if (size <= oldSize)
        return true;
    // First the space and then the length: a file must not claim to be longer than the space that it has. Where space
    // cannot be had beforehand, the writing below has to find it.
    if (::fallocate(fd, FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0 && ::fsync(fd) != 0)
        return false;
    const QByteArray blank(size - oldSize, '\n');
    if (writeAllAt(fd, oldSize, blank) && ::fsync(fd) == 0)
        return true;
    static_cast<void>(::ftruncate(fd, status.st_size));
    return false;
}

bool hasFragileRenames(const QByteArray &directory)
{
    struct statfs status = {};
    // What is not known may be of them, and changing a file in place is safe on all.
    if (::statfs(directory.constData(), &status) != 0)
        return true;
    switch (static_cast<quint32>(status.f_type)) {
    case MSDOS_SUPER_MAGIC:
    case EXFAT_SUPER_MAGIC:
    case FUSE_SUPER_MAGIC:
        return true;
    default:
        return false;
    }
}

bool writeAllAt(int fd, qsizetype offset, QByteArrayView bytes)
{
    while (!bytes.isEmpty()) {
        const auto size = std::min(MaxTransfer, static_cast<std::size_t>(bytes.size()));
        const ssize_t written = ::pwrite(fd, bytes.data(), size, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = EIO;
        if (written <= 0)
            return false;
        offset += written;
        bytes = bytes.sliced(written);
    }
    return true;
}

} // namespace marvola
