# SPDX-FileCopyrightText: 2026 The Marvola authors
# SPDX-License-Identifier: MIT
#
# What gets installed: libraries with their headers, a CMake package and pkg-config files; the program.

include(CMakePackageConfigHelpers)

set(MARVOLA_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/Marvola)
if(NOT IS_ABSOLUTE ${CMAKE_INSTALL_LIBDIR} AND NOT IS_ABSOLUTE ${CMAKE_INSTALL_INCLUDEDIR})
    # Found relative to the .pc file itself, so that an installed tree may be moved.
    file(RELATIVE_PATH MARVOLA_PC_ROOT /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
    string(REGEX REPLACE "/$" "" MARVOLA_PC_ROOT "\${pcfiledir}/${MARVOLA_PC_ROOT}")
else()
    set(MARVOLA_PC_ROOT ${CMAKE_INSTALL_PREFIX})
endif()

# marvola_install(TARGET HEADERS... PC REQUIRES)
# A shared library with its public headers and its pkg-config file.
function(marvola_install target)
    cmake_parse_arguments(ARG "" "PC;DESCRIPTION;REQUIRES" "HEADERS" ${ARGN})
    install(TARGETS ${target} EXPORT MarvolaTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(FILES ${ARG_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/marvola)
    get_target_property(PC_LIBRARY ${target} OUTPUT_NAME)
    if(NOT PC_LIBRARY)
        set(PC_LIBRARY ${target})
    endif()
    set(PC_NAME ${ARG_PC})
    set(PC_DESCRIPTION ${ARG_DESCRIPTION})
    set(PC_REQUIRES ${ARG_REQUIRES})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/marvola.pc.in ${PROJECT_BINARY_DIR}/${ARG_PC}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${ARG_PC}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/marvola/*.h)
marvola_install(marvola PC marvola DESCRIPTION "${PROJECT_DESCRIPTION}" REQUIRES "Qt6Core >= 6.4"
    HEADERS ${headers})
if(TARGET marvola_ffmpeg)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/adapters/ffmpeg/include/marvola/*.h)
    marvola_install(marvola_ffmpeg PC marvola-ffmpeg DESCRIPTION "Marvola's player engine on libavformat"
        REQUIRES "marvola = ${PROJECT_VERSION}" HEADERS ${headers})
endif()
if(TARGET marvola_networkmanager)
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/adapters/networkmanager/include/marvola/*.h)
    marvola_install(marvola_networkmanager PC marvola-networkmanager
        DESCRIPTION "Marvola's link service on NetworkManager" REQUIRES "marvola = ${PROJECT_VERSION}" HEADERS ${headers})
endif()
if(TARGET marvola_cli)
    install(TARGETS marvola_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT MarvolaTargets NAMESPACE Marvola:: DESTINATION ${MARVOLA_CMAKE_DIR})
configure_package_config_file(cmake/MarvolaConfig.cmake.in ${PROJECT_BINARY_DIR}/MarvolaConfig.cmake
    INSTALL_DESTINATION ${MARVOLA_CMAKE_DIR})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MarvolaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MarvolaConfig.cmake ${PROJECT_BINARY_DIR}/MarvolaConfigVersion.cmake
    DESTINATION ${MARVOLA_CMAKE_DIR})
