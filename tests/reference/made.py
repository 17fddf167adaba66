"""Shared by the scripts that check reference files."""

import pathlib
import re
import sys
import tempfile


def against_committed(make, folder, patterns):
    """Makes the files again and compares them with those committed in the folder; yields the differences."""
    with tempfile.TemporaryDirectory() as scratch:
        made = pathlib.Path(scratch)
        make(made)
        names = {path.name for path in made.iterdir()}
        committed = {path.name for pattern in patterns for path in folder.glob(pattern)}
        for name in sorted(names ^ committed):
            yield f"{name} is {'not committed' if name in names else 'not made by the script'}"
        for name in sorted(names & committed):
            if (made / name).read_bytes() != (folder / name).read_bytes():
                yield f"{name} differs from what the script makes"


def dumps_against(page, data):
    """Yields the hexadecimal dumps of a page that differ from the bytes of a file."""
    dumps = re.findall(r"^ +([0-9]+)  ((?:[0-9a-f]{2} )+) +\|", page.read_text("utf-8"), re.MULTILINE)
    if not dumps:
        yield f"{page.name} has no dump"
    for offset, told in dumps:
        told = bytes.fromhex(told)
        if data[int(offset):int(offset) + len(told)] != told:
            yield f"the dump in {page.name} is wrong at {offset}"


def run(checks, success):
    """Prints what the checks yield, or the text of success. Exits with 1 if they yield anything."""
    disagreements = [line for check in checks for line in check()]
    print("\n".join(disagreements) or success)
    sys.exit(bool(disagreements))
