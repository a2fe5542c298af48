// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_DEADLYREAD_H
#define MARVOLA_TESTS_SUPPORT_DEADLYREAD_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

/// Makes every read of exactly \a size bytes at a place of a file deadly for this process: it ends as by a crash, at
/// once and without any clearing up. Of use where one file alone is so long, and is read in one go.
inline bool makeReadsDeadly(std::uint32_t size)
{
    constexpr auto number = static_cast<unsigned int>(offsetof(seccomp_data, nr));
    constexpr auto count = static_cast<unsigned int>(offsetof(seccomp_data, args) + 2 * sizeof(std::uint64_t));
    std::array<sock_filter, 6> rules = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, number),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_pread64, 0, 2),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, count),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, size, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
    }};
    const sock_fprog program = {static_cast<unsigned short>(rules.size()), rules.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

#endif
