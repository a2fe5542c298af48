# SPDX-FileCopyrightText: 2026 The Marvola authors
# SPDX-License-Identifier: MIT

set(MARVOLA_TRIPLET aarch64-linux-gnu)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-aarch64-static)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
