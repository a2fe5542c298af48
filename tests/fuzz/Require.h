// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FUZZ_REQUIRE_H
#define MARVOLA_TESTS_FUZZ_REQUIRE_H

#include <cstdio>
#include <cstdlib>

/// Ends the process when something does not hold, which is how a fuzzer is told of a finding.
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

#endif
