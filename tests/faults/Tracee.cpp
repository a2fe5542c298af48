// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Tracee.h"

#include "FileCall.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include <linux/filter.h>
#include <linux/limits.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>

bool Tracee::stopAtFileCalls()
{
    std::vector<sock_filter> program = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<__u32>(offsetof(seccomp_data, nr)))};
    for (const KnownCall &call : knownCalls()) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(call.number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRACE));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter, 0, 0) == 0;
}

#ifdef __x86_64__

namespace {

using Registers = user_regs_struct;

std::optional<Registers> registersOf(pid_t thread)
{
    Registers registers = {};
    if (::ptrace(PTRACE_GETREGS, thread, nullptr, &registers) != 0)
        return std::nullopt;
    return registers;
}

template<typename Change>
void changeRegisters(pid_t thread, Change change)
{
    if (auto registers = registersOf(thread)) {
        change(*registers);
        ::ptrace(PTRACE_SETREGS, thread, nullptr, &*registers);
    }
}

unsigned long long negative(int error)
{
    return static_cast<unsigned long long>(-static_cast<long long>(error));
}

} // namespace

bool Tracee::isSupported()
{
    return true;
}

std::optional<Tracee::Call> Tracee::callOf(pid_t thread)
{
    const auto registers = registersOf(thread);
    if (!registers)
        return std::nullopt;
    const Registers &r = *registers;
    return Call{static_cast<long>(r.orig_rax), {r.rdi, r.rsi, r.rdx, r.r10, r.r8, r.r9}, static_cast<long long>(r.rax)};
}

void Tracee::refuse(pid_t thread, int error)
{
    changeRegisters(thread, [error](Registers &registers) {
        registers.orig_rax = negative(1); // no call
        registers.rax = negative(error);
    });
}

void Tracee::answer(pid_t thread, int error)
{
    changeRegisters(thread, [error](Registers &registers) { registers.rax = negative(error); });
}

void Tracee::setArgument(pid_t thread, int index, unsigned long long value)
{
    changeRegisters(thread, [index, value](Registers &r) {
        unsigned long long *const places[] = {&r.rdi, &r.rsi, &r.rdx, &r.r10, &r.r8, &r.r9};
        *places[index] = value;
    });
}

#else

bool Tracee::isSupported()
{
    return false;
}

std::optional<Tracee::Call> Tracee::callOf(pid_t)
{
    return std::nullopt;
}

void Tracee::refuse(pid_t, int)
{
}

void Tracee::answer(pid_t, int)
{
}

void Tracee::setArgument(pid_t, int, unsigned long long)
{
}

#endif

namespace {

/// Memory of another process, whose addresses are mere numbers here.
iovec memoryAt(unsigned long long address, std::size_t size)
{
    iovec memory{nullptr, size};
    static_assert(sizeof memory.iov_base <= sizeof address);
    std::memcpy(&memory.iov_base, &address, sizeof memory.iov_base);
    return memory;
}

} // namespace

QByteArray Tracee::textAt(pid_t thread, unsigned long long address)
{
    constexpr std::size_t PageSize = 4096;
    QByteArray text;
    while (text.size() < PATH_MAX) {
        // No further than to the end of the page: what follows may not be there.
        char piece[PageSize];
        const std::size_t size = PageSize - address % PageSize;
        const iovec here{piece, size};
        const iovec there = memoryAt(address, size);
        const ssize_t got = ::process_vm_readv(thread, &here, 1, &there, 1, 0);
        if (got <= 0)
            break;
        const QByteArray bytes(piece, got);
        const qsizetype end = bytes.indexOf('\0');
        if (end >= 0)
            return text + bytes.first(end);
        text += bytes;
        address += static_cast<unsigned long long>(got);
    }
    return text;
}

void Tracee::write(pid_t thread, unsigned long long address, const void *bytes, std::size_t size)
{
    const iovec here{const_cast<void *>(bytes), size};
    const iovec there = memoryAt(address, size);
    static_cast<void>(::process_vm_writev(thread, &here, 1, &there, 1, 0));
}
