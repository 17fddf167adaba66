#!/usr/bin/env python3
"""Writes the parts of c_test that follow from the list of functions and the header of the C interface.

    make_calls.py LIST HEADER FOLDER

FOLDER/counted_calls.h counts the calls of every listed function, and looks at what the initialiser of each struct
makes. FOLDER/wrong_arguments.h calls every listed function with right arguments but for one, which is wrong in each way
that its type and name allow. The list and the header must name the same functions.
"""
import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "capi/tools"))
from c_header import SCALARS, read_header  # noqa: E402


def arguments_of(parameter, following, handles):
    """Returns the right argument, and the wrong ones with the code that each must have; None is any failure."""
    kind, name = parameter
    base = kind.replace("const", "").rstrip("*")
    stars = kind.count("*")
    is_array = following is not None and following[1] in ("count", "size", "length", "well_count")
    if stars == 2 or kind.startswith("vx_") and stars == 0:
        return ("&made", [("NULL", "VX_ERROR_ARGUMENT")]) if stars == 2 else ("NULL", [])
    if base == "void":
        return ("good_vx_raw", [(value, "VX_ERROR_HANDLE") for value in ("NULL", "STRAY", "closed")]) if name == "handle" \
            else ("NULL", [])
    if base in handles:
        other = "good_vx_writer" if base != "vx_writer" else "good_vx_raw"
        wrong = [("NULL", "HANDLE"), ("STRAY", "HANDLE"), ("closed", "HANDLE"), (other, "KIND"), (f"failed_{base}", "STATE")]
        return f"good_{base}", [(f"({base}*)(void*){value}", f"VX_ERROR_{code}") for value, code in wrong]
    if base == "char" and kind.startswith("const") and not is_array:
        return "texts", [("NULL", None)]
    if stars == 1 and is_array:
        is_input = kind.startswith("const")
        return f"({base}*)room", [("NULL", None)] if is_input else []
    if stars == 1 and name in ("count", "size") and following is None:
        no_room = [("&none", None)] if name == "size" else []  # an array may be empty, but a text has a NUL
        return "&eight", [("NULL", None), ("&minus_one", None), *no_room]
    if stars == 1 and base in SCALARS:
        return f"({base}*)room", [("NULL", None)]
    if stars == 1:
        good = f"({base}*)struct_of(sizeof({base}))"
        wrong = [(f"({base}*)struct_of({size})", None) for size in ("0", "-1", "7", "4097")]
        if kind.startswith("const"):
            wrong.append((f"({base}*)struct_with_tail(sizeof({base}))", "VX_ERROR_STRUCT"))
        return good, wrong + ([] if name in ("options", "callbacks") else [("NULL", None)])
    wrong = {"index": ("-1", "INT64_MAX"), "well_count": ("-1", "INT64_MAX"), "count": ("-1", "INT64_MAX"),
             "length": ("-1", "INT64_MAX")}
    if kind == "int32_t":
        wrong |= {name: ("-1", "1000000")} if name in ("mode", "list", "text", "kind", "well", "code", "table") else {}
    if kind == "int64_t" and name in ("number", "row", "column", "part"):
        wrong |= {name: ("-1", "INT64_MAX")}
    return "0" if name in ("index", "number") else "1", [(value, None) for value in wrong.get(name, ())]


def wrong_calls(name, parameters, handles):
    following = [*parameters[1:], None]
    # A single place for a number, such as *count of a function without an array, isn't the count of a buffer.
    arguments = []
    for i, parameter in enumerate(parameters):
        right, wrong = arguments_of(parameter, following[i], handles)
        is_pair = i > 0 and parameters[i - 1][0].count("*") == 1 and not parameters[i - 1][0].startswith(("vx_", "const"))
        if right == "&eight" and not is_pair:
            wrong = wrong[:1]
        arguments.append((right, wrong))
    for i, (_, wrong) in enumerate(arguments):
        for value, code in wrong:
            if name == "vx_close" and value == "NULL":
                continue
            call = ", ".join(value if j == i else right for j, (right, _) in enumerate(arguments))
            if parameters[i][1] in ("count", "length", "well_count") and value == "INT64_MAX":
                code = None
            made = next((p for p in parameters if p[0].count("*") == 2), None)
            is_used = made and (value != "NULL" or parameters[i] is not made)
            declare = f"{made[0][:-1]} made = NULL; " if is_used else ""
            close = " vx_close(made);" if is_used else ""
            yield (f"    {{ {declare}reset(); expect_wrong({name}({call}), {code or 'ANY_FAILURE'}, "
                   f"\"{name}\", \"{parameters[i][1]} is {value}\");{close} }}")


def check_initialisers(structs):
    """Returns a function that looks at what the initialiser of each struct makes."""
    cases = [f"    {{ {name} one = {name.upper()}_INIT; expect_initialised(&one, sizeof one); }}\n"
             for name, members in structs if members[0] == ("int64_t", "size")]
    return f"static void check_initialisers(void) {{\n{''.join(cases)}}}"


def main():
    listed = [line.split()[0] for line in pathlib.Path(sys.argv[1]).read_text().splitlines() if line.startswith("vx_")]
    header = read_header(pathlib.Path(sys.argv[2]).read_text())
    declared = [name for name, _ in header.functions]
    if sorted(listed) != sorted(declared):
        sys.exit(f"the list and the header differ: {sorted(set(listed) ^ set(declared))}")
    folder = pathlib.Path(sys.argv[3])
    folder.mkdir(parents=True, exist_ok=True)
    counted = [f"static const char* const call_names[] = {{{', '.join(chr(34) + name + chr(34) for name in listed)}}};",
               f"static int calls[{len(listed)}];", check_initialisers(header.structs)]
    counted += [f"#define {name}(...) (++calls[{i}], {name}(__VA_ARGS__))" for i, name in enumerate(listed)]
    (folder / "counted_calls.h").write_text("\n".join(counted) + "\n")
    lines = [line for function in header.functions for line in wrong_calls(*function, header.handles)]
    objects = [f"static {handle} *good_{handle}, *failed_{handle};" for handle in sorted(header.handles)]
    body = "\n".join(lines)
    (folder / "wrong_arguments.h").write_text("\n".join(objects) +
                                              f"\nstatic void call_with_wrong_arguments(void) {{\n{body}\n}}\n")


if __name__ == "__main__":
    main()
