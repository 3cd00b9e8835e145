#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: check-symbols.sh NM LIBVELAR.SO
# Fails when the library exports anything that the public headers do not declare, when a class or
# function that they export is missing, and when they declare a function that nobody could call.
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

functions=$(sed -nE 's/^VELA_API [^(]* ([a-z][A-Za-z]*)\(.*/\1/p' "$headers"/*.h)
for name in $classes $functions; do
    if ! grep -qE " vela::$name(::|\(|$)" <<<"$symbols"; then
        printf 'public, but not exported: vela::%s\n' "$name" >&2
        exit 1
    fi
done

# Functions that are declared without a body, each behind its class if it has one, and behind "-" if
# that (or else the function) is not marked.
declared=$(awk '
    /^(class|struct) [^;]*\{$/ { inside = 1; type = /VELA_API/ ? $3 : "-" $2 }
    /^};/ { inside = 0 }
    /\)( const| noexcept)*( = 0)?;$/ && !/^[A-Za-z]+\(/ {
        if (inside && !/ = 0;$/) print type ": " FILENAME ":" FNR ": " $0
        if (/^[A-Za-z]/ && !/^VELA_API/) print "-: " FILENAME ":" FNR ": " $0
    }' "$headers"/*.h)
if grep '^-' <<<"$declared" >&2; then
    echo 'declared, but not marked VELA_API' >&2
    exit 1
fi
while read -r class; do
    # The type information of every class is exported.
    if ! grep -qE "^[A-Z] vela::$class::" <<<"$symbols"; then
        printf 'not in the symbol map: vela::%s\n' "$class" >&2
        exit 1
    fi
done < <(cut -d: -f1 <<<"$declared" | sort -u)
