# SPDX-FileCopyrightText: 2026 The Marvola authors
# SPDX-License-Identifier: MIT

set(MARVOLA_TRIPLET arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm-static)
include(${CMAKE_CURRENT_LIST_DIR}/debian.cmake)
