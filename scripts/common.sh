# Sourced by the scripts beside it: the project's root, and what each of them needs installed.
# shellcheck shell=bash

# shellcheck disable=SC2034  # used by who sources this
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck disable=SC2034
jobs=$(nproc)

fail() {
    echo "${0##*/}: $*" >&2
    exit 1
}

# quietly WHAT COMMAND...: runs the command and shows its output only when it fails.
quietly() {
    local what=$1 log
    shift
    log=$(mktemp)
    if ! "$@" >"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        fail "$what failed; its output is above"
    fi
    rm -f "$log"
}

# packages NAME...: installs those of the Debian packages that are missing, and only those.
packages() {
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null | grep -qx installed ||
            missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    command -v apt-get >/dev/null || fail "please install by hand: ${missing[*]}"
    local sudo=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "please install as root: apt-get install ${missing[*]}"
        sudo=(sudo)
    fi
    echo "Installing ${missing[*]}"
    local apt=("${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq)
    quietly "apt-get update" "${apt[@]}" update
    quietly "apt-get install" "${apt[@]}" install -y --no-install-recommends "${missing[@]}"
}
