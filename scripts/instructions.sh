#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: instructions.sh VELA_COUNTS
# Counts the instructions of operations in a release build with callgrind; fails when one takes many
# more than it did when this was written.
set -euo pipefail
program=$1

# instructions OPERATION TIMES
instructions() {
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$program" "$1" "$2" 2>&1 |
        sed -n 's/.*Collected : \([0-9]*\).*/\1/p'
}

failed=0
while read -r operation times most; do
    cost=$((($(instructions "$operation" "$times") - $(instructions "$operation" 0)) / times))
    verdict=
    if [[ $cost -gt $most ]]; then
        verdict=' !'
        failed=1
    fi
    printf '%-8s %9d of %9d%s\n' "$operation" "$cost" "$most" "$verdict"
done <<'LIMITS'
start 1 150000
get 200 18000
search 100 260000
add 100 45000
refresh 2 4200000
notice 2000 2300
LIMITS
exit "$failed"
