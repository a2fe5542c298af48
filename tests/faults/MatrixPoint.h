// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_FAULTS_MATRIXPOINT_H
#define MARVOLA_TESTS_FAULTS_MATRIXPOINT_H

#include "Matrix.h"

/// What is being judged, and what was found wrong with it.
struct Matrix::Point
{
    std::string name;
    std::vector<std::string> &losses;
    bool isWhollyNew = true;
    bool isPartlyNew = false; ///< some list of the list file
    bool isPartlyOld = false;

    void lose(const std::string &what) { losses.push_back(name + ": " + what); }
};

#endif
