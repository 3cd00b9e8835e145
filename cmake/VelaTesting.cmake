# What the folders with tests have in common.

if(VELA_SANITIZE OR VELA_FUZZ OR CMAKE_CROSSCOMPILING)
    set(VELA_TEST_TIMEOUT 600)
else()
    set(VELA_TEST_TIMEOUT 120)
endif()

# What every test finds in its environment, unless the caller has set it. CTest reads this before
# anything else, so that it also holds while test cases are listed.
set(vela_environment "${PROJECT_BINARY_DIR}/test-environment.cmake")
set_property(DIRECTORY "${PROJECT_SOURCE_DIR}" APPEND PROPERTY TEST_INCLUDE_FILES
    "${vela_environment}")
file(WRITE "${vela_environment}" "")
function(vela_test_environment variable value)
    file(APPEND "${vela_environment}" "if(NOT DEFINED ENV{${variable}})\n"
        "    set(ENV{${variable}} \"${value}\")\n" "endif()\n")
endfunction()

if(VELA_SANITIZE STREQUAL "asan")
    vela_test_environment(ASAN_OPTIONS detect_stack_use_after_return=1:strict_string_checks=1)
    vela_test_environment(UBSAN_OPTIONS print_stacktrace=1)
elseif(VELA_SANITIZE STREQUAL "tsan")
    set(vela_tsan_options halt_on_error=1:second_deadlock_stack=1)
    # The suppressions, if there are any, each explained.
    if(EXISTS "${PROJECT_SOURCE_DIR}/tests/tsan.supp")
        string(APPEND vela_tsan_options ":suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp")
    endif()
    vela_test_environment(TSAN_OPTIONS ${vela_tsan_options})
endif()
if(CMAKE_CROSSCOMPILING)
    # For tests that would start their own program again, which an emulator may not be able to.
    vela_test_environment(VELA_EMULATED 1)
endif()

# vela_add_test(<name> <source>... [LIBS <library>...] [LABEL <label>] [TIMEOUT <seconds>])
#
# A GoogleTest program with its own main; each of its cases becomes one CTest test,
# "<name>.<suite>.<case>". LIBS is vela_core for tests that reach inside the library and vela for
# tests of what a client sees, and never both. Includes start from tests/ ("support/...").
function(vela_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "TIMEOUT;LABEL" "LIBS")
    find_package(GTest REQUIRED)
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT ${VELA_TEST_TIMEOUT})
    endif()
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests"
        "${PROJECT_SOURCE_DIR}/tools" "${PROJECT_SOURCE_DIR}/sim/testing/include")
    target_link_libraries(${name} PRIVATE ${arg_LIBS} vela_warnings GTest::gmock GTest::gtest_main)
    set(properties TIMEOUT ${arg_TIMEOUT})
    if(arg_LABEL)
        list(APPEND properties LABELS ${arg_LABEL})
    endif()
    # Cases are listed when CTest starts: building never runs a program, which may be another
    # machine's.
    gtest_discover_tests(${name}
        TEST_PREFIX "${name}."
        DISCOVERY_MODE PRE_TEST
        DISCOVERY_TIMEOUT 120
        PROPERTIES ${properties})
endfunction()

# vela_add_fuzzer(<name> <source>... [LIBS <library>...] [CORPUS <folder>])
#
# A libFuzzer target (LLVMFuzzerTestOneInput). With VELA_FUZZ it is a fuzzer; in every build its
# corpus, by default corpus/<name>, is replayed as a test, so that what was once found stays fixed.
function(vela_add_fuzzer name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "CORPUS" "LIBS")
    if(NOT arg_CORPUS)
        set(arg_CORPUS "${CMAKE_CURRENT_SOURCE_DIR}/corpus/${name}")
    endif()
    add_executable(${name} ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE ${arg_LIBS} vela_warnings)
    set(options "")
    if(VELA_FUZZ)
        target_link_options(${name} PRIVATE -fsanitize=fuzzer)
        set(options -runs=0)
    else()
        target_sources(${name} PRIVATE "${PROJECT_SOURCE_DIR}/fuzz/ReplayMain.cpp")
    endif()
    set_property(GLOBAL APPEND PROPERTY VELA_FUZZERS ${name})
    add_test(NAME replay.${name} COMMAND ${name} ${options} "${arg_CORPUS}")
    set_tests_properties(replay.${name} PROPERTIES TIMEOUT ${VELA_TEST_TIMEOUT} LABELS fuzz)
endfunction()

include(GoogleTest)
