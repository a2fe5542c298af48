// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_FILECALL_H
#define MARVOLA_TESTS_FAULTS_FILECALL_H

#include <QtCore/QByteArray>

#include <vector>

/// What a system call does to files, which says what can go wrong with it.
enum class CallKind {
    Look,      ///< asks about a name or an open file
    Open,      ///< opens for reading
    OpenWrite, ///< opens for writing what is there, or what another open made
    Create,    ///< opens for writing and may make the file
    Read,
    Write, ///< its third argument is how much
    Cut,
    Reserve,
    Sync,
    Close, ///< of a file open for writing
    Name,  ///< gives a name: rename, link, mkdir
    Remove,
    Attribute,
    Owner,
    Lock
};

/// A system call that the kernel knows, and where its arguments name the file.
struct KnownCall
{
    long number;
    const char *name;
    CallKind kind; ///< Open stands for all three until the flags are known
    int pathArgument;
    int fdArgument;
    int flagsArgument;
};

/// All that work on files, by names and by descriptors.
const std::vector<KnownCall> &knownCalls();
const KnownCall *knownCall(long number);

/// One call of a traced program.
struct FileCall
{
    QByteArray name;
    QByteArray path;
    CallKind kind;
};

/// Whether the disk may hold something else after the call than before it.
bool changesFiles(CallKind kind);
/// What the call can be told when it fails by the medium's fault.
std::vector<int> errorsOf(CallKind kind);
/// Whether the call has done its work even when it gives an error: a descriptor is closed in any case.
bool isDoneDespiteError(CallKind kind);

#endif
