// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_STOPPEDHOLDER_H
#define MARVOLA_TESTS_STOPPEDHOLDER_H

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

/// Another process that has locked a folder and was stopped then, as a system may freeze any program that is not in
/// view.
class StoppedHolder
{
public:
    explicit StoppedHolder(const char *folder)
    {
        m_child = ::fork();
        if (m_child == 0) {
            const int directory = ::open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
            if (::flock(directory, LOCK_EX) != 0)
                ::_exit(1);
            ::raise(SIGSTOP);
            ::_exit(0);
        }
        int status = 0;
        m_isHolding = ::waitpid(m_child, &status, WUNTRACED) == m_child && WIFSTOPPED(status);
    }

    ~StoppedHolder() { end(); }
    StoppedHolder(const StoppedHolder &) = delete;
    StoppedHolder &operator=(const StoppedHolder &) = delete;

    bool isHolding() const { return m_isHolding; }

    void end()
    {
        if (m_isHolding && ::kill(m_child, SIGKILL) == 0)
            ::waitpid(m_child, nullptr, 0);
        m_isHolding = false;
    }

private:
    pid_t m_child = -1;
    bool m_isHolding = false;
};

#endif
