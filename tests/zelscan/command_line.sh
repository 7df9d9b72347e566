#!/usr/bin/env bash
# zelscan against grep, rule by rule, on real text, with different numbers of threads; and its own
# command line.
# Usage: command_line.sh ZELSCAN TEXT...
set -euo pipefail

zelscan=$(realpath "$1")
shift
texts=()
for text in "$@"; do texts+=("$(realpath "$text")"); done
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
cd "$temporary"
failures=0

complain() {
    echo "$@"
    failures=1
}

# check STATUS OUTPUT ARGUMENT...: OUTPUT, with its escapes written out, is both streams together.
check() {
    local expected=$1 status=0
    printf '%b' "$2" >expected
    shift 2
    "$zelscan" "$@" >printed 2>&1 </dev/null || status=$?
    if [ "$status" != "$expected" ] || ! cmp -s expected printed; then
        complain "zelscan $*: status $status, expected $expected; printed and expected:"
        diff printed expected || true
    fi
}

# Rules that mean the same to grep -E, some with groups and one that nothing matches.
cat >rules <<'RULES'
# name      pattern
the         the
capital     [A-Z][a-z]+
empty       ^$

ending      [a-z]+\.$
software    (free|open) (software|source)
letters     ([a-z])\1
number      [0-9]+
never       zzzzz
quote       "[^"\n]*"
begin       ^[a-z]
RULES

# More than one block of lines, and more hits in it than there is room for at first.
: >large
while [ "$(wc -c <large)" -lt 4500000 ]; do cat "${texts[@]}" >>large; done
printf 'the end without a newline: the "software"' >>large

# A rule and the number of lines and of hits that grep finds.
counts() {
    local name pattern
    while read -r name pattern; do
        [ -n "$name" ] && [ "$name" != '#' ] || continue
        pattern=${pattern//\\n/}
        echo "$name $(LC_ALL=C grep -cE -- "$pattern" "$1" || true)" \
            "$(LC_ALL=C grep -oE -- "$pattern" "$1" | wc -l)"
    done <rules
}

cp rules all
for text in "${texts[@]}" large; do
    if [ "$text" = large ]; then grep -E '^(the|empty|software|never) ' all >rules; fi
    # The option -o of grep does not print the empty matches of ^$, one for each line.
    counts "$text" | awk '{ print $1, $2, $1 == "empty" ? $2 : $3 }' >expected
    for threads in 1 2 3 7 20; do
        [ "$text" != large ] || [ "$threads" = 2 ] || continue
        OMP_NUM_THREADS=$threads "$zelscan" -c rules "$text" | awk 'NR > 1 { print $1, $2, $3 }' >printed
        cmp -s expected printed ||
            complain "zelscan -c $text with $threads threads: differs from grep" \
                "$(diff printed expected)"
    done
done

# The lines themselves, with their numbers.
for text in "${texts[@]}"; do
    grep -nE '(free|open) (software|source)' "$text" | sed 's/:/: software: /' >expected || true
    printf 'software (free|open) (software|source)\n' >one
    { "$zelscan" one "$text" || true; } | head -n -2 >printed
    cmp -s expected printed ||
        complain "zelscan one $text: differs from grep -n" "$(diff printed expected)"
done

printf 'b b\n  a(.)?  \n' >rules
check 2 "zelscan: rules:2: a rule is a name, blanks and a pattern\n" rules
printf 'b b\na a(.)?\nd \\d\n' >rules
printf 'ab\n\nno\nbab 7\n' >text
table='rule         lines          hits\n'
check 0 "1: b,a: ab\n4: b,a,d: bab 7\n${table}b                2             3
a                2             2\nd                1             1\n" rules text
check 0 "${table}b                2             3
a                2             2\nd                1             1\n" -c rules text
check 0 "text:1: b,a: ab\ntext:4: b,a,d: bab 7\ntext:1: b,a: ab\ntext:4: b,a,d: bab 7
${table}b                4             6\na                4             4\nd                2             2\n" \
    rules text text
check 1 "${table}b                0             0
a                0             0\nd                0             0\n" rules /dev/null
check 2 "zelscan: nosuch: No such file or directory\n${table}b                2             3
a                2             2\nd                1             1\n" -c rules nosuch text
check 2 "zelscan: nosuch: No such file or directory\n" nosuch text
check 2 "$("$zelscan" -h)\n"
printf 'b b\nc (c\n' >rules
check 2 "zelscan: rules:2: the pattern does not compile: status -186\n    (c\n      ^\n" \
    rules text
printf '# nothing\n' >rules
check 2 "zelscan: rules: there are no rules\n" rules text
printf 'b B\n' >rules
check 0 "1: b: ab\n4: b: bab 7\n${table}b                2             3\n" -i rules text
printf 'slow (a+)+b\nquick b\n' >rules
printf 'aaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\nb\n' >text
check 2 "rule          lines          hits
slow              0             0  (ran out of steps: there may be more)
quick             1             1\n" -c -l 100 rules text

exit "$failures"
