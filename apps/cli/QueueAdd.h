// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_QUEUEADD_H
#define MARVOLA_CLI_QUEUEADD_H

#include "Commands.h"

namespace marvola {

/// Adds "add" to the command of the queue: files and links by name, a list of the library or positions in one, the
/// history, and bookmarks.
void declareQueueAdd(CLI::App &queue, Action &action);

} // namespace marvola

#endif
