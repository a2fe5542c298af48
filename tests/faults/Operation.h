// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_OPERATION_H
#define MARVOLA_TESTS_FAULTS_OPERATION_H

#include "FaultPhone.h"
#include "TracedRun.h"

#include <vector>

/// What an operation tells its caller; an answer of TracedRun.
enum class Said { Done, Failed, Nothing };

/// Which of the settings file, the list file and the info file an operation is about.
enum class Changes {
    NoneOfThem,
    ListFile, ///< and no other
    Them,
    NewSettings, ///< makes the settings file
    Answers      ///< the cache of answers instead
};

/// Something that the library writes, and what may be on disk when it was cut short.
struct Operation
{
    using Allowed = bool (*)(const QString &list, const QStringList &found, const LibraryState &before,
                             const LibraryState &after);

    const char *name;
    Changes changes;
    /// The phone as the operation is to find it.
    void (*arrange)(const FaultPhone &phone);
    TracedRun::Steps (*steps)(const FaultPhone &phone);
    /// Whether a list may be something besides what it was before and what it is after; null for never.
    Allowed allows;
};

const std::vector<Operation> &operations();

#endif
