// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "CallHook.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>

#include <dirent.h>
#include <fcntl.h>
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
// NOLINTEND(bugprone-reserved-identifier)
}
