// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_TRACEE_H
#define MARVOLA_TESTS_FAULTS_TRACEE_H

#include <QtCore/QByteArray>

#include <optional>

#include <sys/types.h>

/// A stopped thread of a traced process, at the entry or the exit of a system call: what it asked for, and how to have
/// it get something else.
namespace Tracee {

/// Whether it is known how this machine's registers hold system calls.
bool isSupported();

/// In the traced process: has the system stop for its tracer at each call that works on files, from now on.
[[nodiscard]] bool stopAtFileCalls();

struct Call
{
    long number = -1;
    unsigned long long arguments[6] = {};
    long long result = 0; ///< at the exit
};
std::optional<Call> callOf(pid_t thread);
/// At the entry: the call is not made, and gives \a error.
void refuse(pid_t thread, int error);
/// At the exit: the call, which was made, gives \a error.
void answer(pid_t thread, int error);
void setArgument(pid_t thread, int index, unsigned long long value);

QByteArray textAt(pid_t thread, unsigned long long address);
void write(pid_t thread, unsigned long long address, const void *bytes, std::size_t size);

} // namespace Tracee

#endif
