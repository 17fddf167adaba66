#!/usr/bin/python3
"""Reads workbooks with other programs, and compares every cell with what was written.

    check_workbooks.py READER FOLDER        READER: xlrd, ssconvert, soffice, sheetjs

Each NAME.xls in the folder has a NAME.txt next to it: one line per cell with sheet, row, column, type and value,
separated by tabs. A double with a short form is expected with the precision of that form; the rule is implemented
below. Prints a line for each workbook that differs, and exits with 1 if there is any.
"""

import gzip
import json
import math
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

# ---- Expected cells --------------------------------------------------------------------------------------------------


def truncated(value):
    """Cuts off the decimals. Returns the minimum for numbers that don't fit into 32 bits."""
    if math.isnan(value) or not -2147483649 < value < 2147483648:
        return -2147483648
    return int(value)


def wrapped(number):
    return (number + 2147483648) % 4294967296 - 2147483648


def kept(value):
    """Returns a double as the workbook stores it: with 30 bits if it appears to have at most two decimals."""
    if wrapped(truncated(value * 100) * 100) != truncated(value * 10000):
        return value
    has_decimals = wrapped(truncated(value) * 100) != truncated(value * 100)
    bits = struct.unpack("<Q", struct.pack("<d", value * 100 if has_decimals else value))[0]
    number = struct.unpack("<d", struct.pack("<Q", bits & ~0x3FFFFFFFF))[0]
    return number / 100 if has_decimals else number


def thirty_bits_of(text):
    return float((int(text) + 2**29) % 2**30 - 2**29)


def text_of(digits):
    digits = re.sub(r"(....)\*([0-9]+),", lambda run: run[1] * int(run[2]), digits)
    return b"".join(int(digits[i:i + 4], 16).to_bytes(2, "little") for i in range(0, len(digits), 4)).decode("utf-16-le")


def expected_cells(path):
    convert = {"double": lambda text: kept(float(text)), "integer": thirty_bits_of, "text": text_of}
    cells = {}
    for line in path.read_text("latin-1").splitlines():
        sheet, row, column, kind, value = line.split("\t")
        if value != "-":  # an empty text leaves its cell empty
            cells[sheet, int(row), int(column)] = convert[kind](value)
    return cells


# ---- Readers ---------------------------------------------------------------------------------------------------------


def read_xlrd(path):
    import xlrd
    book = xlrd.open_workbook(str(path))
    return {(sheet.name, row, column): sheet.cell_value(row, column) for sheet in book.sheets()
            for row in range(sheet.nrows) for column in range(sheet.row_len(row))
            if sheet.cell_type(row, column) != xlrd.XL_CELL_EMPTY}


def converted(command, path, suffix):
    """Returns the file that a program converts the workbook to."""
    with tempfile.TemporaryDirectory() as folder:
        made = pathlib.Path(folder) / (path.stem + suffix)
        subprocess.run([part.format(path=path, folder=folder, made=made) for part in command], check=True,
                       capture_output=True)
        return made.read_bytes()


def read_ssconvert(path):
    data = converted(["ssconvert", "-T", "Gnumeric_XmlIO:sax", "{path}", "{made}"], path, ".gnumeric")
    root = ElementTree.fromstring(gzip.decompress(data))
    gnm = "{http://www.gnumeric.org/v10.dtd}"
    cells = {}
    for sheet in root.iter(gnm + "Sheet"):
        for cell in sheet.iter(gnm + "Cell"):
            is_text = cell.get("ValueType") == "60"
            cells[sheet.findtext(gnm + "Name"), int(cell.get("Row")), int(cell.get("Col"))] = (
                cell.text or "" if is_text else float(cell.text))
    return cells


def read_soffice(path):
    data = converted(["soffice", "-env:UserInstallation=file://{folder}/profile", "--headless", "--convert-to", "fods",
                      "--outdir", "{folder}", "{path}"], path, ".fods")
    table = "{urn:oasis:names:tc:opendocument:xmlns:table:1.0}"
    office = "{urn:oasis:names:tc:opendocument:xmlns:office:1.0}"
    cells = {}
    for sheet in ElementTree.fromstring(data).iter(table + "table"):
        row = 0
        for line in sheet.iter(table + "table-row"):
            column = 0
            for cell in line:
                kind = cell.get(office + "value-type")
                for _ in range(int(cell.get(table + "number-columns-repeated", 1)) if kind else 1):
                    if kind == "float":
                        cells[sheet.get(table + "name"), row, column] = float(cell.get(office + "value"))
                    elif kind == "string":
                        cells[sheet.get(table + "name"), row, column] = odf_text(cell)
                    column += 1
                if not kind:
                    column += int(cell.get(table + "number-columns-repeated", 1)) - 1
            row += int(line.get(table + "number-rows-repeated", 1))
    return cells


def odf_text(element):
    """Returns the text of an element; runs of blanks are child elements."""
    text_ns = "{urn:oasis:names:tc:opendocument:xmlns:text:1.0}"
    text = element.text or "" if element.tag.startswith(text_ns) else ""
    for child in element:
        if child.tag == text_ns + "s":
            text += " " * int(child.get(text_ns + "c", 1))
        else:
            text += odf_text(child)
        text += child.tail or "" if element.tag.startswith(text_ns) else ""
    return text


SHEETJS = """
const book = require('xlsx').readFile(process.argv[1], {cellText: false});
const cells = [];
for (const name of book.SheetNames)
    for (const [address, cell] of Object.entries(book.Sheets[name]))
        if (address[0] !== '!') {
            const place = require('xlsx').utils.decode_cell(address);
            cells.push([name, place.r, place.c, cell.v]);
        }
process.stdout.write(JSON.stringify(cells));
"""


def read_sheetjs(path):
    """Must run in a folder whose node_modules has the package."""
    output = subprocess.run(["node", "--max-old-space-size=4096", "-e", SHEETJS, str(path)], check=True,
                            capture_output=True).stdout
    return {(name, row, column): value for name, row, column, value in json.loads(output)}


def windows_1252(text):
    """Returns a text of one-byte characters as Gnumeric reads it: 0x80 to 0x9F as Windows-1252, where five bytes don't
    exist and end the text; 0x7F is dropped."""
    if max(map(ord, text), default=0) > 0xFF:
        return text
    return re.split("[\x81\x8d\x8f\x90\x9d]", text)[0].replace("\x7f", "").encode("latin-1").decode("windows-1252")


READERS = {"xlrd": read_xlrd, "ssconvert": read_ssconvert, "soffice": read_soffice, "sheetjs": read_sheetjs}

# ---- Comparison ------------------------------------------------------------------------------------------------------


def same(reader, expected, found):
    """Compares numbers to 14 digits, since some programs print them as text with 15 to 17 digits."""
    if reader == "ssconvert" and isinstance(expected, str):
        expected = windows_1252(expected)
    if isinstance(expected, str) or isinstance(found, str):
        return expected == found
    return expected == found or math.isclose(expected, found, rel_tol=1e-14)


def differences(reader, expected, found):
    for place in sorted(expected.keys() | found.keys()):
        if place not in found:
            yield f"{place} should contain {expected[place]!r}"
        elif place not in expected:
            yield f"{place} contains {found[place]!r} but should be empty"
        elif not same(reader, expected[place], found[place]):
            yield f"{place} contains {found[place]!r} instead of {expected[place]!r}"


def check(reader, folder):
    bad = 0
    paths = sorted(folder.glob("*.xls"))
    cells = 0
    for path in paths:
        expected = expected_cells(path.with_suffix(".txt"))
        cells += len(expected)
        found = list(differences(reader, expected, READERS[reader](path)))
        if found:
            bad += 1
            print(f"{path.name}: {len(found)} cells differ; first: {found[0][:200]}")
    print(f"{reader}: {len(paths) - bad} of {len(paths)} workbooks with {cells} cells read as they were written")
    return bad or not paths


if __name__ == "__main__":
    sys.exit(bool(check(sys.argv[1], pathlib.Path(sys.argv[2]))))
