// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_SOAK_USAGE_H
#define MARVOLA_TESTS_SOAK_USAGE_H

#include <cstddef>

/// What this process has of the system at a moment.
struct Usage
{
    std::size_t residentKb = 0;
    std::size_t allocatedKb = 0; ///< by malloc(), in use
    int descriptors = 0;
    int threads = 0;

    static Usage now();
};

#endif
