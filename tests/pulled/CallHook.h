// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_TESTS_PULLED_CALLHOOK_H
#define MARVOLA_TESTS_PULLED_CALLHOOK_H

#include <functional>

/// Counts the library's calls to the operating system that have to do with files, in this process, and has something
/// happen before one of them, on the thread that makes it. The linker sends the calls here (see CMakeLists.txt).
namespace CallHook {

/// Counts from now on; \a action is called before call \a number, from 1 on. No number is 0.
void arm(int number = 0, std::function<void()> action = {});
/// Counts no longer. \return how many calls there were
int disarm();

} // namespace CallHook

#endif
