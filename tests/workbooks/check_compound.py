#!/usr/bin/python3
"""Reads the compound files in a folder with olefile. Each must have one stream and cause no complaint.

    check_compound.py FOLDER
"""

import pathlib
import sys

import olefile


def complaints(path):
    """Yields what olefile finds wrong with a file."""
    with olefile.OleFileIO(str(path), raise_defects=olefile.DEFECT_INCORRECT) as file:
        if file.listdir() != [["Workbook"]]:
            yield f"{path.name} contains {file.listdir()}"
        if len(file.openstream("Workbook").read()) != file.get_size("Workbook"):
            yield f"{path.name} has a stream whose size differs from its entry"
        for _, text in file.parsing_issues:
            yield f"{path.name}: {text}"


def check(folder):
    paths = sorted(folder.glob("*.xls"))
    found = [text for path in paths for text in complaints(path)]
    for text in found:
        print(text)
    print(f"olefile: {len(paths)} compound files, {len(found)} complaints")
    return bool(found) or not paths


if __name__ == "__main__":
    sys.exit(check(pathlib.Path(sys.argv[1])))
