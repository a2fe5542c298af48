// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_PLATFORM_FILEDESCRIPTOR_H
#define MARVOLA_PLATFORM_FILEDESCRIPTOR_H

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace marvola {

/// Owns one open file of the operating system and closes it.
class FileDescriptor
{
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_fd, other.m_fd);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor() { close(); }

    /// Opens \a path with open()'s \a flags (and O_CLOEXEC); not open when that fails.
    static FileDescriptor open(const char *path, int flags, mode_t mode = 0)
    {
        int fd = -1;
        do
            fd = ::open(path, flags | O_CLOEXEC, mode);
        while (fd < 0 && errno == EINTR);
        return FileDescriptor(fd);
    }

    int get() const { return m_fd; }
    bool isOpen() const { return m_fd >= 0; }
    /// Some filesystems tell of a full medium no earlier than here. Closing what is not open is a success.
    bool close() { return m_fd < 0 || ::close(std::exchange(m_fd, -1)) == 0; }

private:
    int m_fd = -1;
};

} // namespace marvola

#endif
