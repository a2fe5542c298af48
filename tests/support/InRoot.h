// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_INROOT_H
#define MARVOLA_TESTS_SUPPORT_INROOT_H

#include <QtCore/QFile>
#include <QtCore/QString>

#include <gtest/gtest.h>

#include <functional>

#include <fcntl.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs \a check in a child process whose root directory is \a root, for what the library does at fixed paths.
/// \return whether it gave true there
inline bool holdsInRoot(const QString &root, const std::function<bool()> &check)
{
    constexpr int Refused = 2;
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() != 0 && ::unshare(CLONE_NEWUSER) != 0)
            ::_exit(Refused);
        const int outside = ::open("/", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (::chroot(QFile::encodeName(root).constData()) != 0 || ::chdir("/") != 0)
            ::_exit(Refused);
        const bool holds = check();
        // Out again, for what a process writes at its end where coverage is measured.
        if (::fchdir(outside) != 0 || ::chroot(".") != 0)
            ::_exit(Refused);
        ::_exit(holds ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), Refused) << "this machine lets the test change no root directory";
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

#endif
