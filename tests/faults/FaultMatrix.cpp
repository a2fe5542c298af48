// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Matrix.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>

#include <gtest/gtest.h>

#include <cstdio>

namespace {

int usage()
{
    std::fputs(
        "usage: marvola_fault_matrix NAME FOLDER as-it-is|full|fat-like\n"
        "Runs every operation with every fault on FOLDER, which is empty, and prints a row of the table for each.\n",
        stderr);
    return 2;
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 4)
        return usage();
    const QStringList media{QStringLiteral("as-it-is"), QStringLiteral("full"), QStringLiteral("fat-like")};
    const auto medium = media.indexOf(arguments.at(3));
    const QDir folder(arguments.at(2));
    if (medium < 0 || !folder.exists())
        return usage();
    if (!TracedRun::isPossible()) {
        std::fputs("marvola_fault_matrix: this system does not let one process trace the calls of another\n", stderr);
        return 3;
    }
    Matrix matrix(folder.absolutePath(), static_cast<Medium>(medium));
    std::size_t losses = 0;
    for (const Operation &operation : operations()) {
        const MatrixRow row = matrix.run(operation);
        std::printf("| %s | %s | %d | %d | %d | %zu |\n", operation.name, qPrintable(arguments.at(1)),
                    row.changingCalls, row.deaths, row.errors, row.losses.size());
        std::fflush(stdout);
        for (const std::string &loss : row.losses)
            std::fprintf(stderr, "%s\n", loss.c_str());
        losses += row.losses.size();
    }
    return losses == 0 && !testing::Test::HasFailure() ? 0 : 1;
}
