# How everything here is compiled: language, warnings, sanitizers, compiler cache, output folders.

set(VELA_SANITIZE "" CACHE STRING "Sanitizers: asan (address, undefined behaviour and leaks), tsan")
set_property(CACHE VELA_SANITIZE PROPERTY STRINGS "" asan tsan)
option(VELA_FUZZ "Instrument everything for libFuzzer (clang only)" OFF)
option(VELA_TOOLS "Build velactl, and on a host the coherence proof" ON)
option(VELA_LIBEDIT "Let libedit edit the lines that velactl's prompt reads" ON)
option(VELA_BENCHMARKS "Build the benchmarks" OFF)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

# Installed programs and libraries find each other, and the platform's libraries where they lie.
set(CMAKE_INSTALL_RPATH "$ORIGIN;$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
set(CMAKE_INSTALL_RPATH_USE_LINK_PATH ON)

if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
    set(CMAKE_BUILD_TYPE RelWithDebInfo CACHE STRING "Build type" FORCE)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM AND NOT DEFINED CMAKE_CXX_COMPILER_LAUNCHER)
    # Build trees share what they compile alike; precompiled headers are cached, too.
    find_program(ENV_PROGRAM env REQUIRED)
    set(vela_launcher "${ENV_PROGRAM}" CCACHE_NOHASHDIR=true
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        "${CCACHE_PROGRAM}")
    set(CMAKE_C_COMPILER_LAUNCHER "${vela_launcher}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${vela_launcher}")
endif()

find_package(Threads REQUIRED)

# Every target of ours links this, privately. Constructor parameters are named as the members that
# they initialise, which gcc's plain -Wshadow would not have.
add_library(vela_warnings INTERFACE)
target_compile_options(vela_warnings INTERFACE
    -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wcast-align -Wformat=2
    $<$<CXX_COMPILER_ID:Clang>:-Wthread-safety$<SEMICOLON>-Wthread-safety-beta>
    $<IF:$<CXX_COMPILER_ID:GNU>,-Wshadow=local,-Wshadow>
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
        -Wextra-semi>)
# gcc 12 takes the copying of a std::string for an overflow once it has inlined it.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(vela_warnings INTERFACE
        -Wno-array-bounds -Wno-restrict -Wno-stringop-overflow)
endif()

add_compile_definitions($<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)

if(VELA_SANITIZE STREQUAL "asan")
    set(vela_sanitizers address,undefined)
elseif(VELA_SANITIZE STREQUAL "tsan")
    set(vela_sanitizers thread)
elseif(VELA_SANITIZE)
    message(FATAL_ERROR "VELA_SANITIZE is '${VELA_SANITIZE}'; it may be empty, asan or tsan")
endif()

if(VELA_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "VELA_FUZZ needs clang, not ${CMAKE_CXX_COMPILER_ID}")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()

if(vela_sanitizers)
    add_compile_options(-fsanitize=${vela_sanitizers} -fno-sanitize-recover=all
        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${vela_sanitizers})
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # The instrumentation's own temporaries look uninitialised to the optimiser.
        add_compile_options(-Wno-maybe-uninitialized)
    endif()
endif()
