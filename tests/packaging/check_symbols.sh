#!/usr/bin/env bash
# check_symbols.sh PREFIX VERSION: checks that the installed shared library exports exactly what the public headers mark,
# has its versioned name, and needs only the C++ runtime.
set -euo pipefail
prefix=$1
major=${2%%.*}
library=$prefix/lib/libvxfileio.so
status=0

complain() {
    printf '%s\n' "$@" >&2
    status=1
}

# Prints the names after VXFILEIO_API in the headers: of classes, and of functions.
public_names() {
    grep -rhoP '(class|struct) VXFILEIO_API \K\w+|^(?:\[\[nodiscard\]\] )?VXFILEIO_API [^(]*?\K\w+(?=\()' "$prefix/include" | sort -u
}

# Reads symbols and prints the class or free function that each belongs to. "typeinfo for" and the like belong to their
# class. Functions made from templates start with their return type.
owners() {
    sed -E 's/^((typeinfo|typeinfo name|vtable|VTT|guard variable) for |void )//; s/\[abi:cxx11\]//
            s/^gd_xml_stream:://; s/(::|\(|<| ).*//' | sort -u
}

exported=$(nm -D -C --defined-only "$library" | cut -c 20-)
foreign=$(comm -13 <(public_names) <(owners <<<"$exported"))
unseen=$(comm -23 <(public_names) <(owners <<<"$exported"))
[[ -z $foreign ]] || complain "exported, but in no public header:" "$foreign"
[[ -z $unseen ]] || complain "in a public header, but not exported:" "$unseen"

soname=$(readelf -d "$library" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')
[[ $soname == libvxfileio.so.$major ]] || complain "the library's soname is $soname"

needed=$(readelf -d "$library" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | grep -vE '^lib(stdc\+\+|gcc_s|c|m)\.so\.' || true)
[[ -z $needed ]] || complain "the library needs $needed"

# The C interface exports the functions of its list, each with its version, and the names of the versions.
listed=$(sed -n 's/^\(vx_[a-z0-9_]*\) /\1@@VXFILEIO_C_/p' "$(dirname "$0")/../../capi/functions.list" | sort)
exported_by_c=$(nm -D --defined-only "$prefix/lib/libvxfileio_c.so" | sed -E '/ A VXFILEIO_C_/d; s/^[^ ]* . //' | sort)
[[ $exported_by_c == "$listed" ]] || complain "the C interface doesn't export exactly capi/functions.list:" \
    "$(diff <(echo "$listed") <(echo "$exported_by_c"))"

echo "$(wc -l <<<"$exported") symbols of $(public_names | wc -l) public classes and functions"
exit $status
