// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Matrix.h"

#include <gtest/gtest.h>

#include <QtCore/QTemporaryDir>

namespace {

struct Case
{
    const Operation *operation;
    Medium medium;
};

std::vector<Case> cases()
{
    std::vector<Case> all;
    for (const Operation &operation : operations()) {
        for (const Medium medium : {Medium::AsItIs, Medium::Full, Medium::FatLike})
            all.push_back({&operation, medium});
    }
    return all;
}

std::string nameOf(const testing::TestParamInfo<Case> &info)
{
    std::string name;
    for (const char *at = info.param.operation->name; *at != '\0'; ++at) {
        if (*at != ' ' && *at != ',')
            name += *at;
    }
    switch (info.param.medium) {
    case Medium::AsItIs:
    case Medium::ListUnreadable:
        return name;
    case Medium::Full:
        return name + "OnAFullMedium";
    case Medium::FatLike:
        return name + "WhereRenamesAreFragile";
    }
    return name;
}

class FaultMatrix : public testing::TestWithParam<Case>
{
};

} // namespace

TEST_P(FaultMatrix, NoFaultLosesAnything)
{
    if (!TracedRun::isPossible())
        GTEST_SKIP() << "not run: this system does not let one process trace the calls of another";
    // Memory, where there is such a folder: what is tried here is the order of the calls, not the medium.
    const QTemporaryDir folder(QStringLiteral("/dev/shm/marvola"));
    const QTemporaryDir elsewhere;
    Matrix matrix(folder.isValid() ? folder.path() : elsewhere.path(), GetParam().medium);
    const MatrixRow row = matrix.run(*GetParam().operation);
    EXPECT_GT(row.calls, 0);
    EXPECT_GT(row.errors, 0);
    for (const std::string &loss : row.losses)
        ADD_FAILURE() << loss;
}

INSTANTIATE_TEST_SUITE_P(Every, FaultMatrix, testing::ValuesIn(cases()), nameOf);
