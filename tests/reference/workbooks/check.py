#!/usr/bin/python3
"""Checks that the reference workbooks, their text twins, xlrd and the page on the format agree.

Prints one line for each disagreement and ends with 1 if there is any.
"""

import itertools
import pathlib
import re
import sys

import make_workbooks

FOLDER = pathlib.Path(__file__).resolve().parent
ROOT = FOLDER.parent.parent.parent
PAGE_FILE = ROOT / "docs" / "workbook.md"
PAGE = PAGE_FILE.read_text("utf-8")
sys.path += [str(ROOT / "tests" / "workbooks"), str(ROOT / "tests" / "reference")]
import check_workbooks  # noqa: E402
import made  # noqa: E402

NAMES = sorted(make_workbooks.WORKBOOKS)


def number(data):
    return int.from_bytes(data, "little")


def records(stream):
    """Yields position, code and body of each record."""
    position = 0
    while position < len(stream):
        end = position + 4 + number(stream[position + 2:position + 4])
        yield position, number(stream[position:position + 2]), stream[position + 4:end]
        position = end


ALL_RECORDS = [entry for sheets in make_workbooks.WORKBOOKS.values()
               for entry in records(make_workbooks.stream_of(sheets))]


def committed_against_made():
    """Making the files again produces the same files and bytes."""
    return made.against_committed(make_workbooks.make, FOLDER, ("*.xls", "*.txt"))


def xlrd_against_twins():
    """Every workbook reads as its twin says."""
    for name in NAMES:
        expected = check_workbooks.expected_cells(FOLDER / f"{name}.txt")
        found = check_workbooks.read_xlrd(FOLDER / f"{name}.xls")
        for text in check_workbooks.differences("xlrd", expected, found):
            yield f"{name}.xls: {text}"


# ---- The page --------------------------------------------------------------------------------------------------------


def section(heading):
    """Returns the text from the heading with this beginning to the next heading."""
    return re.split(r"^##", PAGE.split(f"\n{heading}", 1)[1], maxsplit=1, flags=re.MULTILINE)[0]


def rows_of(heading):
    """Returns the rows of the tables in a section, as lists of cells."""
    return [[cell.strip() for cell in line.strip().strip("|").split("|")] for line in section(heading).splitlines()
            if re.match(r"\| [0-9.]+ \|", line)]


def fields_against(what, rows, bodies):
    """The fields of a table are contiguous, and where it lists numbers, each body contains one of them."""
    end = 0
    for offset, width, field, value in rows:
        if int(offset) != end:
            yield f"{field} of {what} isn't at the end of the previous field"
        if not width.isdigit():
            continue
        end = int(offset) + int(width)
        told = [int(text, 0) for text in re.findall(r"\b(?:0x[0-9A-F]+|[0-9]+)\b", value)]
        if value[:1].isdigit() and not value.endswith(" or more") and not all(number(body[int(offset):end]) in told for body in bodies):
            yield f"{field} of {what} differs from the page"


def records_against_page():
    """Code, size and fixed values of all records match the page, and the page lists every record."""
    headings = re.findall(r"^### (\w+): (0x[0-9A-F]{4}), (.*)$", PAGE, re.MULTILINE)
    told = {int(code, 16): name for name, code, _ in headings}
    if told.keys() != {code for _, code, _ in ALL_RECORDS}:
        yield "the records on the page differ from those in the files"
    for name, code, size in headings:
        bodies = [body for _, of_body, body in ALL_RECORDS if of_body == int(code, 16)]
        if exact := re.fullmatch("([0-9]+) bytes", size):
            if {len(body) for body in bodies} != {int(exact[1])}:
                yield f"the size of {name} differs from the page"
        yield from fields_against(name, rows_of(f"### {name}: "), bodies)


def file_against_page():
    """Header and directory match the page."""
    for name in NAMES:
        data = (FOLDER / f"{name}.xls").read_bytes()
        yield from fields_against(f"the header of {name}.xls", rows_of("### Header of the file"), [data[:512]])
        yield from fields_against(f"the directory of {name}.xls", rows_of("### Directory entry"),
                                  [data[1024:1152], data[1152:1280]])


def walk_against_stream():
    """The page's walk through small.xls lists every record."""
    codes = {name: int(code, 16) for name, code in re.findall(r"^### (\w+): (0x[0-9A-F]{4})", PAGE, re.MULTILINE)}
    told = [(int(offset), codes[name], int(size)) for offset, name, size, _ in rows_of("## A stream, record by record")]
    repeated = {codes[name] for name in ("Font", "XF", "Style")}
    stream = make_workbooks.stream_of(make_workbooks.SMALL)
    found = []
    for code, group in itertools.groupby(records(stream), lambda entry: entry[1]):
        group = list(group)
        found += [(position, code, len(body)) for position, _, body in (group[:1] if code in repeated else group)]
    if told != found:
        yield "the page's walk through small.xls differs from its stream"
    if f"It has {len(stream)} bytes." not in PAGE:
        yield "the size of the stream in small.xls differs from the page"


def dumps_against_file():
    return made.dumps_against(PAGE_FILE, (FOLDER / "small.xls").read_bytes())


def precision_against_page():
    """The values on the page are stored with the stated precision."""
    rows = rows_of("## What precision a value keeps")
    if not rows:
        yield "the page has no table of what precision a value keeps"
    for value, form, reads_as in rows:
        is_short = make_workbooks.is_short(float(value))
        if is_short != (form == "short") or check_workbooks.kept(float(value)) != float(reads_as):
            yield f"{value} isn't stored as the page says"


CHECKS = (committed_against_made, xlrd_against_twins, records_against_page, file_against_page, walk_against_stream,
          dumps_against_file, precision_against_page)

if __name__ == "__main__":
    made.run(CHECKS, f"{len(NAMES)} reference workbooks agree")
