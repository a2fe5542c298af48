// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_MATRIX_H
#define MARVOLA_TESTS_FAULTS_MATRIX_H

#include "Operation.h"

#include <optional>
#include <string>
#include <vector>

/// One operation on one medium with every fault at each of its calls.
struct MatrixRow
{
    int calls = 0;         ///< on files, when nothing goes wrong
    int changingCalls = 0; ///< those of them that change files
    int deaths = 0;        ///< points at which the process was killed
    int errors = 0;        ///< points at which it was told an error
    /// What was lost, was said falsely or was left behind, each with its point.
    std::vector<std::string> losses;
};

class Matrix
{
public:
    /// On an empty folder of the filesystem that is to be tried.
    Matrix(const QString &folder, Medium medium);

    /// Runs \a operation once without a fault, then once for every fault. Only one point is run when \a only is given.
    MatrixRow run(const Operation &operation, std::optional<int> only = std::nullopt);

private:
    struct Point;

    TracedRun trace(const Operation &operation, const std::optional<Fault> &fault) const;
    void judge(const Operation &operation, const TracedRun &run, Point &point) const;
    void judgeLists(const Operation &operation, const LibraryState &found, Point &point) const;
    void judgeWhatFollows(const LibraryState &found, Point &point) const;

    FaultPhone m_phone;
    Medium m_medium;
    LibraryState m_before;
    LibraryState m_after;
};

#endif
