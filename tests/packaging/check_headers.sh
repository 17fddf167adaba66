#!/usr/bin/env bash
# check_headers.sh INCLUDE_FOLDER COMPILER...: each installed header compiles alone, without a warning, and the one
# header that callers include brings all others along.
set -euo pipefail
include=$1
compilers=("${@:2}")
warnings=(-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)

mapfile -t headers < <(cd "$include" && find vxfileio -name '*.h' | sort)
((${#headers[@]})) || { echo "no header in $include" >&2 && exit 1; }

# Included twice, so that a header without a guard is found as well.
for compiler in "${compilers[@]}"; do
    for header in "${headers[@]}"; do
        echo "$compiler $header"
        printf '#include <%s>\n' "$header" "$header" |
            "$compiler" -std=c++20 "${warnings[@]}" -I"$include" -fsyntax-only -x c++ -
    done
done

brought=$(echo '#include <vxfileio/frame/VXFileIO.h>' | "${compilers[0]}" -std=c++20 -I"$include" -x c++ -M -)
for header in "${headers[@]}"; do
    [[ $brought == *"$include/$header"* ]] || { echo "VXFileIO.h doesn't bring $header" >&2 && exit 1; }
done
