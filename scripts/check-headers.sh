#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: check-headers.sh JOBS
# Every public header has to compile alone and included twice, without warnings: the library's and the
# platform contract as C++17 and C++20, the contract as C, too, the simulator's and the test kit's as
# C++20; with gcc, clang, and clang with libc++.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

readonly kit='sim/include/velasim/*.h sim/testing/include/velatesting/*.h'
readonly warnings='-Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion'
readonly more='-Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Wextra-semi'

# checks COMPILER PATTERN...: one command for each header
checks() {
    local compiler=$1 header
    shift
    # shellcheck disable=SC2048,SC2086  # patterns become names, and options words
    for header in $*; do
        echo "$compiler -fsyntax-only $warnings -Iinclude -Iplatform/include -Isim/include" \
            "-Isim/testing/include -include $header -include $header /dev/null"
    done
}

{
    for compiler in g++ clang++ 'clang++ -stdlib=libc++'; do
        checks "$compiler -x c++ $more -std=c++17" 'include/vela/*.h' 'platform/include/*.h'
        checks "$compiler -x c++ $more -std=c++20" 'include/vela/*.h' 'platform/include/*.h' "$kit"
    done
    checks 'gcc -x c -std=c11' 'platform/include/*.h'
    checks 'clang -x c -std=c11' 'platform/include/*.h'
} | xargs -P "$1" -I CHECK sh -c 'CHECK || { echo "failed: CHECK" >&2; exit 1; }'
