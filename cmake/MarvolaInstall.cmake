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
# As a .pc file has them: below its prefix, unless they are absolute.
foreach(folder LIBDIR INCLUDEDIR)
    set(MARVOLA_PC_${folder} "\${prefix}")
    cmake_path(APPEND MARVOLA_PC_${folder} ${CMAKE_INSTALL_${folder}})
endforeach()
set(MARVOLA_PC_TRANSLATIONSDIR "\${prefix}")
cmake_path(APPEND MARVOLA_PC_TRANSLATIONSDIR ${MARVOLA_TRANSLATIONS_DIR})

# The program and the adapters find the libraries from where they are themselves, so that any prefix will do and the tree
# may be moved. Where the loader searches anyway, -DCMAKE_SKIP_INSTALL_RPATH=ON leaves this out.
file(RELATIVE_PATH libraries_from_programs ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})

# marvola_install(TARGET HEADERS... PC REQUIRES [VARIABLES])
# A shared library with its public headers and its pkg-config file.
function(marvola_install target)
    cmake_parse_arguments(ARG "" "PC;DESCRIPTION;REQUIRES;VARIABLES" "HEADERS" ${ARGN})
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
    set(PC_VARIABLES ${ARG_VARIABLES})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/marvola.pc.in ${PROJECT_BINARY_DIR}/${ARG_PC}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${ARG_PC}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endfunction()

file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/marvola/*.h)
marvola_install(marvola PC marvola DESCRIPTION "${PROJECT_DESCRIPTION}" REQUIRES "Qt6Core >= 6.4"
    VARIABLES "translationsdir=${MARVOLA_PC_TRANSLATIONSDIR}" HEADERS ${headers})
if(TARGET marvola_ffmpeg)
    set_target_properties(marvola_ffmpeg PROPERTIES INSTALL_RPATH "$ORIGIN")
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/adapters/ffmpeg/include/marvola/*.h)
    marvola_install(marvola_ffmpeg PC marvola-ffmpeg DESCRIPTION "Marvola's player engine on libavformat"
        REQUIRES "marvola = ${PROJECT_VERSION}" HEADERS ${headers})
endif()
if(TARGET marvola_networkmanager)
    set_target_properties(marvola_networkmanager PROPERTIES INSTALL_RPATH "$ORIGIN")
    file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/adapters/networkmanager/include/marvola/*.h)
    marvola_install(marvola_networkmanager PC marvola-networkmanager
        DESCRIPTION "Marvola's link service on NetworkManager" REQUIRES "marvola = ${PROJECT_VERSION}" HEADERS ${headers})
endif()
if(TARGET marvola_cli)
    set_target_properties(marvola_cli PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries_from_programs}")
    install(TARGETS marvola_cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

install(EXPORT MarvolaTargets NAMESPACE Marvola:: DESTINATION ${MARVOLA_CMAKE_DIR})
configure_package_config_file(cmake/MarvolaConfig.cmake.in ${PROJECT_BINARY_DIR}/MarvolaConfig.cmake
    INSTALL_DESTINATION ${MARVOLA_CMAKE_DIR} PATH_VARS MARVOLA_TRANSLATIONS_DIR)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/MarvolaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/MarvolaConfig.cmake ${PROJECT_BINARY_DIR}/MarvolaConfigVersion.cmake
    DESTINATION ${MARVOLA_CMAKE_DIR})
