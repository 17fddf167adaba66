#!/usr/bin/env python3
"""Keeps the declarations for other languages equal to the header of the C interface.

    bindings.py ROOT             prints what differs in the files below, and ends with 1 if anything does
    bindings.py --update ROOT    rewrites them

The files are VxFileIO.cs, VxFileIO.java and vxfileio_c.py in ROOT/capi/bindings, and ROOT/docs/labview.md. What is
between the lines with <declarations> and </declarations> comes from the header; the rest is written by hand.
"""
import difflib
import pathlib
import re
import sys
import textwrap

from c_header import SCALARS, read_header


def role_of(kind, following, handles):
    """Returns what a parameter or member is for, and its type without qualifiers."""
    base, is_const = kind.replace("const", "").rstrip("*"), kind.startswith("const")
    next_name = following and following[1]
    if base == "void":
        return "handle" if is_const else "address", base
    if base in handles:
        return "new handle" if kind.endswith("**") else "handle", base
    if base == "char":
        return ("bytes" if next_name == "length" else "text") if is_const else "room for text", base
    if not kind.endswith("*"):
        return "value", base
    if is_const:
        return "input array" if base in SCALARS else "input struct", base
    return "array" if next_name in ("count", "well_count") else "place" if base in SCALARS else "struct", base


def spelled(declared, handles, types, roles):
    """Returns parameters or members in the words of a language."""
    words = []
    for (kind, name), following in zip(declared, [*declared[1:], None]):
        role, base = role_of(kind, following, handles)
        words.append(roles[role].format(name=name, type=types.get(base, base)))
    return words


def wrapped(line, indent=4):
    """Returns a declaration with a final newline, in lines of at most 120 columns."""
    return textwrap.fill(line, 120, initial_indent=" " * indent, subsequent_indent=" " * (indent + 4),
                         break_long_words=False, break_on_hyphens=False) + "\n"


def is_long(number):
    return not -2**31 <= number < 2**31


def is_callback(member):
    return isinstance(member[0], list)


def knows_its_size(members):
    return members[0] == ("int64_t", "size")


# ---- LabVIEW

LABVIEW_TYPES = {"int32_t": "I32", "int64_t": "I64", "uint16_t": "U16", "double": "DBL", "vx_run": "run"}
LABVIEW_ROLES = {
    "new handle": "`{name}` new handle", "handle": "`{name}` handle", "address": "`{name}` handle",
    "text": "`{name}` text", "bytes": "`{name}` text", "room for text": "`{name}` room for text",
    "value": "`{name}` {type}", "place": "`{name}` {type} pointer",
    "input array": "`{name}` {type} array", "array": "`{name}` {type} array",
    "input struct": "`{name}` cluster", "struct": "`{name}` cluster",
}


def labview(header):
    yield "\n| Call | Parameters |\n|---|---|\n"
    for name, parameters in header.functions:
        words = ", ".join(spelled(parameters, header.handles, LABVIEW_TYPES, LABVIEW_ROLES))
        yield f"| `{name}` | {words} |\n"
    yield "\n"


# ---- C#

CSHARP_TYPES = {"int32_t": "int", "int64_t": "long", "uint16_t": "ushort", "uint64_t": "ulong"}
CSHARP_ROLES = {
    "new handle": "out VxHandle @{name}", "handle": "VxHandle {name}", "address": "IntPtr {name}",
    "text": "[MarshalAs(UnmanagedType.LPUTF8Str)] string {name}", "bytes": "byte[] {name}",
    "room for text": "[In, Out] byte[] {name}", "value": "{type} {name}", "place": "ref {type} {name}",
    "input array": "{type}[] {name}", "array": "[In, Out] {type}[] {name}",
    "input struct": "[In] {type} {name}", "struct": "[In, Out] {type} {name}",
}
CSHARP_MEMBERS = CSHARP_ROLES | {
    "text": "[MarshalAs(UnmanagedType.LPUTF8Str)] public string {name};", "address": "public IntPtr {name};",
    "value": "public {type} {name};",
}


def csharp(header):
    for name, value in header.constants:
        yield f"    public const {'long' if is_long(value) else 'int'} {name} = {value};\n"
    for name, members in header.structs:
        for kind, member in filter(is_callback, members):
            words = spelled(kind, header.handles, CSHARP_TYPES, CSHARP_ROLES)
            yield "\n    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]\n"
            yield wrapped(f"public delegate int {name}_{member}({', '.join(words)});")
        sized = knows_its_size(members)
        yield f"\n    [StructLayout(LayoutKind.Sequential)]\n    public {'class' if sized else 'struct'} {name} {{\n"
        for member in members[sized:]:
            if sized and member is members[1]:
                yield f"        public long size = Marshal.SizeOf(typeof({name}));\n"
            yield (f"        public {name}_{member[1]} {member[1]};\n" if is_callback(member) else
                   f"        {spelled([member], header.handles, CSHARP_TYPES, CSHARP_MEMBERS)[0]}\n")
        yield "    }\n"
    for name, parameters in header.functions:
        words = spelled(parameters, header.handles, CSHARP_TYPES, CSHARP_ROLES)
        yield "\n    [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]\n"
        yield wrapped(f"public static extern int {name}({', '.join(words)});")


# ---- Java

JAVA_TYPES = {"int32_t": "int", "int64_t": "long", "uint16_t": "short", "uint64_t": "long"}
JAVA_PLACES = {"int": "IntByReference", "long": "LongByReference", "double": "DoubleByReference"}
JAVA_ROLES = {
    "new handle": "PointerByReference {name}", "handle": "Pointer {name}", "address": "Pointer {name}",
    "text": "String {name}", "bytes": "byte[] {name}", "room for text": "byte[] {name}", "value": "{type} {name}",
    "place": "{type} place {name}", "input array": "{type}[] {name}", "array": "{type}[] {name}",
    "input struct": "{type} {name}", "struct": "{type} {name}",
}


def java_words(declared, handles):
    for word in spelled(declared, handles, JAVA_TYPES, JAVA_ROLES):
        yield re.sub(r"^(\w+) place", lambda match: JAVA_PLACES[match[1]], word)


def java(header):
    for name, value in header.constants:
        yield f"    {'long' if is_long(value) else 'int'} {name} = {value}{'L' if is_long(value) else ''};\n"
    for name, members in header.structs:
        for kind, member in filter(is_callback, members):
            yield f"\n    interface {name}_{member} extends Callback {{\n"
            yield f"        int call({', '.join(java_words(kind, header.handles))});\n    }}\n"
        sized = knows_its_size(members)
        names = ", ".join(f'"{member}"' for _, member in members)
        yield "\n" + wrapped(f"@Structure.FieldOrder({{{names}}})")
        yield f"    class {name} extends {'Sized' if sized else 'Structure'} {{\n"
        for member in members[sized:]:
            word, = [f"{name}_{member[1]} {member[1]}"] if is_callback(member) else java_words([member], header.handles)
            yield f"        public {word};\n"
        yield "    }\n"
    yield "\n"
    for name, parameters in header.functions:
        yield wrapped(f"int {name}({', '.join(java_words(parameters, header.handles))});")


# ---- Python

PYTHON_TYPES = {name: f"c_{name.removesuffix('_t')}" for name in SCALARS}
PYTHON_ROLES = {
    "new handle": "POINTER(c_void_p)", "handle": "c_void_p", "address": "c_void_p", "text": "c_char_p",
    "bytes": "c_char_p", "room for text": "c_char_p", "value": "{type}", "input array": "_array({type})",
} | dict.fromkeys(("place", "array", "input struct", "struct"), "POINTER({type})")


def python(header):
    for name, value in header.constants:
        yield f"{name} = {value}\n"
    for name, members in header.structs:
        fields = []
        for member in members:
            words = spelled(member[0] if is_callback(member) else [member], header.handles, PYTHON_TYPES, PYTHON_ROLES)
            kind = f"CFUNCTYPE(c_int, {', '.join(words)})" if is_callback(member) else words[0]
            fields.append(f'("{member[1]}", {kind})')
        yield f"\n\nclass {name}({'Sized' if knows_its_size(members) else 'Structure'}):\n"
        yield wrapped(f"_fields_ = [{', '.join(fields)}]")
    yield "\n\n"
    for name, parameters in header.functions:
        words = spelled(parameters, header.handles, PYTHON_TYPES, PYTHON_ROLES)
        yield wrapped(f'{name} = _declare("{name}", {", ".join(words)})', 0)


WRITERS = {"docs/labview.md": labview, "capi/bindings/VxFileIO.cs": csharp, "capi/bindings/VxFileIO.java": java,
           "capi/bindings/vxfileio_c.py": python}


def main():
    root = pathlib.Path(sys.argv[-1])
    header = read_header((root / "capi/vxfileio.h").read_text(encoding="utf-8"))
    differs = False
    for name, writer in WRITERS.items():
        text = (root / name).read_text(encoding="utf-8")
        before, between = re.fullmatch(r"(.*<declarations>[^\n]*\n)(.*)", text, flags=re.S).groups()
        after = re.search(r"^ *\S* </declarations>.*", between, flags=re.S | re.M)[0]
        wanted = before + "".join(writer(header)) + after
        if sys.argv[1] == "--update":
            (root / name).write_text(wanted, encoding="utf-8")
        elif text != wanted:
            differs = True
            sys.stdout.writelines(difflib.unified_diff(text.splitlines(True), wanted.splitlines(True), name, "header"))
    sys.exit(differs)


if __name__ == "__main__":
    main()
