#!/usr/bin/python3
"""Checks that the reference files, their text twins, the reader in Python and the page on the format agree.

Prints one line for each disagreement and ends with 1 if there is any.
"""

import pathlib
import re

import made
import make_reference
import read_vxd

FOLDER = pathlib.Path(__file__).resolve().parent
PAGE = FOLDER.parent.parent / "docs" / "raw-data-file.md"


def reader_against_twins():
    """Every file reads as its twin says."""
    for path in sorted(FOLDER.glob("*.vxd")):
        read = "".join(line + "\n" for line in read_vxd.twin_lines(path))
        if read != path.with_suffix(".txt").read_text("ascii"):
            yield f"{path.name} doesn't read as its twin says:\n{read}"


def committed_against_made():
    """Making the files again produces the same files and bytes."""
    return made.against_committed(make_reference.make, FOLDER, ("*.vxd", "*.txt"))


def rows_of(section):
    """Returns the rows of the tables in a section of the page, as lists of cells without backquotes."""
    text = PAGE.read_text("utf-8").split(f"\n## {section}", 1)[1].split("\n## ", 1)[0]
    return [[field.strip().strip("`") for field in line.strip("|").split("|")]
            for line in text.splitlines() if re.match(r"\| [0-9]+ \|", line)]


def example_against_file():
    """The page's example and dumps match the bytes of small_example.vxd."""
    data = (FOLDER / "small_example.vxd").read_bytes()
    end = 0
    for offset, width, text in rows_of("A file, byte by byte"):
        offset, width = int(offset), int(width)
        if text.startswith("samples "):
            told = b"".join(int(sample).to_bytes(2, "little") for sample in re.findall("[0-9]+", text))
        else:
            told = text.encode("ascii").ljust(width - 2, b"\0") + b"\r\n"
        if offset != end or data[offset:offset + width] != told:
            yield f"{PAGE.name} and small_example.vxd differ at {offset}"
        end = offset + width
    if end != len(data):
        yield f"the example in {PAGE.name} ends at {end}"
    yield from made.dumps_against(PAGE, data)


CHECKS = (reader_against_twins, committed_against_made, example_against_file)

if __name__ == "__main__":
    made.run(CHECKS, f"{len(list(FOLDER.glob('*.vxd')))} reference files agree")
