// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_TRACEDRUN_H
#define MARVOLA_TESTS_FAULTS_TRACEDRUN_H

#include "Fault.h"

#include <functional>
#include <optional>
#include <vector>

/// How the medium is to behave, whatever it is.
enum class Medium {
    AsItIs,
    Full,          ///< no file can be made, and none can get longer
    FatLike,       ///< says that it is of the FAT family
    ListUnreadable ///< gives no bytes of the list file, as where a rename was cut off
};

/// An operation in a process of its own, with every system call that it makes on files below a folder seen, counted
/// and, if so wished, spoilt. Seen by the kernel's own tracing, so that no call escapes, whoever makes it and on
/// whatever thread.
struct TracedRun
{
    enum class End { Returned, Killed, Crashed };

    std::vector<FileCall> calls;
    End end = End::Crashed;
    int answer = -1; ///< what the operation returned

    struct Steps
    {
        std::function<void()> prepare;  ///< first, not traced
        std::function<int()> operation; ///< returns 0 to 100
    };
    /// \a fault counts calls as `calls` does.
    static TracedRun of(const Steps &steps, const QByteArray &folder, Medium medium,
                        const std::optional<Fault> &fault = std::nullopt);

    /// Whether this machine and its system can do this at all.
    static bool isPossible();
};

#endif
