// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FFMPEG_CHILDPROCESS_H
#define MARVOLA_TESTS_FFMPEG_CHILDPROCESS_H

#include <QtCore/qglobal.h>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs \a work in a process of its own. \return what it returns, or minus the signal that ended it.
template<typename Work>
int inChild(Work work)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work());
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return 127;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

/// Whether memory is held on to for reasons of the build, so that to measure it says nothing.
#ifdef MARVOLA_SANITIZED
inline constexpr bool HoldsFreely = true;
#else
inline constexpr bool HoldsFreely = false;
#endif

/// The most memory that this process has held at once so far.
inline qint64 mostHeldBytes()
{
    rusage usage = {};
    return ::getrusage(RUSAGE_SELF, &usage) == 0 ? usage.ru_maxrss * qint64(1024) : 0;
}

/// How long this process has kept a processor busy so far, in milliseconds.
inline qint64 busyTime()
{
    rusage usage = {};
    if (::getrusage(RUSAGE_SELF, &usage) != 0)
        return 0;
    const auto milliseconds = [](const timeval &time) { return qint64(time.tv_sec) * 1000 + time.tv_usec / 1000; };
    return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

#endif
