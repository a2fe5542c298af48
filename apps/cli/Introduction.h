// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_INTRODUCTION_H
#define MARVOLA_CLI_INTRODUCTION_H

#include "ExitStatus.h"

namespace marvola {

/// Says to somebody who typed the program's name alone what it is, where it looks and how to begin. Makes no files.
ExitStatus introduce();

} // namespace marvola

#endif
