# An Android device's build without an NDK: Debian's clang, lld and headers of libc++, and the headers
# of Android's C library. What is built is looked at (scripts/check-android.sh) and never run: it is
# linked without the libraries of a device.
#
# VELA_BIONIC, here or in the environment, is the folder that holds Android's libc/include.

set(CMAKE_SYSTEM_NAME Android)
set(CMAKE_SYSTEM_VERSION 1)  # keeps CMake from looking for an NDK
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET aarch64-linux-android30)
set(CMAKE_CXX_COMPILER_TARGET aarch64-linux-android30)

# Given to the projects by which CMake tries the compiler, which read this file, too.
if(NOT VELA_BIONIC)
    set(VELA_BIONIC "$ENV{VELA_BIONIC}")
endif()
if(NOT VELA_STANDINS)
    set(VELA_STANDINS "${CMAKE_BINARY_DIR}/standins")
endif()
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES VELA_BIONIC VELA_STANDINS)
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

execute_process(COMMAND clang++ -print-resource-dir
    OUTPUT_VARIABLE vela_clang OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(vela_libcxx "${vela_clang}/../../../include/c++/v1" ABSOLUTE)
if(NOT EXISTS "${VELA_BIONIC}/libc/include/stdio.h")
    message(FATAL_ERROR "VELA_BIONIC: no headers of Android's C library in '${VELA_BIONIC}'")
endif()
if(NOT EXISTS "${vela_libcxx}/vector")
    message(FATAL_ERROR "The headers of libc++ are missing: install the package libc++-dev")
endif()

# What stands in for the rest of an NDK and of a device: a version, which the headers of libc++ ask
# for, the headers of Debian's packages that are the same everywhere, and libraries with nothing in
# them. Written only when they change, lest all is compiled again.
file(CONFIGURE OUTPUT "${VELA_STANDINS}/android/ndk-version.h"
    CONTENT "#pragma once\n#define __NDK_MAJOR__ 25\n")
foreach(header IN ITEMS expat.h expat_external.h sqlite3.h nlohmann)
    file(CREATE_LINK "/usr/include/${header}" "${VELA_STANDINS}/${header}" SYMBOLIC)
endforeach()
foreach(library IN ITEMS log expat sqlite3)
    file(CONFIGURE OUTPUT "${VELA_STANDINS}/lib${library}.a" CONTENT "!<arch>\n")
endforeach()
file(WRITE "${VELA_STANDINS}/nlohmann_jsonConfig.cmake"
    "add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)\n")
set(nlohmann_json_DIR "${VELA_STANDINS}")
foreach(package IN ITEMS EXPAT SQLite3)
    string(TOLOWER "${package}" library)
    set(${package}_INCLUDE_DIR "${VELA_STANDINS}")
    set(${package}_LIBRARY "${VELA_STANDINS}/lib${library}.a")
endforeach()

set(vela_flags "-nostdinc")
foreach(folder IN ITEMS
        "${VELA_BIONIC}/libc/include"
        "${vela_clang}/include"
        "${VELA_BIONIC}/libc/kernel/uapi"
        "${VELA_BIONIC}/libc/kernel/uapi/asm-arm64"
        "${VELA_BIONIC}/libc/kernel/android/uapi"
        "${VELA_STANDINS}"
        /usr/include/android)
    string(APPEND vela_flags " -isystem ${folder}")
endforeach()
set(CMAKE_C_FLAGS_INIT "${vela_flags}")
set(CMAKE_CXX_FLAGS_INIT "-nostdinc++ -isystem ${vela_libcxx} ${vela_flags}")
string(CONCAT vela_flags "-fuse-ld=lld -nostdlib -Wl,--hash-style=gnu -L${VELA_STANDINS} "
    "-Wno-unused-command-line-argument")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${vela_flags} -Wl,-z,undefs")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${vela_flags} -Wl,--unresolved-symbols=ignore-all,--entry=main")
