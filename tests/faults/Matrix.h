// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_MATRIX_H
#define MARVOLA_TESTS_FAULTS_MATRIX_H

#include "Operation.h"

#include <array>
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

/// One operation, with the power cut at every moment of it.
struct CutRow
{
    int states = 0; ///< that the medium could be in
    std::vector<std::string> losses;
};

class Matrix
{
public:
    /// On an empty folder of the filesystem that is to be tried.
    Matrix(const QString &folder, Medium medium);

    /// Runs \a operation once without a fault, then once for every fault.
    MatrixRow run(const Operation &operation);

    /// Makes what a medium that is changed in place can hold when the power fails during \a operation: of what was
    /// written since the last synchronisation, each sector may be there or not, in any of its versions.
    CutRow cutPowerInPlace(const Operation &operation);
    /// The same for a medium where a rename over a file can lose the file, or the new copy, or its bytes.
    CutRow cutPowerInRename(const Operation &operation);
    /// The same for an operation that makes the settings file, by a rename over nothing.
    CutRow cutPowerInFirstRename(const Operation &operation);

private:
    struct Point;
    using Image = std::array<QByteArray, 3>; ///< settings file, list file, info file

    /// What a power cut leaves of a rename; null bytes are a name that is not there.
    struct Leftover
    {
        std::string name;
        QByteArray main;
        QByteArray copy;
        bool mustBeNew;
    };

    MatrixRow learn(const Operation &operation, TracedRun &plain);
    Image image() const;
    void putImage(const Operation &operation, const Image &image) const;
    void judgeStatesBetween(const Operation &operation, const std::vector<Image> &images, int call, CutRow &row) const;
    void judgeLeftover(const Operation &operation, const QString &file, const Leftover &state, CutRow &row) const;
    void judgeCut(const Operation &operation, const std::string &name, bool mustBeNew, CutRow &row) const;

    TracedRun trace(const Operation &operation, const std::optional<Fault> &fault) const;
    bool mustBeHeard(const Fault &fault, const FileCall &call, int earlierSyncs) const;
    void judge(const Operation &operation, const TracedRun &run, Point &point) const;
    void judgeLists(const Operation &operation, const LibraryState &found, Point &point) const;
    void judgeWhatFollows(const LibraryState &found, Point &point) const;
    void judgeNextAnswers(Point &point) const;

    FaultPhone m_phone;
    Medium m_medium;
    LibraryState m_before;
    LibraryState m_after;
};

#endif
