// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "StandardStreams.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// Whether \a check holds in a process that was started without the standard streams.
bool holdsWithoutStreams(const std::function<bool()> &check)
{
    const pid_t child = ::fork();
    if (child == 0) {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            ::close(descriptor);
        ::_exit(marvola::occupyStandardStreams() && check() ? 0 : 1);
    }
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace

TEST(StandardStreams, ClosedOnesAreTakenBeforeAnyFile)
{
    EXPECT_TRUE(holdsWithoutStreams([] { return ::open("/", O_RDONLY) > STDERR_FILENO; }));
}

TEST(StandardStreams, ClosedInputIsAtItsEnd)
{
    char byte = 0;
    EXPECT_TRUE(holdsWithoutStreams([&byte] { return ::read(STDIN_FILENO, &byte, 1) == 0; }));
}

TEST(StandardStreams, ClosedOutputStaysAnError)
{
    EXPECT_TRUE(holdsWithoutStreams([] { return ::write(STDOUT_FILENO, "x", 1) < 0 && errno == EBADF; }));
}

TEST(StandardStreams, ClosedErrorOutputSwallowsAll)
{
    EXPECT_TRUE(holdsWithoutStreams([] { return ::write(STDERR_FILENO, "x", 1) == 1; }));
}

TEST(StandardStreams, OpenOnesStayWhatTheyAre)
{
    int ends[2] = {-1, -1};
    ASSERT_EQ(::pipe(ends), 0);
    EXPECT_TRUE(holdsWithoutStreams([&ends] {
        return ::dup2(ends[1], STDOUT_FILENO) == STDOUT_FILENO && marvola::occupyStandardStreams() &&
               ::write(STDOUT_FILENO, "x", 1) == 1;
    }));
    char byte = 0;
    EXPECT_EQ(::read(ends[0], &byte, 1), 1);
    ::close(ends[0]);
    ::close(ends[1]);
}
