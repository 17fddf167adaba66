#!/usr/bin/env bash
# wine.sh PROGRAM [ARGUMENT...]: runs a program under wine. Very rarely wine ends before the program has begun: it fails
# and nothing is printed. Then the program is started once more. A test that fails prints why, so it gets no second try.
set -uo pipefail
export LC_ALL=C.UTF-8 # wine writes names of files in the encoding of the locale; one that has only ASCII refuses others
printed=$(mktemp -d)
trap 'rm -rf "$printed"' EXIT

run() {
    wine "$@" >"$printed/out" 2>"$printed/err"
    status=$?
}

run "$@"
if ((status != 0)) && [[ ! -s $printed/out && ! -s $printed/err ]]; then
    echo "wine.sh: ${1##*/} ended with $status and printed nothing; starting it again" >&2
    run "$@"
fi
cat "$printed/out"
cat "$printed/err" >&2
exit "$status"
