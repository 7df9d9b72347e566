#!/bin/sh
# symbols.sh LIST LIBRARY...: the names that the libraries export are exactly those of the list.
set -eu
export LC_ALL=C
list=$1
shift
exported=$(nm -D --defined-only "$@" | awk 'NF == 3 && $2 != "A" {print $3}' | sort)
if [ "$exported" != "$(sort "$list")" ]; then
    echo "exported names differ from ${list##*/} (left: expected)"
    echo "$exported" | diff "$list" - || true
    exit 1
fi
