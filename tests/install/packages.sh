#!/usr/bin/env bash
# Makes the Debian packages as the documentation tells, asks lintian about them, and uses them
# unpacked like an installed tree.
# Usage: packages.sh SOURCEDIR WORKDIR CC CXX
set -euo pipefail

source=$(realpath "$1")
work=$2
cc=$3
cxx=$4
rm -rf "$work"
mkdir -p "$work/root"
cd "$work"

quietly() { "$@" >log 2>&1 || { cat log; exit 1; }; }
quietly cmake -S "$source" --preset package -B build
quietly cmake --build build
(cd build && quietly cpack)
for package in build/*.deb; do dpkg-deb -x "$package" root; done

"$source/tests/install/consume.sh" root/usr lib/x86_64-linux-gnu consumers "$cc" "$cxx"

echo "== lintian"
if command -v lintian >/dev/null; then
    lintian --no-cfg --fail-on error --allow-root build/*.deb | grep -v '^[NW]:' || [ "${PIPESTATUS[0]}" = 0 ]
else
    echo "   not installed: not asked"
fi
