// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "TracedRun.h"

#include "Tracee.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <map>

#include <fcntl.h>
#include <linux/limits.h>
#include <linux/magic.h>
#include <sys/ptrace.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int WriteSizeArgument = 2;
/// Whatever takes longer hangs.
constexpr unsigned MaxSeconds = 30;

[[noreturn]] void runTraced(const TracedRun::Steps &steps)
{
    ::alarm(MaxSeconds);
    steps.prepare();
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || ::raise(SIGSTOP) != 0 || !Tracee::stopAtFileCalls())
        ::abort();
    ::_exit(steps.operation());
}

QByteArray descriptorEntry(pid_t thread, unsigned long long fd)
{
    return "/proc/" + QByteArray::number(thread) + "/fd/" + QByteArray::number(static_cast<int>(fd));
}

QByteArray linkTarget(const QByteArray &path)
{
    char target[PATH_MAX];
    const ssize_t size = ::readlink(path.constData(), target, sizeof target);
    return size > 0 ? QByteArray(target, size) : QByteArray();
}

/// The tracer of one process: decides at each stop what its thread is to meet.
class Tracer
{
public:
    Tracer(pid_t process, QByteArray folder, Medium medium, const std::optional<Fault> &fault)
        : m_process(process), m_folder(std::move(folder)), m_medium(medium), m_fault(fault)
    {
    }

    TracedRun run()
    {
        int status = 0;
        if (::waitpid(m_process, &status, 0) != m_process || !WIFSTOPPED(status))
            return m_run;
        constexpr long Options =
            PTRACE_O_TRACESECCOMP | PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL;
        ::ptrace(PTRACE_SETOPTIONS, m_process, nullptr, Options);
        ::ptrace(PTRACE_CONT, m_process, nullptr, nullptr);
        for (;;) {
            const pid_t thread = ::waitpid(-1, &status, __WALL);
            if (thread < 0)
                return m_run;
            if (WIFSTOPPED(status))
                handleStop(thread, status);
            else if (thread == m_process)
                break;
        }
        if (WIFEXITED(status)) {
            m_run.end = TracedRun::End::Returned;
            m_run.answer = WEXITSTATUS(status);
        } else if (m_wasKilled) {
            m_run.end = TracedRun::End::Killed;
        }
        return m_run;
    }

private:
    /// What is to happen when a call that is now under way returns.
    struct AtExit
    {
        enum class Then { Nothing, Kill, Answer, LookFatLike, SpoilNextWrite };
        Then then = Then::Nothing;
        int error = 0;
        unsigned long long address = 0;
    };

    void handleStop(pid_t thread, int status)
    {
        const int signal = WSTOPSIG(status);
        if (status >> 8 == (SIGTRAP | (PTRACE_EVENT_SECCOMP << 8))) {
            handleEntry(thread);
        } else if (signal == (SIGTRAP | 0x80)) {
            handleExit(thread);
        } else {
            // Events of tracing and the stop that a new thread begins with are not for the process.
            const bool isForProcess = signal != SIGTRAP && signal != SIGSTOP;
            ::ptrace(PTRACE_CONT, thread, nullptr, isForProcess ? signal : 0);
        }
    }

    void handleEntry(pid_t thread)
    {
        const auto call = Tracee::callOf(thread);
        const KnownCall *known = call ? knownCall(call->number) : nullptr;
        const auto seen = known ? identify(thread, *known, *call) : std::nullopt;
        if (!seen) {
            ::ptrace(PTRACE_CONT, thread, nullptr, nullptr);
            return;
        }
        const int number = static_cast<int>(m_run.calls.size());
        m_run.calls.push_back(*seen);
        const int error = errorFor(thread, number, *seen, *call);
        if (error != 0 && isDoneDespiteError(seen->kind))
            goOnUntilExit(thread, {AtExit::Then::Answer, error, 0});
        else if (error != 0)
            refuse(thread, error);
        else if (m_fault && m_fault->call == number)
            spoil(thread, *call);
        else if (m_medium == Medium::FatLike && call->number == SYS_statfs)
            goOnUntilExit(thread, {AtExit::Then::LookFatLike, 0, call->arguments[1]});
        else
            ::ptrace(PTRACE_CONT, thread, nullptr, nullptr);
    }

    /// What the call is, if it is about a file below the folder, and one that a fault could matter to.
    std::optional<FileCall> identify(pid_t thread, const KnownCall &known, const Tracee::Call &call) const
    {
        const auto *arguments = call.arguments;
        FileCall seen{known.name, {}, known.kind};
        if (known.pathArgument >= 0)
            seen.path = Tracee::textAt(thread, arguments[known.pathArgument]);
        if (seen.path.isEmpty() && known.fdArgument >= 0)
            seen.path = linkTarget(descriptorEntry(thread, arguments[known.fdArgument]));
        if (!seen.path.startsWith(m_folder))
            return std::nullopt;
        if (known.flagsArgument >= 0)
            seen.kind = kindOfOpen(arguments[known.flagsArgument]);
        if (seen.kind == CallKind::Close && !isOpenForWriting(thread, arguments[0]))
            return std::nullopt;
        return seen;
    }

    static CallKind kindOfOpen(unsigned long long flags)
    {
        if ((flags & O_CREAT) != 0)
            return CallKind::Create;
        return (flags & O_ACCMODE) == O_RDONLY ? CallKind::Open : CallKind::OpenWrite;
    }

    static bool isOpenForWriting(pid_t thread, unsigned long long fd)
    {
        struct stat status = {};
        return ::lstat(descriptorEntry(thread, fd).constData(), &status) == 0 && (status.st_mode & S_IWUSR) != 0;
    }

    int errorFor(pid_t thread, int number, const FileCall &seen, const Tracee::Call &call)
    {
        const auto errors = errorsOf(seen.kind);
        const bool canGiveIt = m_fault && std::find(errors.begin(), errors.end(), m_fault->error) != errors.end();
        if (canGiveIt && m_fault->isErrorAt(number))
            return m_fault->error;
        if (m_nextWriteError != 0 && seen.kind == CallKind::Write)
            return std::exchange(m_nextWriteError, 0);
        if (m_medium == Medium::ListUnreadable && seen.kind == CallKind::Read && seen.path.endsWith("/.marvola.list"))
            return EIO;
        return m_medium == Medium::Full && needsRoom(thread, seen, call) ? ENOSPC : 0;
    }

    static bool needsRoom(pid_t thread, const FileCall &seen, const Tracee::Call &call)
    {
        struct stat status = {};
        const auto *arguments = call.arguments;
        switch (seen.kind) {
        case CallKind::Create:
            return ::lstat(seen.path.constData(), &status) != 0;
        case CallKind::Name:
            return call.number == SYS_mkdir || call.number == SYS_mkdirat;
        case CallKind::Reserve: // (descriptor, mode, offset, size)
            ::stat(descriptorEntry(thread, arguments[0]).constData(), &status);
            return arguments[2] + arguments[3] > static_cast<unsigned long long>(status.st_blocks) * 512;
        case CallKind::Write: // (descriptor, bytes, size, offset)
            ::stat(descriptorEntry(thread, arguments[0]).constData(), &status);
            return call.number == SYS_pwrite64 &&
                   arguments[2] + arguments[3] > static_cast<unsigned long long>(status.st_size);
        default:
            return false;
        }
    }

    /// A fault that is no plain error.
    void spoil(pid_t thread, const Tracee::Call &call)
    {
        if (m_fault->kind == Fault::Kind::KilledBefore) {
            killProcess();
            return;
        }
        if (m_fault->kind == Fault::Kind::KilledAfter) {
            goOnUntilExit(thread, {AtExit::Then::Kill, 0, 0});
            return;
        }
        Tracee::setArgument(thread, WriteSizeArgument, call.arguments[WriteSizeArgument] / 2);
        const bool kills = m_fault->kind == Fault::Kind::KilledHalfway;
        goOnUntilExit(thread, {kills ? AtExit::Then::Kill : AtExit::Then::SpoilNextWrite, m_fault->error, 0});
    }

    void handleExit(pid_t thread)
    {
        const AtExit then = std::exchange(m_atExit[thread], {});
        switch (then.then) {
        case AtExit::Then::Nothing:
            break;
        case AtExit::Then::Kill:
            killProcess();
            return;
        case AtExit::Then::Answer:
            Tracee::answer(thread, then.error);
            break;
        case AtExit::Then::SpoilNextWrite:
            m_nextWriteError = then.error;
            break;
        case AtExit::Then::LookFatLike: {
            const decltype(std::declval<struct statfs>().f_type) type = MSDOS_SUPER_MAGIC;
            Tracee::write(thread, then.address + offsetof(struct statfs, f_type), &type, sizeof type);
            break;
        }
        }
        ::ptrace(PTRACE_CONT, thread, nullptr, nullptr);
    }

    static void refuse(pid_t thread, int error)
    {
        Tracee::refuse(thread, error);
        ::ptrace(PTRACE_CONT, thread, nullptr, nullptr);
    }

    void goOnUntilExit(pid_t thread, const AtExit &then)
    {
        m_atExit[thread] = then;
        ::ptrace(PTRACE_SYSCALL, thread, nullptr, nullptr);
    }

    void killProcess()
    {
        m_wasKilled = true;
        ::kill(m_process, SIGKILL);
    }

    pid_t m_process;
    QByteArray m_folder;
    Medium m_medium;
    std::optional<Fault> m_fault;
    TracedRun m_run;
    std::map<pid_t, AtExit> m_atExit;
    int m_nextWriteError = 0;
    bool m_wasKilled = false;
};

} // namespace

TracedRun TracedRun::of(const Steps &steps, const QByteArray &folder, Medium medium, const std::optional<Fault> &fault)
{
    const pid_t process = ::fork();
    if (process == 0)
        runTraced(steps);
    return Tracer(process, folder, medium, fault).run();
}

bool TracedRun::isPossible()
{
    if (!Tracee::isSupported())
        return false;
    const Steps look{[] {}, [] { return ::access("/", F_OK) + 1; }};
    const TracedRun run = of(look, "/", Medium::AsItIs);
    return run.end == End::Returned && run.answer == 1 && run.calls.size() == 1;
}
