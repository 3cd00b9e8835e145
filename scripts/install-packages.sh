#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# Makes the Debian packages of a build and installs them into a root folder of their own, with nothing
# of the system in it; then looks whether they hold what they should, and where.
#   install-packages.sh BUILD-FOLDER FOLDER       packages go to FOLDER, the root is FOLDER/installed
set -euo pipefail

build=$1 folder=$(realpath -m "$2") root=$folder/installed
die() {
    printf 'install-packages: %s\n' "$*" >&2
    exit 1
}

rm -rf "$folder"
mkdir -p "$root"/var/lib/dpkg/{info,updates,triggers}
touch "$root"/var/lib/dpkg/status
cpack --config "$build/CPackConfig.cmake" -B "$folder" >"$folder/cpack.log" 2>&1 ||
    die "$(cat "$folder/cpack.log")"
rm -r "$folder/_CPack_Packages"
# Not configured, which would call the system's ldconfig. Two packages with one file are refused.
PATH=$PATH:/usr/sbin:/sbin dpkg --root="$root" --log="$folder/dpkg.log" --force-not-root \
    --unpack "$folder"/*.deb >"$folder/dpkg.out" 2>&1 || die "$(cat "$folder/dpkg.out")"

depends() { dpkg-deb --field "$folder/$1"_*.deb Depends; }
[[ $(depends velactl) =~ "libvelar0 (= ".*libsqlite3 ]] || die "velactl depends on: $(depends velactl)"
[[ $(depends libvelar-dev) =~ ^"libvelar0 (= "[0-9.]+\)$ ]] ||
    die "libvelar-dev depends on: $(depends libvelar-dev)"
[[ $(depends libvelar0) =~ libc6.*libstdc ]] || die "libvelar0 depends on: $(depends libvelar0)"

library=$(find "$root/usr/lib" -name 'libvelar.so.?')
export LD_LIBRARY_PATH=${library%/*}
if readelf -d "$root/usr/bin/velactl" "${library%/*}"/*.so | grep 'R.*PATH.*ORIGIN'; then
    die "these run paths are left"
fi
modem=$folder/modem.json
"$root/usr/bin/velactl" --modem "$modem" add --apn internet >/dev/null
[[ $("$root/usr/bin/velactl" --modem "$modem" list) == *internet* ]] || die "velactl lists nothing"
(cd "$root/usr/share/doc/libvelar-dev" && "$root/usr/bin/velactl" run examples/scenarios/*.scn) \
    >"$folder/scenarios.log" || die "an installed scenario fails: $(cat "$folder/scenarios.log")"

# Every verb has its page, and no page anything that the formatter complains of.
mapfile -t verbs < <("$root/usr/bin/velactl" help --verbs | sed -n 's/^| `\([a-z-]*\).*/\1/p')
[[ ${#verbs[@]} -gt 10 ]] || die "verbs: ${verbs[*]}"
for page in velactl "${verbs[@]/#/velactl-}"; do
    file=$root/usr/share/man/man1/$page.1.gz
    [[ -s $file ]] || die "no manual page $page"
    ! command -v groff >/dev/null || [[ -z $(zcat "$file" | groff -ww -man -Tutf8 2>&1 >/dev/null) ]] ||
        die "$(zcat "$file" | groff -ww -man -Tutf8 2>&1 >/dev/null)"
done

# complete WORD...: what bash makes of the last one
complete() {
    bash -c 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1))
        compopt() { :; }; _velactl; printf "%s " "${COMPREPLY[@]}"' bash \
        "$root/usr/share/bash-completion/completions/velactl" "$@"
}
[[ $(complete velactl d) == "dump delete data-call " ]] || die "d: $(complete velactl d)"
[[ $(complete velactl --modem m.json add --au) == "--auth " ]] ||
    die "--au: $(complete velactl --modem m.json add --au)"
[[ $(complete velactl add --types default,im) == "default,ims " ]] ||
    die "default,im: $(complete velactl add --types default,im)"
[[ $(complete velactl --tech = 3GPP2 run "$folder/mo") == "$modem " ]] ||
    die "a file: $(complete velactl --tech = 3GPP2 run "$folder/mo")"

if command -v lintian >/dev/null; then
    lintian --allow-root --fail-on error "$folder"/*.deb || die "lintian finds errors"
fi
