#!/usr/bin/env bash
# zelsed against sed, on real text where they mean the same, and its own command line.
# Usage: command_line.sh ZELSED TEXT...
set -euo pipefail

zelsed=$(realpath "$1")
shift
texts=()
for text in "$@"; do texts+=("$(realpath "$text")"); done
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
cd "$temporary"
failures=0

# same SED-SCRIPT ARGUMENT...: zelsed ARGUMENT... TEXT prints what sed -E SED-SCRIPT TEXT prints.
same() {
    local script=$1 text
    shift
    for text in "${texts[@]}"; do
        "$zelsed" "$@" "$text" >printed
        LC_ALL=C.UTF-8 sed -E "$script" "$text" >expected
        if ! cmp -s expected printed; then
            echo "zelsed $* $text: differs from sed -E '$script'; printed and expected:"
            diff printed expected | head -5
            failures=1
        fi
    done
}

# check STATUS OUTPUT ARGUMENT...: OUTPUT, with its escapes written out, is both streams together.
check() {
    local expected=$1 status=0
    printf '%b' "$2" >expected
    shift 2
    "$zelsed" "$@" >printed 2>&1 </dev/null || status=$?
    if [ "$status" != "$expected" ] || ! cmp -s expected printed; then
        echo "zelsed $*: status $status, expected $expected; printed and expected:"
        diff printed expected || true
        failures=1
    fi
}

# A text of some 300,000 bytes, one line of all its words, and one of 3,000 matches in a row.
for _ in $(seq 8); do cat "${texts[@]}"; done >large
tr '\n' ' ' <large >oneline
printf 'ab%.0s' $(seq 1500) >dense
printf 'no newline at the end' >unfinished
texts+=("$PWD/large" "$PWD/oneline" "$PWD/dense" "$PWD/unfinished")

same 's/the/THE/' the THE
same 's/the/THE/g' -g the THE
same 's/the/THE/gI' -g -i the THE
same 's/e//' e ''
same 's/e//g' -g e ''
same 's/^/> /' '^' '> '
same 's/$/ <'/ '$' ' <'
same 's/^$/(empty)/' -g '^$' '(empty)'
same 's/([a-z]+) ([a-z]+)/\2 \1/' '([a-z]+) ([a-z]+)' '$2 $1'
same 's/([a-z]+) ([a-z]+)/\2 \1/g' -g '([a-z]+) ([a-z]+)' '$2 $1'
same 's/[aeiou]/<&&>/g' -g '[aeiou]' '<$&$&>'
same 's/(a)|(b)/[\1\2]/g' -g '(a)|(b)' '[$1$2]'
same 's/ ([a-z])/ \1\1\1\1\1\1/g' -g '(?<= )[a-z]' '$&$&$&$&$&$&'
same 's/.*/&&/' '^.*' '$&$&'
same 's/[^ ]+$/a much longer ending than there was before/' '[^ ]+$' \
    'a much longer ending than there was before'

printf 'one two\n\nthree naïve\n' >text
check 0 'one 2\n\nthree naïve\n' two 2 text
check 0 '1ne tw1\n\nthree naïve\n' -g o 1 text
check 0 'one two\n\nthree na-ve\n' 'na.' 'na-' text
check 0 'one two\n\nthree na-\257ve\n' -b 'na[^a]' 'na-' text
check 0 '-o-n-e- -t-w-o-\n-\n-t-h-r-e-e- -n-a-ï-v-e-\n' -g 'x*' '-' text
check 0 '[]one two\n[]\n[]three naïve\n' 'x*' '[$&]' text
check 0 'tone wo\n\nnthree aïve\n' '^(.*) (.)' '$2$1 ' text
check 0 'a > b\n' '(\w)=(\w)' '$1 > $2' <(echo 'a=b')
check 0 '' two 2 /dev/null
check 0 'one 2\n\nthree naïve\none 2\n\nthree naïve\n' two 2 text text
check 2 'zelsed: nosuch: No such file or directory\none 2\n\nthree naïve\n' two 2 nosuch text
check 2 'zelsed: the pattern does not compile: status -186 at byte 4\n' '(two' 2 text
check 2 'zelsed: in the template, a $ is followed neither by & nor by the number of a group\n' \
    two '$x' text
check 2 "$("$zelsed" -h)\n" two
printf 'aaaaaaaaaaaaaaaa\nb\n' >run
check 2 "zelsed: run:1: the search took more steps than -l allows; the line stays as it is\n\
aaaaaaaaaaaaaaaa\nX\n" -l 100 '(a+)+b|b' X run

if [ "$("$zelsed" two 2 <text)" != "$("$zelsed" two 2 text)" ]; then
    echo "zelsed: standard input is treated differently"
    failures=1
fi
exit "$failures"
