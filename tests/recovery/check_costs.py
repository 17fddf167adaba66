#!/usr/bin/python3
"""Checks the table of costs in docs/recovery.md against recovery/Costs.h. Prints each difference."""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def pairs(path, pattern):
    return dict(re.findall(pattern, (ROOT / path).read_text("utf-8"), re.MULTILINE))


page = pairs("docs/recovery.md", r"^\|[^|]*\| `(k\w+)` \| (-?\d+)")
code = pairs("recovery/Costs.h", r"^inline constexpr int (k\w+) = (-?\d+);")
for name in sorted(page.keys() | code.keys()):
    if page.get(name) != code.get(name):
        print(f"{name} is {page.get(name, 'missing')} on the page and {code.get(name, 'missing')} in the code")
sys.exit(not code or page != code)
