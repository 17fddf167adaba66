#!/usr/bin/env bash
# check_headers.sh INCLUDE_FOLDER COMPILER...: checks that each installed header compiles alone without a warning, that
# VXFileIO.h includes all others, and that the other compilers compile it without a warning. They use the same standard
# library, so what a header fails to include is missing for all of them.
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

printf '%s\n' "${headers[@]}" | xargs -P "$(nproc)" -I {} bash -c 'compile "$@"' _ "${compilers[0]}" {}
echo "${compilers[0]} compiles ${#headers[@]} headers"

brought=$(echo '#include <vxfileio/frame/VXFileIO.h>' | "${compilers[0]}" -std=c++20 -I"$include" -x c++ -M -)
for header in "${headers[@]}"; do
    [[ $brought == *"$include/$header"* ]] || { echo "VXFileIO.h doesn't include $header" >&2 && exit 1; }
done

for compiler in "${compilers[@]:1}"; do
    compile "$compiler" vxfileio/frame/VXFileIO.h
    echo "$compiler compiles VXFileIO.h with all headers"
done
