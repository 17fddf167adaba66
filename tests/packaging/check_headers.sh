#!/usr/bin/env bash
# check_headers.sh INCLUDE_FOLDER COMPILER...: checks that each installed header compiles alone without a warning, and that
# VXFileIO.h includes all others.
set -euo pipefail
include=$1
compilers=("${@:2}")

mapfile -t headers < <(cd "$include" && find vxfileio -name '*.h' | sort)
((${#headers[@]})) || { echo "no header in $include" >&2 && exit 1; }

# compile COMPILER HEADER: compiles a source that includes the header twice, which also finds missing include guards.
compile() {
    printf '#include <%s>\n' "$2" "$2" |
        "$1" -std=c++20 -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror -I"$include" -fsyntax-only -x c++ - ||
        { echo "$1 doesn't compile $2 alone" >&2 && return 1; }
}
export -f compile
export include

for compiler in "${compilers[@]}"; do
    printf '%s\n' "${headers[@]}" | xargs -P "$(nproc)" -I {} bash -c 'compile "$@"' _ "$compiler" {}
    echo "$compiler compiles ${#headers[@]} headers"
done

brought=$(echo '#include <vxfileio/frame/VXFileIO.h>' | "${compilers[0]}" -std=c++20 -I"$include" -x c++ -M -)
for header in "${headers[@]}"; do
    [[ $brought == *"$include/$header"* ]] || { echo "VXFileIO.h doesn't include $header" >&2 && exit 1; }
done
