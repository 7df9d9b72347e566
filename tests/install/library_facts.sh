#!/usr/bin/env bash
# What a built library must be from the outside, whoever builds it.
# Usage: library_facts.sh LIBDIR INCLUDEDIR...
set -euo pipefail

lib=$1
shift
main=$lib/libzelchmx.so.6.1
core=$lib/libzelcore.so
failures=0

expect() { # WHAT ACTUAL EXPECTED
    [ "$2" = "$3" ] && return
    echo "$1:"
    diff <(echo "$3") <(echo "$2") | sed 's/^</  missing:/; s/^>/  too much:/' | grep -v '^[0-9-]' || true
    failures=1
}

dynamic() { readelf -dW "$1" | sed -n "s/.*($2).*\[\(.*\)\]/\1/p"; }

expect "development link" "$(readlink "$lib/libzelchmx.so")" libzelchmx.so.6.1
expect "soname" "$(dynamic "$main" SONAME)" libzelchmx.so.6.1
expect "soname of the core library" "$(dynamic "$core" SONAME)" libzelcore.so
expect "search path" "$(dynamic "$main" RUNPATH)" "\$ORIGIN"
expect "needed, except C library and OpenMP" \
    "$(dynamic "$main" NEEDED | grep -vE '^(libc|libm|ld-linux-x86-64|libgomp|libomp)\.so' || true)" libzelcore.so
expect "needed by the core library, except C library and OpenMP" \
    "$(dynamic "$core" NEEDED | grep -vE '^(libc|libgomp|libomp)\.so' || true)" ""

for file in "$main" "$core"; do
    name=${file##*/}
    # A loader with immediate binding and a RELRO segment make all relocated data read-only.
    expect "$name: immediate binding" "$(readelf -dW "$file" | grep -c 'BIND_NOW')" 1
    expect "$name: RELRO segment" "$(readelf -lW "$file" | grep -c 'GNU_RELRO')" 1
    expect "$name: stack flags" "$(readelf -lW "$file" | awk '$1 == "GNU_STACK" {print $7}')" RW
    expect "$name: text relocations" "$(readelf -dW "$file" | grep -c 'TEXTREL' || true)" 0
    expect "$name: writable and executable segments" "$(readelf -lW "$file" | grep -c 'LOAD.*RWE' || true)" 0
    expect "$name: C++ runtime symbols" \
        "$(nm -D --undefined-only "$file" | awk '{print $2}' | grep -E '^(_Z|__cxa_|__gxx|_Unwind)' | grep -v '^__cxa_finalize' || true)" ""
done

# Exactly the functions that the headers declare.
declared() { grep -ohE '\b(zels[A-Z]|zelch[A-Z]|zelM|zelF|ownG)[A-Za-z0-9_]*\(' "$1" | tr -d '(' | sort -u; }
exported() { nm -D --defined-only "$1" | awk '$2 != "A" {print $3}' | sort; }
for include in "$@"; do
    [ ! -e "$include/zelchmx.h" ] ||
        expect "exports" "$(exported "$main")" \
            "$(sed -n 's/^ZEL_API.*\b\(zel[A-Za-z0-9_]*\)(.*/\1/p' "$include/zelchmx.h" | sort)"
    [ ! -e "$include/zelcore.h" ] || expect "exports of the core library" "$(exported "$core")" "$(declared "$include/zelcore.h")"
done

exit $failures
