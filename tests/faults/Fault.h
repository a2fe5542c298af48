// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_FAULT_H
#define MARVOLA_TESTS_FAULTS_FAULT_H

#include "FileCall.h"

#include <string>
#include <vector>

/// What goes wrong at one call of an operation.
struct Fault
{
    enum class Kind {
        KilledBefore,
        KilledHalfway, ///< a write that got half of its bytes out
        KilledAfter,
        Error,           ///< this call gives the error
        ErrorHalfway,    ///< a write that got half of its bytes out; the next write gives the error
        ErrorsForAWhile, ///< so do the next calls that can, and then all is well again
        ErrorsFromHere   ///< so do all later calls that can
    };
    /// How many calls a while takes.
    static constexpr int While = 12;
    int call = 0; ///< counted from 0
    Kind kind = Kind::Error;
    int error = 0;

    bool isDeath() const;
    /// Whether a call that can give the error does, when it is the one of that number.
    bool isErrorAt(int number) const;
};

/// Everything that can go wrong at a call of that kind.
std::vector<Fault> faultsAt(int call, CallKind kind);

/// "told ENOSPC at 3, pwrite64 /a/b", for whoever has to find out why.
std::string describe(const Fault &fault, const FileCall &call);

#endif
