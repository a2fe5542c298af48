// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_EXITSTATUS_H
#define MARVOLA_CLI_EXITSTATUS_H

namespace marvola {

/// What the program tells its caller when it ends.
enum class ExitStatus {
    Done = 0,
    Failure = 1,      ///< the work could not be done, also because what it is about is not there
    Usage = 2,        ///< the command line is wrong, whatever there is
    Interrupted = 130 ///< stopped by the user
};

} // namespace marvola

#endif
