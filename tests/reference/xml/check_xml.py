#!/usr/bin/python3
"""Checks that the reference files of settings and results, their text twins, the reader in Python and the examples of the
two pages on the formats agree.

Prints one line for each disagreement and ends with 1 if there is any.
"""

import pathlib
import re
import sys

import make_xml
from read_xml import PAGES

FOLDER = pathlib.Path(__file__).resolve().parent
sys.path.append(str(FOLDER.parent))
import made  # noqa: E402



def files_against_made():
    """Making the files and their twins again, which reads each file, produces the same bytes."""
    return made.against_committed(make_xml.make, FOLDER, ("*.vx[sr]", "*.txt"))


def same_content():
    """Files with the same content in another form have the same twin."""
    for name in ("settings_indented", "settings_shuffled", "settings_sections", "results_indented", "results_shuffled",
                 "results_sections"):
        if (FOLDER / f"{name}.txt").read_bytes() != (FOLDER / f"{name.split('_')[0]}.txt").read_bytes():
            yield f"the content of {name} differs from that of {name.split('_')[0]}"


def examples_against_files():
    """The pages' examples, with their lines joined, are in the reference files, byte for byte."""
    for page, name in (("settings-file.md", "settings.vxs"), ("results-file.md", "results.vxr")):
        document = (FOLDER / name).read_text("ascii")
        blocks = re.findall(r"(?:^    <.*\n)+", (PAGES / page).read_text("utf-8"), re.MULTILINE)
        examples = [example for block in blocks if "..." not in (example := block.replace("\n    ", "").strip())]
        if not examples:
            yield f"{page} has no example"
        for example in examples:
            if example not in document:
                yield f"an example in {page} isn't in {name}: {example[:80]}"


CHECKS = (files_against_made, same_content, examples_against_files)

if __name__ == "__main__":
    made.run(CHECKS, f"{len(make_xml.DOCUMENTS)} XML reference files agree")
