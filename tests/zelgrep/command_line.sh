#!/usr/bin/env bash
# The command line of zelgrep: what it prints and how it exits.
# Usage: command_line.sh ZELGREP
set -euo pipefail

zelgrep=$(realpath "$1")
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
cd "$temporary"
failures=0

printf 'one two\nthree\n\nnaïve café\nTWO' >text
printf 'two\0two\nx\0' >binary
printf 'nothing here\n' >other
printf 'aaaaaa\n' >run
cat run run run run run >runs

# check STATUS OUTPUT ARGUMENT...: OUTPUT, with its escapes written out, is both streams together.
check() {
    local expected=$1 status=0
    printf '%b' "$2" >expected
    shift 2
    "$zelgrep" "$@" >printed 2>&1 </dev/null || status=$?
    if [ "$status" != "$expected" ] || ! cmp -s expected printed; then
        echo "zelgrep $*: status $status, expected $expected; printed and expected:"
        diff printed expected || true
        failures=1
    fi
}

check 0 'one two\n' two text
check 0 'one two\nTWO\n' -i two text
check 0 '1:one two\n5:TWO\n' -n -i two text
check 1 '' four text
check 0 '3:\n' -n '^$' text
check 0 '2\n' -c -e o -e 'e$' text
check 0 'text:1\nother:0\n' -c two text other
check 0 'text:two\n' -o two text other
check 0 'one\ntwo\n' -o -e one -e two text
check 0 'one two\n' -o -x 'one \ t w o  # three' text
check 0 'café\n' -o 'caf.$' text
check 0 'caf\303\n' -o 'caf\C' text
check 0 'na\303\n' -b -o 'na[^a]' text
check 0 'naï\n' -o 'na[^a]' text
check 0 'o\nwo\n' -o 'w?o' text
check 0 'e\n' -g 1 '(n|e) t' text
check 0 'ee\n' -o '(e)\1' text
check 0 'w\n' -g 2 't(h)?(w)' text
check 0 'one\n' -g 0 'o(n)e' text
check 2 'zelgrep: there is no group 2; the pattern has 1\n' -g 2 '(o)' text
check 2 'zelgrep: nosuch: No such file or directory\n' x nosuch
check 2 'zelgrep: nosuch: No such file or directory\ntext:one two\n' two nosuch text
check 2 "zelgrep: $temporary: is a directory\n" two "$temporary"
check 0 '' -q two text nosuch
check 0 'zelgrep: nosuch: No such file or directory\n' -q two nosuch text
check 1 '' -q four text
check 0 'zelgrep: binary: binary file matches\n' two binary
check 0 'two\0two\n' -a two binary
check 0 'two\0two\nx\0' -z -s 'two|x' binary
check 0 'two\nx\0' -z -s 'two.x' binary
check 1 '' -z 'two.x' binary
check 2 'zelgrep: the pattern does not compile: malformed or unbalanced parentheses (-186)\n    é(a\n       ^\n' 'é(a' text
check 2 'zelgrep: the pattern does not compile: malformed bracket class (-184)\n    [b-a]\n       ^\n' \
    -x -e one -e $'[a]\n[b-a]' text
spent='a search ran out of its 5 steps and was given up; -l sets a higher limit\n'
check 2 "zelgrep: run:1: $spent" -n -l 5 '(a|b)+\d' run
check 2 "zelgrep: runs: ${spent}zelgrep: runs: ${spent}zelgrep: runs: ${spent}zelgrep: runs: ... and 2 more lines\n0\n" \
    -c -l 5 '(a|b)+\d' runs
check 2 'zelgrep: -l needs a number of steps\nTry '"'zelgrep -h'.\n" -l many x
check 2 'zelgrep: no pattern\nTry '"'zelgrep -h'.\n"

# Lines across the borders of what is read at once, and a last line without an end.
awk 'BEGIN { for (i = 1; i <= 300000; ++i) print i, "line" }' >large
check 0 '300000\n' -c line large
check 0 '299999:299999 line\n' -n '^299999' large
tr '\n' ' ' <large >long
printf 'end' >>long
check 0 '1\n' -c 'end$' long

check 1 '0\n' -c x -
[ "$(printf 'a\nb' | "$zelgrep" -n b)" = 2:b ] || { echo "standard input is not searched"; failures=1; }
exit $failures
