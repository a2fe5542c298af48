// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Usage.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include <dirent.h>
#include <malloc.h>
#include <unistd.h>

namespace {

/// The number behind \a name in the process's status.
std::size_t statusValue(const char *name)
{
    std::FILE *status = std::fopen("/proc/self/status", "re");
    std::size_t value = 0;
    char line[256];
    while (status != nullptr && std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, name, std::strlen(name)) == 0)
            std::sscanf(line + std::strlen(name), "%zu", &value);
    }
    if (status != nullptr)
        std::fclose(status);
    return value;
}

int openDescriptors()
{
    DIR *folder = ::opendir("/proc/self/fd");
    int count = 0;
    while (folder != nullptr && ::readdir(folder) != nullptr)
        ++count;
    if (folder != nullptr)
        ::closedir(folder);
    return count - 3; // ".", ".." and the folder itself
}

/// A thread that has been joined is still counted until the system is done with it: of several looks, the least counts.
int runningThreads()
{
    constexpr int Looks = 100;
    std::size_t least = statusValue("Threads:");
    for (int look = 1; look < Looks && least > 1; ++look) {
        ::usleep(1000);
        least = std::min(least, statusValue("Threads:"));
    }
    return static_cast<int>(least);
}

} // namespace

Usage Usage::now()
{
    const struct mallinfo2 heap = ::mallinfo2();
    return {statusValue("VmRSS:"), (heap.uordblks + heap.hblkhd) / 1024, openDescriptors(), runningThreads()};
}
