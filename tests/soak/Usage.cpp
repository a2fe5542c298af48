// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Usage.h"

#include <cstdio>
#include <cstring>

#include <dirent.h>
#include <malloc.h>

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

} // namespace

Usage Usage::now()
{
    const struct mallinfo2 heap = ::mallinfo2();
    return {statusValue("VmRSS:"), (heap.uordblks + heap.hblkhd) / 1024, openDescriptors(),
            static_cast<int>(statusValue("Threads:"))};
}
