#!/usr/bin/env bash
# windows.sh LINUX_BUILD WINDOWS_BUILD: runs the tests of the Windows build under wine, then compares the files that
# plate_run of both builds writes.
set -euo pipefail
linux=$1
windows=$2
work=$(dirname "$windows")/wine-files

source "$(dirname "${BASH_SOURCE[0]}")/../../scripts/lib.sh"

start_wine
ctest --test-dir "$windows" --output-on-failure --no-tests=error --parallel "$(nproc)"

echo "Comparing what plate_run writes"
rm -rf "$work"
mkdir -p "$work/linux" "$work/windows"
(cd "$work/linux" && "$linux/bin/plate_run" . >/dev/null)
(cd "$work/windows" && wine "$windows/bin/plate_run.exe" . >/dev/null)
# Settings files contain the time of writing, which differs.
find "$work" -name '*.vxs' -exec sed -i -E \
    's|(<AnalyzingDate>)[0-9]+(</AnalyzingDate><AnalyzingDateString>)[-0-9: ]+|\1\2|' {} +
[[ -n $(ls "$work/linux") ]] || { echo "plate_run wrote nothing" >&2 && exit 1; }
diff -r "$work/linux" "$work/windows"
find "$work/linux" -type f -printf 'same %10s bytes: %P\n' | sort -k 4
