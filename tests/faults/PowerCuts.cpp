// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Matrix.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

std::size_t print(const char *operation, const char *medium, const CutRow &row)
{
    std::printf("| %s | %s | %d | %zu |\n", operation, medium, row.states, row.losses.size());
    std::fflush(stdout);
    for (const std::string &loss : row.losses)
        std::fprintf(stderr, "%s\n", loss.c_str());
    return row.losses.size();
}

} // namespace

/// Prints a row of the table of power cuts for each operation.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    if (!TracedRun::isPossible()) {
        std::fputs("marvola_power_cuts: this system does not let one process trace the calls of another\n", stderr);
        return 3;
    }
    const QTemporaryDir memory(QStringLiteral("/dev/shm/marvola"));
    const QTemporaryDir elsewhere;
    const QString folder = memory.isValid() ? memory.path() : elsewhere.path();
    std::size_t losses = 0;
    Matrix changed(folder + QStringLiteral("/changed"), Medium::FatLike);
    for (const Operation &operation : operations()) {
        if (operation.changes == Changes::ListFile || operation.changes == Changes::Them)
            losses += print(operation.name, "changed in place", changed.cutPowerInPlace(operation));
        if (operation.changes == Changes::NewSettings)
            losses += print(operation.name, "in a rename over nothing", changed.cutPowerInFirstRename(operation));
    }
    Matrix replaced(folder + QStringLiteral("/replaced"), Medium::AsItIs);
    for (const Operation &operation : operations()) {
        if (operation.changes == Changes::ListFile)
            losses += print(operation.name, "in a rename", replaced.cutPowerInRename(operation));
    }
    return losses == 0 && !testing::Test::HasFailure() ? 0 : 1;
}
