#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: clang-tidy.sh BUILD-TREE JOBS
# Runs clang-tidy over every source that the build tree compiles, quietly unless it finds something.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
tree=$1
jobs=$2

log=$tree/clang-tidy.log
if ! run-clang-tidy -p "$tree" -quiet -j "$jobs" "^$PWD/(src|sim|tools|tests|fuzz|benchmarks|examples)/" \
    >"$log" 2>&1 </dev/null; then
    sed -E 's/\x1b\[[0-9;]*m//g' "$log" | grep -vE '^([^ ]*clang-tidy[^ ]*|[0-9]+ warnings) ' >&2 || true
    printf 'clang-tidy: complaints above; the whole log is %s\n' "$log" >&2
    exit 1
fi
