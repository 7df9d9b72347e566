#!/usr/bin/env bash
# Uses an installed tree as a stranger would.
# Usage: consume.sh PREFIX LIBDIR WORKDIR CC CXX
# PREFIX/LIBDIR holds the libraries; WORKDIR is made anew.
set -euo pipefail

prefix=$(realpath "$1")
lib=$prefix/$2
work=$3
cc=$4
cxx=$5
here=$(realpath "$(dirname "${BASH_SOURCE[0]}")")
rm -rf "$work"
mkdir -p "$work"
cd "$work"

step() { echo "== $*"; }
expect() { # EXPECTED ACTUAL
    [ "$1" = "$2" ] || { printf 'expected: %s\nprinted:  %s\n' "$1" "$2"; exit 1; }
}
# Runs a command that must fail and say so with the given words.
refused() { # WORDS COMMAND...
    local words=$1
    shift
    if "$@" >refused.log 2>&1; then echo "succeeds: $*"; exit 1; fi
    grep -qE "$words" refused.log || { echo "says nothing of '$words':"; cat refused.log; exit 1; }
}

export PKG_CONFIG_LIBDIR=$lib/pkgconfig LD_LIBRARY_PATH=$lib

step "C99, found by pkg-config"
read -ra flags <<<"$(pkg-config --cflags --libs zelchmx)"
"$cc" -std=c99 -pedantic -Wall -Wextra -Werror "$here/consumer_c/main.c" "${flags[@]}" -o c99
expect "3 value" "$(./c99)"
expect 6.1.137 "$(pkg-config --modversion zelchmx)"

step "C++20, found by CMake"
cmake -S "$here/consumer_cpp" -B cpp -G Ninja -DWANTED=6.1 -DCMAKE_PREFIX_PATH="$prefix" \
    -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=Release >cpp.log || { cat cpp.log; exit 1; }
cmake --build cpp >>cpp.log || { cat cpp.log; exit 1; }
expect "3c9 6d 65 67 61 " "$(./cpp/consumer)"

step "every public name, looked up in the loaded library"
mapfile -t names < <(sed -n 's/^ZEL_API.*\b\(zel[A-Za-z0-9_]*\)(.*/\1/p' "$prefix/include/zelchmx.h")
"$cc" -std=c99 -Wall -Werror "$here/every_name/main.c" -ldl -o every_name
expect "${#names[@]} names" "$(./every_name libzelchmx.so.6.1 "${names[@]}")"
[ "${#names[@]}" -gt 90 ]

step "mistakes are reported"
refused 'version.*7\.0|7\.0.*version' cmake -S "$here/consumer_cpp" -B wrong -G Ninja -DWANTED=7.0 \
    -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$cxx"
cat >width.cpp <<'END'
#include <zelchmx.h>
int main() { Zel16u text[1] = {0}; int at; return zelsFindC_8u(text, 1, 'x', &at); }
END
refused 'Zel16u|short unsigned|unsigned short' "$cxx" -std=c++20 -I"$prefix/include" -c width.cpp
cp width.cpp width.c
refused 'incompatible' "$cc" -std=c99 -Werror -I"$prefix/include" -c width.c
refused 'undefined reference.*zelsRegExpFind_8u|undefined symbol.*zelsRegExpFind_8u' \
    "$cc" -std=c99 "$here/consumer_c/main.c" -I"$prefix/include" -o nolibrary

step "manual pages"
if [ -d "$prefix/share/man/man3" ]; then
    for name in "${names[@]}"; do
        [ -e "$prefix/share/man/man3/$name.3" ] || [ -e "$prefix/share/man/man3/$name.3.gz" ] ||
            { echo "no manual page for $name"; exit 1; }
    done
    if command -v man >/dev/null; then
        man -M "$prefix/share/man" -P cat 3 zelsFind_8u >page.txt 2>/dev/null
        grep -q zelsFindRev_16u page.txt || { echo "man zelsFind_8u shows:"; cat page.txt; exit 1; }
    fi
    for name in "${names[@]}"; do
        zgrep -qE "^zelchmx_.*\\b$name\\b.* .- " "$prefix"/share/man/man3/zelchmx_*.3* ||
            { echo "apropos would not find $name"; exit 1; }
    done
else
    echo "   none: built without Doxygen"
fi
