#!/bin/sh
# abi.sh BASELINE HEADER WORK-DIRECTORY CC: the interface that the header declares has the same ABI as the
# checked-in baseline. A library of empty functions, one per declaration, carries the header's types
# whole, whatever the real library is built with. To accept a change, copy the new dump over the baseline.
set -eu
baseline=$1
header=$2
work=$3
cc=$4
mkdir -p "$work"
{
    echo '#include "zelchmx.h"'
    awk '/^ZEL_API/ {inside = 1} inside {print} inside && /;/ {inside = 0}' "$header" |
        sed 's/^ZEL_API //; s/;/ { __builtin_trap(); }/'
} >"$work/interface.c"
"$cc" -std=c99 -g -shared -fPIC -w -I"$(dirname "$header")" "$work/interface.c" -o "$work/interface.so"
abidw --no-show-locs --no-comp-dir-path --no-corpus-path "$work/interface.so" >"$work/interface.abi"
abidiff "$baseline" "$work/interface.abi"
