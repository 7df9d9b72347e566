#!/usr/bin/env bash
# zelwords against a pipeline of the shell's tools on real ASCII text, and its own command line.
# Usage: command_line.sh ZELWORDS TEXT...
set -euo pipefail

zelwords=$(realpath "$1")
shift
temporary=$(mktemp -d)
trap 'rm -rf "$temporary"' EXIT
export LC_ALL=C
# The shell's tools change the case of ASCII letters only.
texts=()
for text in "$@"; do
    tr -cd '\000-\177' <"$text" >"$temporary/$(basename "$text")"
    texts+=("$(basename "$text")")
done
cd "$temporary"
failures=0

# count: the words of standard input in the same form, all of them.
count() {
    tr -s ' \t\r\v\f\n' '\n' | tr A-Z a-z |
        sed -E 's/^[[:punct:]]+//; s/[[:punct:]]+$//; /^$/d' |
        sort | uniq -c | sort -k1,1nr -k2
}

# same FILE...: all words and counts of the files are those of the pipeline.
same() {
    cat "$@" | count >expected
    "$zelwords" -n 0 "$@" >printed
    if ! [ -s expected ] || ! cmp -s expected printed; then
        echo "zelwords -n 0 $*: printed and expected differ:"
        diff printed expected | head -5
        failures=1
    fi
}

# check STATUS INPUT OUTPUT ARGUMENT...: INPUT and OUTPUT with their escapes written out.
check() {
    local expected=$1 status=0
    printf '%b' "$2" >input
    printf '%b' "$3" >expected
    shift 3
    "$zelwords" "$@" <input >printed 2>&1 || status=$?
    if [ "$status" != "$expected" ] || ! cmp -s expected printed; then
        echo "zelwords $*: status $status, expected $expected; printed and expected:"
        diff printed expected || true
        failures=1
    fi
}

for text in "${texts[@]}"; do same "$text"; done
same "${texts[@]}"
# One line that is longer than any piece the program works in, and words of every length up to there.
tr '\n' ' ' <"${texts[0]}" >one_line
for length in 1 100 510 511 512; do
    printf '%*s' "$length" '' | tr ' ' w
    echo
done >long_words
same one_line
same long_words one_line

check 0 'b a B, "c" b. -- c\n' '      3 b\n      2 c\n      1 a\n'
check 0 'b a B, "c" b. -- c\n' '      3 b\n      2 c\n' -n 2
check 0 'one\ttwo\fone' '      2 one\n      1 two\n' -
check 0 '' ''
check 0 '\n \n...\n' ''
# Letters that only the case table knows, quotes that are not ASCII, and a byte of Latin-1.
check 0 '\xc3\x89t\xc3\xa9 \xc2\xab\xc3\xa9t\xc3\xa9\xc2\xbb \xd0\x9c\xd0\xb8\xd1\x80 \xd0\xbc\xd0\xb8\xd1\x80' \
    '      2 \xc3\xa9t\xc3\xa9\n      2 \xd0\xbc\xd0\xb8\xd1\x80\n'
check 0 'caf\xe9 CAF\xc3\x89' '      2 caf\xc3\xa9\n'
check 0 '\xf0\x9f\x98\x80 \xf0\x9f\x98\x80' '      2 \xf0\x9f\x98\x80\n'
check 2 '' 'zelwords: nowhere: No such file or directory\n' nowhere
check 2 '' "$("$zelwords" -h)\n" -n many
check 2 '' "$("$zelwords" -h)\n" -n -1

exit "$failures"
