#!/usr/bin/env python3
"""Keeps the table of calls in docs/labview.md equal to the header of the C interface.

    labview_page.py PAGE HEADER             prints the rows that differ, and ends with 1 if there are any
    labview_page.py --update PAGE HEADER    rewrites the table
"""
import difflib
import pathlib
import sys

from make_calls import SCALARS, read_functions

BEGIN, END = "<!-- calls -->\n", "<!-- end -->\n"
NUMBERS = {"int32_t": "I32", "int64_t": "I64", "uint16_t": "U16", "double": "DBL"}


def parameter_of(kind, following, handles):
    """Returns how the node passes a parameter, in the words of the page."""
    base = kind.replace("const", "").rstrip("*")
    stars = kind.count("*")
    if stars == 2:
        return "new handle"
    if base in ("char", "void"):
        return {"constchar*": "text", "char*": "room for text"}.get(kind, "handle")
    if base not in SCALARS:
        return "handle" if base in handles else "runs" if base == "vx_run" else "cluster"
    if stars == 0:
        return NUMBERS[base]
    is_array = kind.startswith("const") or (following is not None and following[1] == "count")
    return f"{NUMBERS[base]} array" if is_array else f"{NUMBERS[base]} pointer"


def rows_of(header):
    functions, handles = read_functions(header)
    yield "| Call | Parameters |\n"
    yield "|---|---|\n"
    for name, parameters in functions:
        nodes = [f"`{parameter}` {parameter_of(kind, following, handles)}"
                 for (kind, parameter), following in zip(parameters, [*parameters[1:], None])]
        yield f"| `{name}` | {', '.join(nodes)} |\n"


def main():
    page = pathlib.Path(sys.argv[-2])
    text = page.read_text(encoding="utf-8")
    before, rest = text.split(BEGIN)
    after = rest.split(END)[1]
    rows = "\n" + "".join(rows_of(pathlib.Path(sys.argv[-1]).read_text(encoding="utf-8"))) + "\n"
    wanted = before + BEGIN + rows + END + after
    if sys.argv[1] == "--update":
        page.write_text(wanted, encoding="utf-8")
    elif text != wanted:
        sys.stdout.writelines(difflib.unified_diff(text.splitlines(True), wanted.splitlines(True), str(page), "header"))
        sys.exit(1)


if __name__ == "__main__":
    main()
