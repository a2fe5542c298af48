// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CallHook.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

namespace {

std::atomic<bool> isArmed = false;
std::atomic<int> calls = 0;
int wanted = 0;
std::function<void()> wantedAction;

void note()
{
    // What the action does itself does not count.
    static thread_local bool isInside = false;
    if (!isArmed || isInside)
        return;
    isInside = true;
    if (++calls == wanted)
        wantedAction();
    isInside = false;
}

} // namespace

void CallHook::arm(int number, std::function<void()> action)
{
    wanted = number;
    wantedAction = std::move(action);
    calls = 0;
    isArmed = true;
}

int CallHook::disarm()
{
    isArmed = false;
    return calls;
}

extern "C" {

// These names are the linker's: it sends a call of open() to __wrap_open(), and __real_open() to open().
// NOLINTBEGIN(bugprone-reserved-identifier)
int __real_open(const char *path, int flags, ...);
ssize_t __real_getdents64(int fd, void *buffer, size_t size);
ssize_t __real_pread(int fd, void *buffer, size_t size, off_t offset);
ssize_t __real_pwrite(int fd, const void *buffer, size_t size, off_t offset);
int __real_fdatasync(int fd);
int __real_fsync(int fd);
int __real_fchmod(int fd, mode_t mode);
int __real_rename(const char *from, const char *to);
int __real_unlink(const char *path);
ssize_t __real_read(int fd, void *buffer, size_t size);
int __real_mkdir(const char *path, mode_t mode);
int __real_flock(int fd, int operation);
int __real_stat(const char *path, struct stat *status);
int __real_lstat(const char *path, struct stat *status);
int __real_fstat(int fd, struct stat *status);
ssize_t __real_readlink(const char *path, char *buffer, size_t size);
int __real_fallocate(int fd, int mode, off_t offset, off_t size);
int __real_posix_fallocate(int fd, off_t offset, off_t size);
int __real_ftruncate(int fd, off_t size);

int __wrap_open(const char *path, int flags, ...)
{
    note();
    if ((flags & (O_CREAT | O_TMPFILE)) == 0)
        return __real_open(path, flags);
    va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return __real_open(path, flags, mode);
}

ssize_t __wrap_getdents64(int fd, void *buffer, size_t size)
{
    note();
    return __real_getdents64(fd, buffer, size);
}

ssize_t __wrap_pread(int fd, void *buffer, size_t size, off_t offset)
{
    note();
    return __real_pread(fd, buffer, size, offset);
}

ssize_t __wrap_pwrite(int fd, const void *buffer, size_t size, off_t offset)
{
    note();
    return __real_pwrite(fd, buffer, size, offset);
}

int __wrap_fdatasync(int fd)
{
    note();
    return __real_fdatasync(fd);
}

int __wrap_fsync(int fd)
{
    note();
    return __real_fsync(fd);
}

int __wrap_fchmod(int fd, mode_t mode)
{
    note();
    return __real_fchmod(fd, mode);
}

int __wrap_rename(const char *from, const char *to)
{
    note();
    return __real_rename(from, to);
}

int __wrap_unlink(const char *path)
{
    note();
    return __real_unlink(path);
}

ssize_t __wrap_read(int fd, void *buffer, size_t size)
{
    note();
    return __real_read(fd, buffer, size);
}

int __wrap_mkdir(const char *path, mode_t mode)
{
    note();
    return __real_mkdir(path, mode);
}

int __wrap_flock(int fd, int operation)
{
    note();
    return __real_flock(fd, operation);
}

int __wrap_stat(const char *path, struct stat *status)
{
    note();
    return __real_stat(path, status);
}

int __wrap_lstat(const char *path, struct stat *status)
{
    note();
    return __real_lstat(path, status);
}

int __wrap_fstat(int fd, struct stat *status)
{
    note();
    return __real_fstat(fd, status);
}

ssize_t __wrap_readlink(const char *path, char *buffer, size_t size)
{
    note();
    return __real_readlink(path, buffer, size);
}

int __wrap_fallocate(int fd, int mode, off_t offset, off_t size)
{
    note();
    return __real_fallocate(fd, mode, offset, size);
}

int __wrap_posix_fallocate(int fd, off_t offset, off_t size)
{
    note();
    return __real_posix_fallocate(fd, offset, size);
}

int __wrap_ftruncate(int fd, off_t size)
{
    note();
    return __real_ftruncate(fd, size);
}
// NOLINTEND(bugprone-reserved-identifier)
}
