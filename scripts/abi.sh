#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: abi.sh LIBVELAR.SO [--update]
# Compares what the library promises its clients' binaries, symbols and the types behind them, with the
# description in abi/, or renews that. The library is one that gcc has built for x86-64 without
# optimisation: another compiler describes the same otherwise.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
readonly library=$1 update=${2:-} described=abi/libvelar.abi.xml

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

rule() {
    cat >&2 <<'RULE'

What clients were compiled against has changed. If that is meant:
  - renew the description: ./dev abi --update
  - tell of it in CHANGELOG.md, in the same commit
  - after a release, raise the version in CMakeLists.txt: for an addition any part of it, for all else
    the first part that is not 0
RULE
    printf '\nabi: %s\n' "$*" >&2
    exit 1
}

# Of the standard library's templates their names and sizes are enough, not what they are made of.
cat >"$work/inner" <<'SUPPRESSIONS'
[suppress_type]
  name_regexp = ^std::_[A-Z]|^std::__[abd-z]|^__gnu_cxx::|^std::__cxx11::_|::_[A-Za-z_]+$|^std::(remove_|rebind|allocator|iterator|char_traits|conditional|enable_if|errc|error_c|system_error|exception|locale|ios_base)
  drop_artifact = yes
SUPPRESSIONS

# Where it was built is no part of it.
abidw --headers-dir include/vela --drop-private-types --exported-interfaces-only \
    --suppressions "$work/inner" --type-id-style hash --no-corpus-path --no-comp-dir-path \
    --no-show-locs --no-parameter-names --no-elf-needed --no-write-default-sizes "$library" |
    sed -E "s| path='[^']*/(src/[^']*)'| path='\1'|" >"$work/now"

# change BEFORE AFTER: prints none, addition or incompatible change; the details are in $work/report
change() {
    local status=0
    abidiff --harmless "$1" "$2" >"$work/report" 2>"$work/errors" || status=$?
    if [[ -s $work/errors ]]; then  # a damaged description is no difference to abidiff
        cat "$work/errors" >&2
        return 1
    fi
    if [[ $status -eq 0 ]]; then
        echo none
    elif abidiff --no-added-syms "$1" "$2" >/dev/null; then
        echo addition
    else
        echo 'incompatible change'
    fi
}

if [[ $update == --update ]]; then
    cp "$work/now" "$described"
fi
found=$(change "$described" "$work/now")
if [[ $found != none ]]; then
    cat "$work/report"
    rule "an $found that $described does not have"
fi

# The rest is about what was committed, and when.
git rev-parse --git-dir >/dev/null 2>&1 || exit 0
if git diff --quiet HEAD -- "$described"; then
    last=$(git log -1 --format=%H -- "$described")
    together=${last:+$(git show --format= --name-only "$last")}
else
    together=$(git diff --name-only HEAD)
fi
[[ -z $together ]] || grep -qx CHANGELOG.md <<<"$together" ||
    rule "$described was renewed without a line in CHANGELOG.md"

tag=$(git describe --tags --abbrev=0 --match 'v[0-9]*' 2>/dev/null) || exit 0
git show "$tag:$described" >"$work/released"
released=${tag#v}
version=$(sed -nE 's/^ *VERSION ([0-9.]+)$/\1/p' CMakeLists.txt)
found=$(change "$work/released" "$work/now")
promised() { sed -E 's/^(0\.[0-9]+|[1-9][0-9]*)\..*/\1/' <<<"$1"; }
case $found in
    addition) [[ $version != "$released" ]] ;;
    incompatible*) [[ $(promised "$version") != "$(promised "$released")" ]] ;;
esac || rule "version $version has an $found since $released"
