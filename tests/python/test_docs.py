"""Runs every block of docs/python.md, and compares its output with the page.

As a command, `test_docs.py FOLDER` runs the page in that folder, and updates the output in the page and the pictures
next to it.
"""

import contextlib
import io
import os
import pathlib
import re
import shutil
import sys

PAGE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "python.md"
BLOCK = re.compile(r"```python\n(.*?)```\n(?:\n```text\n(.*?)```\n)?", re.DOTALL)
PICTURES = ("trace", "plate", "heat_map", "dose_response")


def run_page(page):
    """Runs the blocks one after the other. Yields the match of each and what it printed."""
    names = {"__name__": "page"}
    for block in BLOCK.finditer(page):
        printed = io.StringIO()
        with contextlib.redirect_stdout(printed):
            exec(compile(block[1], f"block at character {block.start()}", "exec"), names)
        yield block, "\n".join(line.rstrip() for line in printed.getvalue().splitlines() + [""])


def test_every_block_runs_and_prints_what_the_page_says(plate, monkeypatch):
    monkeypatch.chdir(plate)
    for block, printed in run_page(PAGE.read_text("utf-8")):
        assert printed == (block[2] or ""), block[1]
    for picture in PICTURES:
        assert (plate / f"{picture}.png").read_bytes().startswith(b"\x89PNG")


def test_every_public_name_is_documented():
    import vxfileio as vx

    for name, thing in vars(vx).items():
        if not name.startswith("_") and callable(thing):
            assert (thing.__doc__ or "").strip(), name
    for record in vx._vxfileio._records:
        for name in record._fields:
            assert ": " in (getattr(record, name).__doc__ or ""), f"{record.__name__}.{name}"


if __name__ == "__main__":
    os.chdir(sys.argv[1])
    text = PAGE.read_text("utf-8")
    for found, output in list(run_page(text)):
        new = f"```python\n{found[1]}```\n" + (f"\n```text\n{output}```\n" if output else "")
        text = text.replace(found[0], new)
    PAGE.write_text(text, "utf-8")
    for name in PICTURES:
        shutil.copy(f"{name}.png", PAGE.parent / f"python-{name}.png")
