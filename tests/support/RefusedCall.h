// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SUPPORT_REFUSEDCALL_H
#define MARVOLA_TESTS_SUPPORT_REFUSEDCALL_H

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>

#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// A call to the kernel that fails with an error and does nothing else.
struct RefusedCall
{
    static constexpr unsigned int AnyArgument = 6;

    unsigned int number = 0;
    int error = 0;
    /// Only calls whose argument at this place, from 0, has \a value.
    unsigned int argument = AnyArgument;
    std::uint32_t value = 0;
};

/// Makes the kernel refuse a call to this process from now on.
inline bool refuseFromNowOn(const RefusedCall &call)
{
    const bool isAny = call.argument == RefusedCall::AnyArgument;
    constexpr auto number = static_cast<unsigned int>(offsetof(seccomp_data, nr));
    const auto argument =
        static_cast<unsigned int>(offsetof(seccomp_data, args) + (isAny ? 0 : call.argument) * sizeof(std::uint64_t));
    const auto error = static_cast<unsigned int>(call.error) & SECCOMP_RET_DATA;
    std::array<sock_filter, 6> rules = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, number),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.number, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, argument),
        BPF_JUMP(BPF_JMP | (isAny ? BPF_JGE : BPF_JEQ) | BPF_K, (isAny ? 0 : call.value), 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | error),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    const sock_fprog program = {static_cast<unsigned short>(rules.size()), rules.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

/// Runs \a check in a child process to which the kernel refuses \a call.
/// \return whether it gave true there without a failed expectation
inline bool holdsWithout(const RefusedCall &call, const std::function<bool()> &check)
{
    constexpr int CannotRefuse = 2;
    const pid_t child = ::fork();
    if (child == 0) {
        if (!refuseFromNowOn(call))
            ::_exit(CannotRefuse);
        ::_exit(check() && !testing::Test::HasFailure() ? 0 : 1);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), CannotRefuse) << "this machine lets the test refuse no calls";
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

#endif
