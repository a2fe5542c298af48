// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Matrix.h"

#include <gtest/gtest.h>

#include <QtCore/QTemporaryDir>

#include <cstring>

namespace {

const Operation &operationNamed(const char *name)
{
    for (const Operation &operation : operations()) {
        if (std::strcmp(operation.name, name) == 0)
            return operation;
    }
    ADD_FAILURE() << name;
    return operations().front();
}

struct PowerCut : testing::Test
{
    void SetUp() override
    {
        if (!TracedRun::isPossible())
            GTEST_SKIP() << "not run: this system does not let one process trace the calls of another";
    }
    QString folder() const { return memory.isValid() ? memory.path() : elsewhere.path(); }

    static void expectNone(const CutRow &row)
    {
        EXPECT_GT(row.states, 50);
        for (const std::string &loss : row.losses)
            ADD_FAILURE() << loss;
    }

    QTemporaryDir memory{QStringLiteral("/dev/shm/marvola")};
    QTemporaryDir elsewhere;
};

} // namespace

// Some of the operations; tools/fault-matrix tries all.
TEST_F(PowerCut, InPlaceLosesNoSettings)
{
    expectNone(Matrix(folder(), Medium::FatLike).cutPowerInPlace(operationNamed("storeConfig")));
}

TEST_F(PowerCut, InPlaceLosesNoPlaylist)
{
    expectNone(Matrix(folder(), Medium::FatLike).cutPowerInPlace(operationNamed("savePlayList, over")));
}

TEST_F(PowerCut, InARenameLosesNoPlaylist)
{
    expectNone(Matrix(folder(), Medium::AsItIs).cutPowerInRename(operationNamed("savePlayList, new")));
}

TEST_F(PowerCut, InTheFirstRenameLosesNoSettings)
{
    const CutRow row = Matrix(folder(), Medium::FatLike).cutPowerInFirstRename(operationNamed("storeConfig, first"));
    EXPECT_GT(row.states, 5) << "the copy was cut off";
    EXPECT_EQ(row.losses, std::vector<std::string>());
}
