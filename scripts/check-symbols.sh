#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: check-symbols.sh NM LIBVELAR.SO
# Fails when the library exports anything that the public headers do not declare, or when a class
# that they export is missing.
set -euo pipefail
headers=$(dirname "${BASH_SOURCE[0]}")/../include/vela
nm=$1
library=$2

# Not every nm demangles names that carry a version.
symbols=$("$nm" --dynamic --defined-only "$library" | sed -E 's/^[0-9a-f]+ //; s/@.*//' | c++filt)
classes=$(sed -nE 's/^(class|struct) VELA_API ([A-Za-z]+).*/\2/p' "$headers"/*.h)

public="vela::(${classes//$'\n'/|})"
allowed="^(A VELAR_0|[A-Z] ($public::.*|(vtable|typeinfo|typeinfo name) for $public|vela::operator<<\(.*|vela::setObserver\(.*))$"
extra=$(grep -vE "$allowed" <<<"$symbols" || true)
if [[ -n $extra ]]; then
    printf 'exported, but not public:\n%s\n' "$extra" >&2
    exit 1
fi

for class in $classes; do
    if ! grep -qE " vela::$class(::|$)" <<<"$symbols"; then
        printf 'public, but not exported: vela::%s\n' "$class" >&2
        exit 1
    fi
done
