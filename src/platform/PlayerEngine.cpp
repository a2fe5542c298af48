// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/PlayerEngine.h>

// Out of line, so that the class's virtual table has one home.
PlayerEngine::~PlayerEngine() = default;
