// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "OwnTmp.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/// As an exit status: the /tmp could not be given.
constexpr int NotGiven = 99;

bool enterOwnMounts()
{
    return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool bind(const char *source, const char *target)
{
    return ::mount(source, target, nullptr, MS_BIND | MS_REC, nullptr) == 0;
}

constexpr char OpenFiles[] = "/proc/self/fd/";
constexpr size_t OpenFileSize = sizeof OpenFiles + 10;

/// The path of an open file.
void nameOpenFile(int fd, char (&path)[OpenFileSize])
{
    char *end = path + sizeof OpenFiles - 1;
    std::memcpy(path, OpenFiles, sizeof OpenFiles);
    for (int rest = fd; rest >= 10; rest /= 10)
        ++end;
    end[1] = '\0';
    for (int rest = fd; end >= path + sizeof OpenFiles - 1; rest /= 10)
        *end-- = static_cast<char>('0' + rest % 10);
}

/// Puts \a own in the place of /tmp, with the entries \a shared of the old one in it. In a child process only, which
/// has a small stack: nothing here may allocate, since the address sanitizer takes kilobytes of it for that.
bool replaceTmp(const QByteArray &own, const QList<QByteArray> &shared, std::vector<int> &entries)
{
    if (!enterOwnMounts())
        return false;
    for (size_t index = 0; index < entries.size(); ++index)
        entries[index] = ::open(shared.at(qsizetype(index)).constData(), O_PATH | O_CLOEXEC);
    if (!bind(own.constData(), "/tmp"))
        return false;
    char source[OpenFileSize];
    for (size_t index = 0; index < entries.size(); ++index) {
        nameOpenFile(entries[index], source);
        if (!bind(source, shared.at(qsizetype(index)).constData()))
            return false;
    }
    return true;
}

} // namespace

bool OwnTmp::isPossible()
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(enterOwnMounts() ? 0 : NotGiven);
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void OwnTmp::share(const QString &path)
{
    const QString parent = QStringLiteral("/tmp/");
    if (!path.startsWith(parent))
        return;
    const QString name = path.section(u'/', 2, 2);
    const QByteArray entry = QFile::encodeName(parent + name);
    if (!m_shared.contains(entry)) {
        EXPECT_TRUE(QDir().mkpath(m_directory.filePath(name)));
        m_shared.append(entry);
    }
}

void OwnTmp::give(QProcess &program) const
{
    const QByteArray own = QFile::encodeName(m_directory.path());
    const auto entries = std::make_shared<std::vector<int>>(size_t(m_shared.size()));
    program.setChildProcessModifier([own, shared = m_shared, entries] {
        std::signal(SIGINT, SIG_DFL);
        std::signal(SIGTERM, SIG_DFL);
        std::signal(SIGHUP, SIG_DFL);
        if (!replaceTmp(own, shared, *entries))
            ::_exit(NotGiven);
    });
}

QByteArray OwnTmp::read(const QString &name) const
{
    QFile file(m_directory.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(name);
    return file.readAll();
}
