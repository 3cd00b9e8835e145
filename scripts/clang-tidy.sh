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

# A source that several programs compile would be looked at as often, and each time in all its ways.
once=$tree/once
mkdir -p "$once"
python3 - "$tree" >"$once/compile_commands.json" <<'PYTHON'
import json, sys
commands = json.load(open(sys.argv[1] + "/compile_commands.json"))
first = {command["file"]: command for command in reversed(commands)}
print(json.dumps(list(first.values())))
PYTHON

log=$tree/clang-tidy.log
if ! run-clang-tidy -p "$once" -quiet -j "$jobs" "^$PWD/(src|sim|tools|tests|fuzz|benchmarks|examples)/" \
    >"$log" 2>&1 </dev/null; then
    sed -E 's/\x1b\[[0-9;]*m//g' "$log" | grep -vE '^([^ ]*clang-tidy[^ ]*|[0-9]+ warnings) ' >&2 || true
    printf 'clang-tidy: complaints above; the whole log is %s\n' "$log" >&2
    exit 1
fi
