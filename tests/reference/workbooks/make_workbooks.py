#!/usr/bin/python3
"""Makes the reference workbooks: NAME.xls, byte for byte what the library must write, and its text twin NAME.txt.

A twin has one line per cell: sheet, row, column, type and value, separated by tabs. A text is written as four
hexadecimal digits per character; "006e*300," means 300 times the same one. An empty text is a cell that was asked for but
stays empty. docs/workbook.md describes the format; nothing here comes from the library or from another program that
writes workbooks.

    make_workbooks.py [FOLDER]      default: the folder of this script
"""

import itertools
import pathlib
import struct
import sys

# ---- The workbooks ---------------------------------------------------------------------------------------------------

# The sheets of each workbook, and their cells by row and column. A float, an int and a str make different cell types.
EMPTY = {"Sheet1": {}}

SMALL = {
    "Results": {
        (2, 1): "1\xb5M", (2, 2): 5, (2, 3): -1, (2, 4): 536870911,        # three whole numbers make one record,
        (2, 5): 1.0, (2, 6): 12.34, (2, 7): -99.99, (2, 8): 0.0,           # four doubles another
        (4, 0): "B7", (4, 1): 0.5, (4, 3): 1234.56, (4, 4): 153.2738, (4, 5): 5242.89, (4, 7): -7,
        (70, 0): 12.34005, (70, 1): 214748.0, (70, 2): 214749.0, (70, 3): "1\xb5M", (70, 4): 1e-5, (70, 5): 0.29,
    },
    "\xc4nderung": {(0, 0): "1\xb5M", (0, 1): "\u03bcV", (1, 200): 1e300},
}

# 40 texts of 203 bytes leave 96 bytes in their record: enough to begin the next text but not to finish it.
BIG = {
    "Beats": {
        **{(row, 0): chr(0x3b1 + row % 16) * 99 + chr(0x100 + row) for row in range(40)},
        (40, 0): "\u20ac" * 46 + "|" + "\u4e2d" * 53,
        (41, 0): "behind",
        **{(row, column): row + column / 8 for row in range(0, 100, 3) for column in range(1, 6)},
        **{(row, 7): 1 / (row + 3) for row in range(1, 65, 2)},
    },
    "Second": {(31, 0): 31.5, (32, 0): 32, (33, 255): "behind"},
}

ROWS = {
    "Runs": {
        (2, 1): 1.5, (2, 2): 2.5, (2, 3): 3.25,
        (3, 0): 1.5, (3, 1): 153.2738, (3, 2): 153.2738, (3, 3): 2.5, (3, 5): 2.5,  # there is a gap before the last
        (4, 0): -1, (4, 1): 2, (4, 2): 2.0, (4, 3): 536870912, (4, 4): 3,           # a double, and one bit too many
        **{(5, column): 0 for column in range(256)},
        (6, 0): 0, (6, 254): 0,
    },
    "Blocks": {(2, 3): 153.2738, (2, 1): "text", (3, 0): 1.5, (31, 0): "", (33, 2): 1.5, (34, 4): ""},
    "Nothing": {(64, 1): ""},
    "Late": {(63, 1): "x", (64, 1): ""},
    "Corners": {(65534, 7): 1, (65535, 255): 2, (65535, 0): 3},
    "Numbers": {(row, 0): value for row, value in enumerate([
        0.0, -1.0, 100.0, -12.5, 12.5, 1234.56, 12.34005, 1.1401, 5242.88, 5242.89, -5242.89, -214748.0, 214749.0,
        -214749.0, 5368709.12, -5368709.12, 16106127.36, 123456789.0, 0.0000999, 0.0001, -1e300, 5e-324, 0.01, 99.99,
        2147483647.0, 0.1, 1e15, 0, 1, 100, 536870911, -536870912])},
    "Neighbours": {(row, column): value for column in range(256) for row, value in
                   ((0, column * 0.25), (1, column), (2, column / 7.0)) if row < 2 or column % 3},
}


# ---- Records ---------------------------------------------------------------------------------------------------------

MOST_BODY = 8224


def record(code, layout="", *fields, tail=b""):
    body = struct.pack("<" + layout, *fields) + tail
    assert len(body) <= MOST_BODY
    return struct.pack("<HH", code, len(body)) + body


def is_narrow(text):
    return all(ord(character) < 0x100 for character in text)


def characters(text):
    return text.encode("latin-1" if is_narrow(text) else "utf-16-le")


def option(text):
    return b"\0" if is_narrow(text) else b"\1"


def bof(kind):
    return record(0x0809, "HHHHII", 0x0600, kind, 6560, 1997, 0xC0C9, 0x306)


EOF = record(0x000A)
FONT = record(0x0031, "5H4B", 200, 0, 0x7FFF, 400, 0, 0, 0, 0, 0, tail=b"\5\1" + "Arial".encode("utf-16-le"))
XF = record(0x00E0, "3H4BIIH", 0, 0, 0xFFF5, 0x20, 0, 0, 0, 0, 0, 0x20C0)
STYLE = record(0x0293, "HBB", 0x8000, 0, 0xFF)
WINDOW1 = record(0x003D, "9H", 120, 120, 15135, 9300, 0x0038, 0, 0, 1, 600)


def window2(is_first):
    return record(0x023E, "7HI", 0x06B6 if is_first else 0x04B6, 0, 0, 64, 0, 0, 0, 0)


def bound_sheet(position, name):
    return record(0x0085, "IBBBB", position, 0, 0, len(name), 0, tail=name.encode("latin-1"))


def string_bodies(texts):
    """Returns the bodies of the record of all texts and of its CONTINUE records. `texts` are those of all cells."""
    different = list(dict.fromkeys(texts))
    bodies = [struct.pack("<II", len(texts), len(different))]
    for text in different:
        data, width = characters(text), 1 if is_narrow(text) else 2
        room = MOST_BODY - len(bodies[-1])
        if 3 + len(data) > room and room < 12:
            bodies.append(b"")
            room = MOST_BODY
        head = struct.pack("<H", len(text)) + option(text)
        while True:
            fitting = min(len(data), (room - len(head)) // width * width)
            bodies[-1] += head + data[:fitting]
            data = data[fitting:]
            if not data:
                break
            bodies.append(b"")
            head, room = option(text), MOST_BODY
    return bodies


def shared_strings(texts):
    return b"".join(record(0x003C if i else 0x00FC, tail=body) for i, body in enumerate(string_bodies(texts)))


# ---- Texts at the ends of records ------------------------------------------------------------------------------------

# The bytes that a narrow text leaves in its record, or those that continue in the next ones, negative; and the sizes of
# the texts after it, negative for wide ones.
BORDERS = [
    [0, 1], [0, -1], [0, 8221, 1], [0, 8222], [0, 2, -4109], [0, -4111, 2], [0, -4110 - 2 * 4111 - 2, 2],
    [0, -4110 - 4111, 2], [-1, 2], [-2 * 8223 - 5, 2], [-2 * 8223, 2],
    [11, 8, 1], [11, 9], [11, -4], [11, -5], [12, 10], [12, -5],
]


def border_texts():
    """Returns texts that end at all these borders. Texts of the same size have different characters."""
    texts = []
    for number, (left, *sizes) in enumerate(BORDERS):
        room = MOST_BODY - len(string_bodies(texts)[-1]) or MOST_BODY
        texts.append(chr(0xC0 + number) * (room - 3 - left))
        texts += [chr((0x41 if size > 0 else 0x450) + number) * abs(size) for size in sizes]
    return texts


WORKBOOKS = {"empty": EMPTY, "small": SMALL, "big": BIG, "rows": ROWS,
             "texts": {"Texts": {(row, 0): text for row, text in enumerate(border_texts())},
                       "Bytes": {(byte, 0): f"a{chr(byte)}z" for byte in range(0x20, 0x100)}}}

# ---- Cells -----------------------------------------------------------------------------------------------------------


def whole(value):
    """Cuts off the decimals. Returns the minimum for numbers that don't fit into 32 bits."""
    return int(value) if -2147483649 < value < 2147483648 else -2147483648


def is_short(value):
    """Returns whether a double has the short form: its third and fourth decimals appear to be 0."""
    return (whole(value * 100) * 100 - whole(value * 10000)) % 2**32 == 0


def word_of(value):
    if isinstance(value, int):
        return (value * 4 + 2) % 2**32
    in_hundredths = (whole(value) * 100 - whole(value * 100)) % 2**32 != 0
    upper_half, = struct.unpack("<4xI", struct.pack("<d", value * 100 if in_hundredths else value))
    return upper_half // 4 * 4 + in_hundredths


def form_of(value):
    if isinstance(value, float):
        return "short double" if is_short(value) else "double"
    return "whole" if isinstance(value, int) else "text"


def runs(cells):
    """Returns the records of a row; neighbours of one short form share one. `cells` are (column, value), in order."""
    def key(numbered):
        number, (column, value) = numbered
        form = form_of(value)
        return form, column - number if form in ("whole", "short double") else column
    return [[cell for _, cell in group] for _, group in itertools.groupby(enumerate(cells), key)]


def run_record(row, run, string_index):
    column, value = run[0]
    form = form_of(value)
    if form == "text":
        return record(0x00FD, "HHHI", row, column, 0, string_index[value])
    if form == "double":
        return record(0x0203, "HHHd", row, column, 0, value)
    if len(run) == 1:
        return record(0x027E, "HHHI", row, column, 0, word_of(value))
    items = b"".join(struct.pack("<HI", 0, word_of(item)) for _, item in run)
    return record(0x00BD, "HH", row, column, tail=items + struct.pack("<H", run[-1][0]))


def row_block(rows, column_end, string_index):
    """Returns the records of a block and the offset of its DBCell in them. `rows` are (row, cells)."""
    heads = b"".join(record(0x0208, "HHHHHHI", row, 0, column_end, 255, 0, 0, 0) for row, _ in rows)
    cells, offsets, way = b"", [], len(heads) - 20  # from the second row's record on
    for row, line in rows:
        offsets.append(way)
        of_row = b"".join(run_record(row, run, string_index) for run in runs(line))
        cells += of_row
        way = len(of_row)
    back = len(heads + cells)
    return heads + cells + record(0x00D7, f"I{len(offsets)}H", back, *offsets), back


def sheet_records(cells, is_first, position, string_index):
    """Returns the records of a sheet at `position` in the stream."""
    row_end = max((row + 1 for row, _ in cells), default=0)
    column_end = max((column + 1 for _, column in cells), default=0)
    filled = {place: value for place, value in cells.items() if value != ""}
    first_row, first_column = min(filled, default=(0, 0))
    lines = {row: [(column, value) for (_, column), value in line]
             for row, line in itertools.groupby(sorted(filled.items()), lambda item: item[0][0])}
    block_count = (row_end + 31) // 32
    place = position + 20 + 20 + 4 * max(block_count, 1) + 18
    blocks, places = b"", []
    for block in range(block_count):
        rows = [(row, line) for row, line in lines.items() if row // 32 == block]
        data, back = row_block(rows, column_end, string_index)
        places.append(place + len(blocks) + back)
        blocks += data
    places = places or [0]
    return (bof(0x10) + record(0x020B, f"IIII{len(places)}I", 0, first_row, row_end, 0, *places) +
            record(0x0200, "IIHHH", first_row, row_end, first_column, column_end, 0) + blocks + window2(is_first) + EOF)


def stream_of(sheets):
    """Returns the stream `Workbook`."""
    texts = [value for cells in sheets.values() for _, value in sorted(cells.items()) if isinstance(value, str) and value]
    string_index = {text: index for index, text in enumerate(dict.fromkeys(texts))}
    front = bof(5) + WINDOW1 + 4 * FONT + 21 * XF + 6 * STYLE
    back = shared_strings(texts) + EOF
    position = len(front + back) + sum(len(bound_sheet(0, name)) for name in sheets)
    names, bodies = b"", b""
    for number, (name, cells) in enumerate(sheets.items()):
        names += bound_sheet(position + len(bodies), name)
        bodies += sheet_records(cells, number == 0, position + len(bodies), string_index)
    return front + names + back + bodies


# ---- The compound file -----------------------------------------------------------------------------------------------

FREE, END_OF_CHAIN, FAT_SECTOR = 0xFFFFFFFF, 0xFFFFFFFE, 0xFFFFFFFD


def in_units(data, unit):
    return -(-len(data) // unit)


def table(marks):
    """Returns a sector of the FAT or mini FAT."""
    return struct.pack("<128I", *marks, *[FREE] * (128 - len(marks)))


def entry(name, kind, child, start, size):
    return struct.pack("<64sHBBIII36xIII", name.encode("utf-16-le"), 2 * len(name) + 2, kind, 1, FREE, FREE, child,
                       start, size, 0)


def chain(sectors):
    """Returns the marks of these sectors, each pointing to the next."""
    return dict(zip(sectors, sectors[1:] + [END_OF_CHAIN]))


def compound_file(stream):
    count = in_units(stream, 512)
    if len(stream) >= 4096:
        numbers = [number for number in range(2, 2 * count + 4) if number % 128][:count]  # the others are the FAT's
        marks, sectors = chain(numbers), {}
        mini_fat, root, start = (END_OF_CHAIN, 0), (END_OF_CHAIN, 0), 2
    else:
        numbers, mini_count = [2, *range(4, 3 + count)], in_units(stream, 64)
        marks, sectors = {3: END_OF_CHAIN, **chain(numbers)}, {3: table([*range(1, mini_count), END_OF_CHAIN])}
        mini_fat, root, start = (3, 1), (2, 64 * mini_count), 0
    fat_sectors = range(0, numbers[-1] + 1, 128)
    marks |= {1: END_OF_CHAIN, **dict.fromkeys(fat_sectors, FAT_SECTOR)}
    sectors |= {number: stream[512 * i:512 * i + 512].ljust(512, b"\0") for i, number in enumerate(numbers)}
    sectors |= {first: table([marks[n] for n in range(first, min(first + 128, numbers[-1] + 1))]) for first in fat_sectors}
    sectors[1] = entry("Root Entry", 5, 1, *root) + entry("Workbook", 2, FREE, start, len(stream)) + bytes(256)
    listed = [*fat_sectors, *[FREE] * (109 - len(fat_sectors))]
    header = struct.pack("<8s16x5H6x9I109I", bytes.fromhex("D0CF11E0A1B11AE1"), 0x3B, 3, 0xFFFE, 9, 6, 0, len(fat_sectors),
                         1, 0, 4096, *mini_fat, END_OF_CHAIN, 0, *listed)
    return header + b"".join(sectors[number] for number in sorted(sectors))


# ---- Files -----------------------------------------------------------------------------------------------------------


def digits_of(text):
    for character, run in itertools.groupby(text):
        count = len(list(run))
        yield f"{ord(character):04x}" * count if count < 100 else f"{ord(character):04x}*{count},"


def twin_line(sheet, row, column, value):
    if isinstance(value, str):
        kind, text = "text", "".join(digits_of(value)) or "-"
    else:
        kind, text = ("integer", str(value)) if isinstance(value, int) else ("double", f"{value:.17g}")
    return f"{sheet}\t{row}\t{column}\t{kind}\t{text}\n"


def twin_of(sheets):
    return "".join(twin_line(sheet, *place, value) for sheet, cells in sheets.items()
                   for place, value in sorted(cells.items()))


def make(folder):
    for name, sheets in WORKBOOKS.items():
        (folder / f"{name}.xls").write_bytes(compound_file(stream_of(sheets)))
        (folder / f"{name}.txt").write_bytes(twin_of(sheets).encode("latin-1"))


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent)
