#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: check-android.sh BIONIC BUILD
# Looks at what the preset "bionic" has built: whether a device has all that it needs, how big the
# library is, and what it costs a process to load it. BIONIC is the folder with Android's symbol maps.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly bionic=$1 library=$2/lib/libvelar.so tool=$2/bin/velactl

# At most: bytes of the stripped library, relocations, and bytes that each process has for itself.
readonly max_size=$((192 * 1024)) max_relocations=900 max_writable=4096

llvm=$(clang -print-resource-dir)/../../..
readonly llvm
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0
fail() {
    printf 'check-android: %s\n' "$*" >&2
    failures=$((failures + 1))
}

symbols() { "$llvm/bin/llvm-nm" --dynamic --quiet --just-symbol-name "$@" | sed 's/@.*//' | sort -u; }
undefined() { symbols --undefined-only "$1"; }
defined_in() { symbols --defined-only "$@"; }

# exported LEVEL: what the C library of a 64-bit device gives to everybody from an API level on.
# A map's tags stand behind a version or a symbol: architectures it is there for, the level that
# introduced it, with or without an architecture, and who may use it.
exported() {
    awk -v level="$1" '
        function fits(tags,    words, count, i, named, here, since) {
            count = split(tags, words, " ")
            for (i = 1; i <= count; ++i) {
                if (words[i] ~ /^(arm|x86|x86_64|riscv64)$/) named = 1
                if (words[i] == "arm64") here = 1
                if (words[i] ~ /^introduced(-arm64)?=/) { since = words[i]; sub(/.*=/, "", since) }
                if (words[i] ~ /^(platform-only|apex|llndk|systemapi|future)$/) return 0
            }
            return (here || !named) && since + 0 <= level + 0
        }
        { tags = ""; if (i = index($0, "#")) { tags = substr($0, i + 1); $0 = substr($0, 1, i - 1) } }
        /{/ { open = fits(tags) && $1 !~ /_(PRIVATE|PLATFORM|DEPRECATED)$/ }
        /local:/ { open = 0 }
        open && /^ *[A-Za-z_][A-Za-z_0-9]* *; *$/ && fits(tags) { sub(/ *;.*/, ""); print $1 }
    ' "$bionic"/lib{c/libc,m/libm,dl/libdl}.map.txt | sort -u
}

# The C++ runtime: what Debian's libc++ and its companions define. Their names for the same differ from
# a device's in one type of the C library. And what an NDK's compiler links in for thread-local
# variables.
runtime() {
    defined_in "$llvm"/lib/lib{c++,c++abi,unwind}.so.1 | sed 's/11__mbstate_t/9mbstate_t/g'
    echo __emutls_get_address
}

# The functions that the platform's headers declare.
platform() {
    sed -nE 's/^[a-z].*[ *]((rlink|wds|diagLog)[A-Za-z0-9_]*)\(.*/\1/p' platform/include/*.h
}
android_log() { echo __android_log_print; }
velar() { defined_in "$library"; }
tool_libraries() { undefined "$tool" | grep -E '^(XML|sqlite3)_'; }

# needs FILE PROVIDER...: fails for what the file needs and nobody gives, on the oldest device and on
# that for which it was compiled
needs() {
    local file=$1 level provider missing
    shift
    for level in "$oldest" 30; do
        missing=$(comm -23 <(undefined "$file") <({
            exported "$level"
            for provider in "$@"; do "$provider"; done
        } | sort -u))
        [[ -z $missing ]] ||
            fail "${file##*/} needs what nobody defines at API $level:"$'\n'"$(c++filt <<<"$missing")"
    done
}

# limit WHAT FOUND MOST
limit() {
    printf '%-52s %8d of %8d\n' "$1" "$2" "$3"
    [[ $2 -le $3 ]] || fail "$1: $2, more than $3"
}

# section FILE NAME: its bytes, 0 without it
section() {
    "$llvm/bin/llvm-readelf" --sections --wide "$1" |
        awk -v name="$2" '{ sub(/^ *\[ *[0-9]+\]/, "") } $1 == name { size = $5 }
            END { print size == "" ? 0 : size }' | sed 's/^/0x/'
}

oldest=$(sed -nE 's/^ *min_sdk_version: "([0-9]+)",$/\1/p' Android.bp | sort -u)
readonly oldest
[[ $oldest =~ ^[0-9]+$ ]] || fail "Android.bp promises no single min_sdk_version: ${oldest:-none}"

needs "$library" runtime platform android_log
[[ ! -e $tool ]] || needs "$tool" runtime velar tool_libraries
scripts/check-symbols.sh "$llvm/bin/llvm-nm" "$library" || fail "exports"

"$llvm/bin/llvm-strip" -o "$work/stripped" "$library"
limit 'libvelar.so for arm64, stripped, bytes' "$(stat -c %s "$work/stripped")" "$max_size"
relocations=$("$llvm/bin/llvm-readelf" --relocations --wide "$library" | grep -c R_AARCH64)
limit 'relocations' "$relocations" "$max_relocations"
limit 'data that a process writes to (.data, .bss), bytes' \
    $(($(section "$library" .data) + $(section "$library" .bss))) "$max_writable"
# Nothing of the library runs while it is loaded, so that nothing is allocated either.
limit 'functions that run while it is loaded' $((($(section "$library" .init_array) +
    $(section "$library" .preinit_array)) / 8 + ($(section "$library" .init) > 0))) 0

[[ $failures -eq 0 ]]
