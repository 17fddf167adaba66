#!/usr/bin/python3
"""Checks docs/raw-data-file.md, read_vxd.py and the programs that choose cells against the layouts, which print_layouts
prints.

    check_layouts.py PRINT_LAYOUTS

The page has the tables of the newest version, and a paragraph about the others; read_vxd.py has the tables of all. Each
version has a reference file. `vxfile info` and the C interface use each cell that they don't leave out on purpose.
Prints one line for each disagreement and ends with 1 if there is any.
"""

import contextlib
import pathlib
import re
import subprocess
import sys

import read_vxd

ROOT = pathlib.Path(__file__).resolve().parents[2]
PAGE = ROOT / "docs" / "raw-data-file.md"
WRITER = ROOT / "vxfileio" / "frame" / "IRawDataWriter.h"
CELLS_OF_READER = {
    "File": lambda version: read_vxd.FILE_CELLS,
    "Recording": read_vxd.recording_cells,
    "Segment": lambda version: read_vxd.SEGMENT_CELLS,
}
# The sources that choose which cells they use, and the cells that each leaves out on purpose.
LEFT_OUT = {
    "tools/vxfile/raw/RawInfo.cpp": {"CheckSum", "Reserved"},
    "capi/RawReading.cpp": {"CheckSum", "Reserved"},
    "capi/RawWriting.cpp": {"CheckSum", "Reserved", "PreQC", "CompoundTest", "PostQC"},
}
# Counts and lists, which the channels replace.
OF_CHANNELS = {"NumberOfWells", "NumberOfAuxCh", "list of int32", "list of doubles"}


def table_of_page(header):
    """Returns the size in the heading of a header, and the rows of its table: offset, width, key and type."""
    text = PAGE.read_text("utf-8")
    heading = re.search(rf"^## {header} header: (\d+) bytes.*$", text, re.MULTILINE)
    section = re.split(r"\n## ", text[heading.end():], maxsplit=1)[0]
    rows = re.findall(r"^\| (\d+) \| (\d+) \| (?:`(\w+)` )?\| ([^|]+) \|", section, re.MULTILINE)
    return int(heading[1]), [(int(offset), int(width), key, kind) for offset, width, key, kind in rows]


def table_of_reader(header, version):
    offset, rows = 0, []
    for key, width, kind in CELLS_OF_READER[header](version):
        rows.append((offset, width, "" if kind == "bare text" else key, kind.removeprefix("bare ")))
        offset += width
    return rows


def differences(where, actual, expected):
    for row in expected:
        if row not in actual:
            yield f"{where} lacks {row}"
    for row in actual:
        if row not in expected:
            yield f"{where} has {row}, which isn't in the layout"
    if not set(actual) ^ set(expected) and actual != expected:
        yield f"{where} isn't in the order of the file"


def size_of(table):
    return table[-1][0] + table[-1][1]


def missing_in_rule(version, header, older, newest):
    """The paragraph about the versions names each cell that an older one lacks, and the older size."""
    rule = re.search(r"\*\*The version rule\.\*\*.*?\n\n", PAGE.read_text("utf-8"), re.DOTALL)[0]
    keys = {key for _, _, key, _ in newest} - {key for _, _, key, _ in older}
    for word in [f"`{key}`" for key in sorted(keys)] + [f"{size_of(older)} bytes"] * (older != newest):
        if word not in " ".join(rule.split()):
            yield f"the version rule in {PAGE.name} lacks {word}, of the {header.lower()} header of version {version}"


def not_used(path, cells):
    text = (ROOT / path).read_text("utf-8")
    for _, _, key, kind in cells:
        if kind == "position" or {key, kind} & OF_CHANNELS or key in LEFT_OUT[path]:
            continue
        if not re.search(rf"\b{key or 'HeaderID'}\b", text):
            yield f"{path} doesn't use the cell {key}; use it, or add it to LEFT_OUT in check_layouts.py"


def file_version(path):
    with contextlib.suppress(read_vxd.RawDataError), read_vxd.RawDataFile(path) as file:
        return file.header["FileVersion"]
    return None


def disagreements(tables):
    newest = max(version for version, _ in tables)
    for (version, header), expected in tables.items():
        yield from differences(f"{header} header of version {version} in read_vxd.py",
                               table_of_reader(header, version), expected)
        if version == newest:
            size, rows = table_of_page(header)
            yield from differences(f"{header} header in {PAGE.name}", rows, expected)
            if size != size_of(expected):
                yield f"the heading of the {header} header in {PAGE.name} states {size} bytes"
            drawn = set(re.findall(rf"│ {header.lower()} header +(\d+) │", PAGE.read_text("utf-8")))
            if drawn != {str(size_of(expected))}:
                yield f"the drawing in {PAGE.name} has a {header.lower()} header of {' or '.join(sorted(drawn))} bytes"
            stated = f"{size_of(expected)} bytes in version {version}"
            if header != "Segment" and stated not in " ".join(WRITER.read_text("utf-8").replace("///", "").split()):
                yield f"{WRITER.name} doesn't say '{stated}' of the {header.lower()} header"
        else:
            yield from missing_in_rule(version, header, expected, tables[newest, header])
    for path in LEFT_OUT:
        yield from not_used(path, tables[newest, "File"] + tables[newest, "Recording"])
    with_file = {file_version(path) for path in ROOT.glob("tests/reference/*.vxd")}
    for version in sorted({version for version, _ in tables} - with_file):
        yield f"no reference file has version {version}; make_reference.py makes them"


if __name__ == "__main__":
    layouts = {}
    for line in subprocess.run(sys.argv[1:2], check=True, capture_output=True, text=True).stdout.splitlines():
        number, name, begin, size_of_cell, label, value = line.split("\t")
        layouts.setdefault((int(number), name), []).append((int(begin), int(size_of_cell), label, value))
    lines = list(disagreements(layouts))
    print("\n".join(lines) or f"{len(layouts)} tables agree")
    sys.exit(bool(lines) or not layouts)
