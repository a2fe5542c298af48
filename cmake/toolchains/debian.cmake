# SPDX-FileCopyrightText: 2026 The Marvola authors
# SPDX-License-Identifier: MIT
#
# Cross compiling with Debian's compilers and libraries of several architectures side by side. Who includes this has set
# MARVOLA_TRIPLET, CMAKE_SYSTEM_PROCESSOR and CMAKE_CROSSCOMPILING_EMULATOR.

set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${MARVOLA_TRIPLET}-gcc)
set(CMAKE_CXX_COMPILER ${MARVOLA_TRIPLET}-g++)
set(CMAKE_LIBRARY_ARCHITECTURE ${MARVOLA_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${MARVOLA_TRIPLET}/pkgconfig:/usr/share/pkgconfig)

# Qt's own tools run here, not there.
set(QT_HOST_PATH /usr)
set(QT_HOST_PATH_CMAKE_DIR /usr/lib/${CMAKE_HOST_SYSTEM_PROCESSOR}-linux-gnu/cmake)
