#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# What `./dev run` shows: a real operator provisioned into a simulated modem, library and modem kept
# in step through changes and a restart, then an attach, a data call and an emergency call.
#
# usage: demo.sh VELACTL OPERATOR-FILE [MCCMNC]
set -euo pipefail

if [[ $# -lt 2 ]]; then
    echo "usage: demo.sh VELACTL OPERATOR-FILE [MCCMNC]" >&2
    exit 2
fi
readonly velactl=$1 operators=$2 plmn=${3:-302720}
readonly scenarios=${BASH_SOURCE[0]%/*}/../examples/scenarios

directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
readonly modem=$directory/modem.json

bold='' plain=''
if [[ -t 1 && -z ${NO_COLOR:-} ]]; then
    bold=$'\033[1m' plain=$'\033[0m'
fi
readonly bold plain

chapter() { printf '\n%s%s%s\n' "$bold" "$1" "$plain"; }
explain() { printf '%s\n' "$@" ''; }
run() {
    printf '$ velactl %s\n' "$*"
    "$velactl" --modem "$modem" "$@"
}

# Switched on for the first time: creates the file.
"$velactl" --modem "$modem" --capacity 16 list >/dev/null 2>&1

chapter "1. A new modem gets the settings of operator $plmn"
explain "Each of the operator's entries gets a profile in the modem or shares one, and there is one that" \
    "the phone uses for the LTE initial attach. The file is ${operators##*/}."
run provision --apns "$operators" --plmn "$plmn"

chapter "2. The same again: nothing is left to do"
run provision --apns "$operators" --plmn "$plmn" | grep -E '^(\$|Nothing changed|Library)'

chapter "3. The library keeps in step with the modem"
explain "It creates and changes a profile; somebody else changes it behind its back; the modem restarts." \
    "Each time the library's view is compared with the modem's own table."
run run "$scenarios/demo.scn"

chapter "4. LTE attach"
explain "The policy looks for the profile that fits best, gives it the settings of the operator, and" \
    "creates one only when none fits. It tells each step."
if "$velactl" --json provision --apns "$operators" --plmn "$plmn" | grep '"not asked for"' >/dev/null; then
    echo "This operator has no entry for the attach: there is nothing to look for."
else
    run attach --apns "$operators" --plmn "$plmn"
fi

chapter "5. A data call to an APN that the operator does not list"
explain "When no profile fits, a temporary one is made for the call. As soon as the call ends, the last" \
    "key to it is dropped, and the modem forgets it."
run data-call --apn company.example --home-ip IPv4v6

chapter "6. An emergency call"
explain "Any profile that supports emergency calls will do. Only when there is none, one is created: it" \
    "serves nothing else, and stays."
run emergency --apn sos

chapter "In the end"
run list
printf '\nLibrary and modem agreed each time.\n'
