#!/bin/bash
# Copyright 2026 The libvelar Authors
# SPDX-License-Identifier: Apache-2.0
#
# usage: size.sh LIBRARY
# Prints how big a shared library for aarch64 is as a device gets it, without symbols and debug
# information, and how many relocations it has.
set -euo pipefail
library=$1

stripped=$(mktemp)
trap 'rm -f "$stripped"' EXIT
llvm-strip -o "$stripped" "$library"
relocations=$(readelf --relocs --wide "$stripped")
packed=$(sed -n 's/^ *\([0-9]*\) offsets$/\1/p' <<<"$relocations")
printf '%d bytes, %d relocations and %d packed ones\n' "$(stat --format %s "$stripped")" \
    "$(grep -c ' R_AARCH64_' <<<"$relocations")" "${packed:-0}"
