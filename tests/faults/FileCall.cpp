// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "FileCall.h"

#include <algorithm>
#include <cerrno>
#include <iterator>

#include <sys/syscall.h>

namespace {

constexpr int None = -1;

using Kind = CallKind;

constexpr KnownCall Calls[] = {
    {SYS_openat, "openat", Kind::Open, 1, 0, 2},
    {SYS_read, "read", Kind::Read, None, 0, None},
    {SYS_pread64, "pread64", Kind::Read, None, 0, None},
    {SYS_readv, "readv", Kind::Read, None, 0, None},
    {SYS_preadv, "preadv", Kind::Read, None, 0, None},
    {SYS_getdents64, "getdents64", Kind::Read, None, 0, None},
    {SYS_write, "write", Kind::Write, None, 0, None},
    {SYS_pwrite64, "pwrite64", Kind::Write, None, 0, None},
    {SYS_writev, "writev", Kind::Write, None, 0, None},
    {SYS_pwritev, "pwritev", Kind::Write, None, 0, None},
    {SYS_sendfile, "sendfile", Kind::Write, None, 0, None},
    {SYS_copy_file_range, "copy_file_range", Kind::Write, None, 2, None},
    {SYS_ftruncate, "ftruncate", Kind::Cut, None, 0, None},
    {SYS_truncate, "truncate", Kind::Cut, 0, None, None},
    {SYS_fallocate, "fallocate", Kind::Reserve, None, 0, None},
    {SYS_fsync, "fsync", Kind::Sync, None, 0, None},
    {SYS_fdatasync, "fdatasync", Kind::Sync, None, 0, None},
    {SYS_sync_file_range, "sync_file_range", Kind::Sync, None, 0, None},
    {SYS_syncfs, "syncfs", Kind::Sync, None, 0, None},
    {SYS_close, "close", Kind::Close, None, 0, None},
    {SYS_renameat, "renameat", Kind::Name, 1, 0, None},
    {SYS_renameat2, "renameat2", Kind::Name, 1, 0, None},
    {SYS_linkat, "linkat", Kind::Name, 3, 2, None},
    {SYS_symlinkat, "symlinkat", Kind::Name, 2, 1, None},
    {SYS_mkdirat, "mkdirat", Kind::Name, 1, 0, None},
    {SYS_mknodat, "mknodat", Kind::Name, 1, 0, None},
    {SYS_unlinkat, "unlinkat", Kind::Remove, 1, 0, None},
    {SYS_fchmod, "fchmod", Kind::Attribute, None, 0, None},
    {SYS_fchmodat, "fchmodat", Kind::Attribute, 1, 0, None},
    {SYS_utimensat, "utimensat", Kind::Attribute, 1, 0, None},
    {SYS_fchown, "fchown", Kind::Owner, None, 0, None},
    {SYS_fchownat, "fchownat", Kind::Owner, 1, 0, None},
    {SYS_flock, "flock", Kind::Lock, None, 0, None},
    {SYS_newfstatat, "newfstatat", Kind::Look, 1, 0, None},
    {SYS_fstat, "fstat", Kind::Look, None, 0, None},
    {SYS_statx, "statx", Kind::Look, 1, 0, None},
    {SYS_statfs, "statfs", Kind::Look, 0, None, None},
    {SYS_fstatfs, "fstatfs", Kind::Look, None, 0, None},
    {SYS_readlinkat, "readlinkat", Kind::Look, 1, 0, None},
    {SYS_faccessat, "faccessat", Kind::Look, 1, 0, None},
    {SYS_faccessat2, "faccessat2", Kind::Look, 1, 0, None},
#ifdef SYS_open
    // The older calls, which newer machines do not have.
    {SYS_open, "open", Kind::Open, 0, None, 1},
    {SYS_creat, "creat", Kind::Create, 0, None, None},
    {SYS_rename, "rename", Kind::Name, 0, None, None},
    {SYS_link, "link", Kind::Name, 1, None, None},
    {SYS_symlink, "symlink", Kind::Name, 1, None, None},
    {SYS_mkdir, "mkdir", Kind::Name, 0, None, None},
    {SYS_mknod, "mknod", Kind::Name, 0, None, None},
    {SYS_unlink, "unlink", Kind::Remove, 0, None, None},
    {SYS_rmdir, "rmdir", Kind::Remove, 0, None, None},
    {SYS_chmod, "chmod", Kind::Attribute, 0, None, None},
    {SYS_chown, "chown", Kind::Owner, 0, None, None},
    {SYS_lchown, "lchown", Kind::Owner, 0, None, None},
    {SYS_stat, "stat", Kind::Look, 0, None, None},
    {SYS_lstat, "lstat", Kind::Look, 0, None, None},
    {SYS_readlink, "readlink", Kind::Look, 0, None, None},
    {SYS_access, "access", Kind::Look, 0, None, None},
#endif
};

} // namespace

const std::vector<KnownCall> &knownCalls()
{
    static const std::vector<KnownCall> calls(std::begin(Calls), std::end(Calls));
    return calls;
}

const KnownCall *knownCall(long number)
{
    const auto &calls = knownCalls();
    const auto found =
        std::find_if(calls.begin(), calls.end(), [number](const KnownCall &call) { return call.number == number; });
    return found == calls.end() ? nullptr : &*found;
}

bool changesFiles(CallKind kind)
{
    switch (kind) {
    case CallKind::Look:
    case CallKind::Open:
    case CallKind::Read:
    case CallKind::Lock:
        return false;
    default:
        return true;
    }
}

std::vector<int> errorsOf(CallKind kind)
{
    switch (kind) {
    case CallKind::Create:
        return {ENOSPC, EIO, EDQUOT, EMFILE};
    case CallKind::Open:
    case CallKind::OpenWrite:
        return {EIO, EMFILE};
    case CallKind::Write:
    case CallKind::Reserve:
    case CallKind::Sync:
    case CallKind::Close:
    case CallKind::Name:
        return {ENOSPC, EIO, EDQUOT};
    case CallKind::Owner:
        return {EIO, EDQUOT};
    case CallKind::Lock:
        return {ENOLCK};
    default:
        return {EIO};
    }
}

bool isDoneDespiteError(CallKind kind)
{
    return kind == CallKind::Sync || kind == CallKind::Close;
}
