# SPDX-FileCopyrightText: 2026 The Marvola authors
# SPDX-License-Identifier: MIT
#
# How this project's targets are made: warnings, sanitizers, and one object library per folder of src.

add_library(marvola_options INTERFACE)
target_compile_options(marvola_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wcast-align -Wcast-qual -Wformat=2 -Wimplicit-fallthrough
    -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wundef -Wvla
    $<$<CXX_COMPILER_ID:GNU>:-Wduplicated-cond -Wduplicated-branches -Wlogical-op>
    $<$<BOOL:${MARVOLA_WERROR}>:-Werror>)
target_compile_definitions(marvola_options INTERFACE
    QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_KEYWORDS QT_NO_FOREACH QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Files of 2 GiB and more could not be opened else.
    target_compile_definitions(marvola_options INTERFACE _FILE_OFFSET_BITS=64)
endif()
if(MARVOLA_SANITIZE)
    target_compile_options(marvola_options INTERFACE
        -fsanitize=${MARVOLA_SANITIZE} -fno-omit-frame-pointer)
    if(NOT MARVOLA_SANITIZE STREQUAL "thread")
        target_compile_options(marvola_options INTERFACE -fno-sanitize-recover=all)
    endif()
    target_link_options(marvola_options INTERFACE -fsanitize=${MARVOLA_SANITIZE})
endif()

# marvola_join_sources(TARGET [RELEASE])
# Lets builds that are made to check something compile the target's sources as a few, which takes half the time; the
# ordinary build holds each to its own includes, but for targets that take too long to compile in Release.
function(marvola_join_sources target)
    if(MARVOLA_SANITIZE OR MARVOLA_UNITY OR (CMAKE_BUILD_TYPE STREQUAL "Release" AND "RELEASE" IN_LIST ARGN))
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON)
    endif()
endfunction()

# marvola_fuzzed(TARGET)
# Lets fuzzers see which ways their inputs take through the target's code.
function(marvola_fuzzed target)
    if(MARVOLA_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()

# marvola_folder(NAME [MOC] SOURCES... [BELOW FOLDERS...])
# One folder of src as an object library, with MOC where it has signals. Its sources see the public headers, their own
# folder, and the folders named after BELOW, as <folder>/<Header.h>.
function(marvola_folder name)
    cmake_parse_arguments(ARG "MOC" "" "SOURCES;BELOW" ${ARGN})
    add_library(marvola_${name} OBJECT ${ARG_SOURCES})
    set_target_properties(marvola_${name} PROPERTIES AUTOMOC ${ARG_MOC})
    marvola_join_sources(marvola_${name})
    marvola_fuzzed(marvola_${name})
    target_compile_definitions(marvola_${name} PRIVATE MARVOLA_BUILDING)
    # One staging folder of links per object library, so that a folder that is not below cannot be included by accident.
    set(view ${CMAKE_CURRENT_BINARY_DIR}/view)
    file(MAKE_DIRECTORY ${view})
    foreach(folder ${name} ${ARG_BELOW})
        file(CREATE_LINK ${PROJECT_SOURCE_DIR}/src/${folder} ${view}/${folder} SYMBOLIC)
    endforeach()
    if(MARVOLA_COVERAGE)
        # Each header is one file, whichever link it is included by.
        target_compile_options(marvola_${name} PRIVATE -fprofile-prefix-map=${view}/=${PROJECT_SOURCE_DIR}/src/)
    endif()
    target_include_directories(marvola_${name} PRIVATE ${view} PUBLIC ${PROJECT_SOURCE_DIR}/include)
    target_link_libraries(marvola_${name} PUBLIC Qt6::Core Threads::Threads PRIVATE marvola_options)
endfunction()
