// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_CLI_STANDARDSTREAMS_H
#define MARVOLA_CLI_STANDARDSTREAMS_H

namespace marvola {

/// Puts something harmless in the place of each standard stream that the program was started without, so that no file
/// opened later gets its number, and with it what is printed. Call it before anything is opened.
///
/// Nothing is read from such a standard input, such a standard error swallows all, and output to such a standard output
/// stays an error.
/// \return false when that cannot be done
[[nodiscard]] bool occupyStandardStreams();

} // namespace marvola

#endif
