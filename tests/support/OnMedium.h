// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_ONMEDIUM_H
#define MARVOLA_TESTS_SUPPORT_ONMEDIUM_H

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <gtest/gtest.h>

#include <functional>

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs \a check in a child process in which an empty medium of its own is mounted at \a directory. Nobody else sees
/// it, and it goes with the child.
/// \param options of the medium, like "size=512k"
/// \return whether it gave true there without a failed expectation
inline bool holdsOnMedium(const QString &directory, const char *options, const std::function<bool()> &check)
{
    constexpr int Refused = 2;
    const pid_t child = ::fork();
    if (child == 0) {
        const QByteArray path = QFile::encodeName(directory);
        if ((::geteuid() != 0 && ::unshare(CLONE_NEWUSER) != 0) || ::unshare(CLONE_NEWNS) != 0 ||
            ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            ::mount("small", path.constData(), "tmpfs", 0, options) != 0)
            ::_exit(Refused);
        ::_exit(check() && !testing::Test::HasFailure() ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), Refused) << "this machine lets the test mount nothing";
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Writes the file \a path until its medium has no more than \a room bytes left, in whole blocks.
inline bool fillMedium(const QString &path, qint64 room)
{
    QFile filler(path);
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    struct statvfs medium = {};
    while (::fstatvfs(filler.handle(), &medium) == 0) {
        const auto block = static_cast<qint64>(medium.f_frsize);
        if (static_cast<qint64>(medium.f_bfree) * block <= room)
            return true;
        if (filler.write(QByteArray(block, 'x')) != block)
            return false;
    }
    return false;
}

#endif
