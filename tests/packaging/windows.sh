#!/usr/bin/env bash
# windows.sh LINUX_BUILD WINDOWS_BUILD: runs the tests of the Windows build under wine, then compares the files that the
# programs of both builds write.
set -euo pipefail
linux=$1
windows=$2
work=$(dirname "$windows")/wine-files

source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/lib.sh"

# on_both PROGRAM [ARGUMENT...]: runs a program of both builds, each in its own folder, and compares the files they
# write.
on_both() {
    local program=$1
    shift
    echo "Comparing what $program writes"
    rm -rf "$work"
    mkdir -p "$work/linux" "$work/windows"
    (cd "$work/linux" && "$linux/bin/$program" "$@" >/dev/null)
    (cd "$work/windows" && wine "$windows/bin/$program.exe" "$@" >/dev/null)
    # Settings files contain the time of writing, which differs.
    find "$work" -name '*.vxs' -exec sed -i -E \
        's|(<AnalyzingDate>)[0-9]+(</AnalyzingDate><AnalyzingDateString>)[-0-9: ]+|\1\2|' {} +
    [[ -n $(ls "$work/linux") ]] || { echo "$program wrote nothing" >&2 && exit 1; }
    diff -r "$work/linux" "$work/windows"
    find "$work/linux" -type f -printf 'same %10s bytes: %P\n' | sort -k 4
}

start_wine
ctest --test-dir "$windows" --output-on-failure --no-tests=error --parallel "$(nproc)"
on_both write_samples .
on_both plate_run .
