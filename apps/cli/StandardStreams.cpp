// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

namespace marvola {

namespace {

bool occupy(int descriptor)
{
    if (::fcntl(descriptor, F_GETFD) >= 0) {
        return true;
    }
    // Nobody gets to see what is printed, and is to be told: a write to what is open for reading alone fails.
    const int access = descriptor == STDOUT_FILENO ? O_RDONLY : O_RDWR;
    return ::open("/dev/null", access) == descriptor; // the lowest number that is free
}

} // namespace

bool occupyStandardStreams()
{
    return occupy(STDIN_FILENO) && occupy(STDOUT_FILENO) && occupy(STDERR_FILENO);
}

} // namespace marvola
