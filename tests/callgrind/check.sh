#!/usr/bin/env bash
# Usage: check.sh VALGRIND PROGRAM BASELINE COMPILER [--record]
# Counts the instructions of the hot kernels and holds them against the baseline: more than 10 % above
# it is a failure. Fewer are reported, and worth recording. With --record the baseline is written anew.
#
# Valgrind runs no AVX-512 instructions and shows programs a processor without them, so that the
# library chooses its AVX2 instance: the counts are those of that one, whatever the processor. Where the
# chosen instance or the compiler is not that of the baseline, nothing can be said: exit code 77.
set -euo pipefail

valgrind=$1 program=$2 baseline=$3 compiler=$4 mode=${5:-}
tolerance=10

skip() {
    echo "skipped: $*"
    exit 77
}

directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
if ! instance=$("$valgrind" --tool=callgrind --collect-atstart=no --callgrind-out-file="$directory/dump" \
    "$program" 2>"$directory/log"); then
    cat "$directory/log" >&2
    exit 1
fi
[ "$instance" = avx2 ] || skip "under valgrind the library chooses its $instance instance here; the counts are of the avx2 one"

# Each dump names its row and its total. The one at the end of the program has no row.
mapfile -t dumps < <(printf '%s\n' "$directory"/dump.* | sort --version-sort)
awk '/^desc: Trigger: Client Request: / {name = $NF}
     /^totals: / && name != "" {print name, $2; name = ""}' "${dumps[@]}" >"$directory/counts"
[ -s "$directory/counts" ] || { echo "no counts in what callgrind wrote" >&2; exit 1; }

if [ "$mode" = --record ]; then
    {
        echo "# Instructions of one call each on 4096 elements, AVX2 instance. Written by the target callgrind_baseline."
        echo "compiler $compiler"
        cat "$directory/counts"
    } >"$baseline"
    cat "$baseline"
    exit 0
fi

recorded=$(awk '$1 == "compiler" {print $2; exit}' "$baseline")
[ "$recorded" = "$compiler" ] || skip "the baseline was recorded with $recorded, this is $compiler"

awk -v tolerance=$tolerance '
    FNR == NR { if ($1 !~ /^#/ && $1 != "compiler") was[$1] = $2; next }
    {
        verdict = "";
        if (!($1 in was)) { verdict = "is not in the baseline"; failed = 1; was[$1] = $2 }
        else if ($2 * 100 > was[$1] * (100 + tolerance)) { verdict = "TOO MANY"; failed = 1 }
        else if ($2 * 100 < was[$1] * (100 - tolerance)) verdict = "fewer: record it with the target callgrind_baseline"
        printf "%-28s %8d, baseline %8d, %+6.1f %%  %s\n", $1, $2, was[$1], ($2 / was[$1] - 1) * 100, verdict
        seen[$1] = 1
    }
    END {
        for (name in was) if (!(name in seen)) { print name, "was not counted"; failed = 1 }
        exit failed
    }' "$baseline" "$directory/counts"
