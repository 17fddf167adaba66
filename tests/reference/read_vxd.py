#!/usr/bin/python3
"""Reads raw data files. Written from docs/raw-data-file.md alone, with Python's standard library.

As a command it prints the text twin of each given file. As a module:

    with read_vxd.RawDataFile("run.vxd") as file:
        for recording in file.recordings:
            for segment in file.segments(recording, well=12):
                print(segment.time_from, segment.samples)
"""

import array
import dataclasses
import re
import sys

# ---- The cells of each header: key, width, type ----------------------------------------------------------------------

FILE_CELLS = (
    ("HeaderID", 50, "bare text"),
    ("FPosFirstRecordingHdr", 50, "position"),
    ("FileType", 50, "text"),
    ("ProgramVersion", 50, "text"),
    ("FileVersion", 30, "int32"),
    ("Guid", 50, "text"),
    ("PlateID", 30, "text"),
    ("CompoundID", 30, "int32"),
    ("CompoundName", 200, "text"),
    ("PreQC", 100, "list of int64"),
    ("CompoundTest", 150, "list of int64"),
    ("PostQC", 100, "list of int64"),
    ("CheckSum", 100, "text"),
    ("Reserved", 200, "text"),
)

RECORDING_CELLS = (
    ("TaskName", 50, "text"),
    ("Recording", 50, "int32"),
    ("Dose", 50, "int64"),
    ("FPosRecordingData", 50, "position"),
    ("FPosRecordingTrailer", 50, "position"),
    ("FPosNextRecordingHdr", 50, "position"),
    ("RecordingStartTime", 50, "uint64"),
    ("RecordingTime", 50, "int64"),
    ("NumberOfWells", 30, "int32"),
    ("WellIDs", 200, "list of int32"),
    ("Ticks", 200, "list of int32"),
    ("UnitsPerADs", 400, "list of doubles"),
    ("ADZeros", 200, "list of int32"),
    ("NumberOfAuxCh", 30, "int32"),
    ("AuxIDs", 200, "list of int32"),
    ("Ticks", 200, "list of int32"),
    ("UnitsPerADs", 400, "list of doubles"),
    ("ADZeros", 200, "list of int32"),
)

SEGMENT_CELLS = (
    ("Type", 50, "text"),
    ("ID", 50, "int32"),
    ("FPosNextSegmentHdr", 50, "position"),
    ("TimeFrom", 50, "int64"),
    ("TimeTo", 50, "int64"),
    ("Size", 50, "int64"),
)

START_TIME_SINCE_VERSION = 2
UNSET = -1
FILE_TYPE = b"OVL Vexaprobe"
MOST_CHANNELS = 193
LEAST_LIMIT_OF_MISSING_BYTES = 16 << 20


def header_size(cells):
    return sum(width for _, width, _ in cells)


def recording_cells(version):
    """Returns the cells of a recording header in a file of this version."""
    if version >= START_TIME_SINCE_VERSION:
        return RECORDING_CELLS
    return tuple(cell for cell in RECORDING_CELLS if cell[0] != "RecordingStartTime")


# ---- Values ----------------------------------------------------------------------------------------------------------

WHOLE_NUMBER = re.compile(rb"[ \t\v\f]*([+-]?)([0-9]*)")
REAL_NUMBER = re.compile(
    rb"[ \t\v\f]*([+-]?)(inf|nan|(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:e[+-]?[0-9]+)?)", re.IGNORECASE)


def parse_signed(token, bits):
    sign, digits = WHOLE_NUMBER.match(token).groups()
    value = int(digits or b"0")
    if sign == b"-":
        value = -value
    return max(-(1 << (bits - 1)), min(value, (1 << (bits - 1)) - 1))


def parse_unsigned64(token):
    sign, digits = WHOLE_NUMBER.match(token).groups()
    value = int(digits or b"0")
    if value >= 1 << 64:
        return (1 << 64) - 1
    return (-value if sign == b"-" else value) % (1 << 64)


def parse_double(token):
    match = REAL_NUMBER.match(token)
    return float(b"".join(match.groups())) if match else 0.0


PARSERS = {
    "text": lambda token: token,
    "position": lambda token: parse_signed(token, 64),
    "int32": lambda token: parse_signed(token, 32),
    "int64": lambda token: parse_signed(token, 64),
    "uint64": parse_unsigned64,
    "doubles": parse_double,
}


# ---- Cells -----------------------------------------------------------------------------------------------------------

def cell_text(cell):
    return cell.split(b"\0", 1)[0]


def tokens_of(text):
    return re.split(rb"[=:\r\n]+", text) if text else []


def decode_value(cell, kind):
    if kind == "bare text":
        return cell_text(cell)
    values = tokens_of(cell_text(cell))[1:]
    if kind.startswith("list of "):
        return [PARSERS[kind.removeprefix("list of ")](token) for token in values]
    return PARSERS[kind](values[0] if values else b"")


def decode_header(data, cells):
    """Returns (key, value) for each cell, in order: keys can occur twice."""
    items = []
    offset = 0
    for key, width, kind in cells:
        items.append((key, decode_value(data[offset:offset + width], kind)))
        offset += width
    return items


# ---- Content of a file -----------------------------------------------------------------------------------------------

class RawDataError(Exception):
    """The file, or the recording being read, is damaged; the text says how."""


@dataclasses.dataclass
class Channel:
    id: int = -1
    ticks: int = 0
    units_per_ad: float = 0.0
    ad_zero: int = 0


@dataclasses.dataclass
class Recording:
    fields: dict  # key of a cell -> value, in the order of the cells; the lists are in `wells` and `aux`
    wells: list  # of Channel
    aux: list  # of Channel


@dataclasses.dataclass
class Segment:
    well: int
    time_from: int
    time_to: int
    samples: array.array


def make_channels(count, lists):
    channels = [Channel() for _ in range(count)]
    for name, items in zip(("id", "ticks", "units_per_ad", "ad_zero"), lists):
        for channel, item in zip(channels, items):
            setattr(channel, name, item)
    return channels


def make_recording(items):
    """Sorts the cells of a recording header into fields and channels."""
    lists = [value for _, value in items if isinstance(value, list)]
    fields = {key: value for key, value in items if not isinstance(value, list)}
    counts = fields["NumberOfWells"], fields["NumberOfAuxCh"]
    if not all(0 <= count <= MOST_CHANNELS for count in counts):
        raise RawDataError("Error reading Recording Header")
    return Recording(fields, make_channels(counts[0], lists[:4]), make_channels(counts[1], lists[4:]))


class ChainGuard:
    """Monitors a chain of positions, and raises an error if it is circular."""

    def __init__(self, file_size, item_size, error):
        self.most = file_size // item_size + 1
        self.error = error
        self.count = 0
        self.remembered = None

    def check(self, position):
        self.count += 1
        if position == self.remembered or self.count > self.most:
            raise RawDataError(self.error)
        if self.count & (self.count - 1) == 0:  # 1, 2, 4, 8, ...
            self.remembered = position


class RawDataFile:
    """A raw data file. Reads all headers immediately, and samples segment by segment on request."""

    def __init__(self, path):
        self._file = open(path, "rb")
        try:
            self._size = self._file.seek(0, 2)
            self.header = self._read_file_header()
            self.recordings = list(self._read_recordings())
        except RawDataError:
            self._file.close()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self._file.close()

    def segments(self, recording, well=None):
        """Yields the segments of a recording, or only those of one well.

        Raises RawDataError where the chain is damaged. An unfinished recording has none: see `is_finished`.
        """
        guard = ChainGuard(self._size, header_size(SEGMENT_CELLS), "Error reading Data Segment Header")
        position = recording.fields["FPosRecordingData"]
        while position != UNSET:
            if position < 0:
                raise RawDataError("Error seeking Data Segment.")
            fields = dict(self._read_header(position, SEGMENT_CELLS, b"Type", "Error reading Data Segment Header"))
            guard.check(position)
            if well in (None, fields["ID"]):
                samples = self._read_samples(position + header_size(SEGMENT_CELLS), fields["Size"] % (1 << 32))
                yield Segment(fields["ID"], fields["TimeFrom"], fields["TimeTo"], samples)
            position = fields["FPosNextSegmentHdr"]

    def _read_file_header(self):
        items = self._read_header(0, FILE_CELLS, FILE_TYPE, "Opened file is not a Vexaprobe file.")
        header = dict(items)
        if header["FPosFirstRecordingHdr"] == UNSET:
            raise RawDataError("Opened file is empty.")
        return header

    def _read_recordings(self):
        error = "Error reading Recording Header"
        cells = recording_cells(self.header["FileVersion"])
        guard = ChainGuard(self._size, header_size(cells), error)
        position = self.header["FPosFirstRecordingHdr"]
        while position != UNSET:
            guard.check(position)
            recording = make_recording(self._read_header(position, cells, b"TaskName", error))
            recording.fields.setdefault("RecordingStartTime", 0)
            yield recording
            position = recording.fields["FPosNextRecordingHdr"]

    def _read_header(self, position, cells, begin, error):
        data = self._read(position, header_size(cells))
        width = cells[0][1]
        if len(data) < width or not cell_text(data[:width]).startswith(begin):
            raise RawDataError(error)
        return decode_header(data.ljust(header_size(cells), b"\0"), cells)

    def _read_samples(self, position, count):
        size = 2 * count
        if position + size > self._size + max(self._size, LEAST_LIMIT_OF_MISSING_BYTES):
            raise RawDataError("Error reading Data Segment Header")
        samples = array.array("H", self._read(position, size).ljust(size, b"\0"))
        if sys.byteorder == "big":
            samples.byteswap()
        return samples

    def _read(self, position, size):
        """Returns the bytes from a position on: fewer or none beyond the end of the file."""
        if not 0 <= position < self._size:
            return b""
        self._file.seek(position)
        return self._file.read(size)


def is_finished(recording):
    return recording.fields["FPosRecordingData"] != UNSET


# ---- The text twin ---------------------------------------------------------------------------------------------------

def show(value):
    """Formats a text in quotes, with unprintable bytes as \\xHH; a list in brackets; a number unchanged."""
    if isinstance(value, bytes):
        return '"' + "".join(chr(b) if 32 <= b < 127 and b not in b'"\\' else f"\\x{b:02x}" for b in value) + '"'
    if isinstance(value, list):
        return "[" + ", ".join(map(str, value)) + "]"
    return str(value)


def field_lines(fields):
    return [f"  {key}: {show(value)}" for key, value in fields.items()]


def channel_line(kind, channel):
    return (f"  {kind} {channel.id}: Ticks {channel.ticks}, UnitsPerAD {channel.units_per_ad:.15g}, "
            f"ADZero {channel.ad_zero}")


def file_lines(header):
    return ["file", *field_lines(header)]


def recording_lines(recording):
    keys = [key for key, _, kind in RECORDING_CELLS if not kind.startswith("list of ")]
    return ["recording", *field_lines({key: recording.fields[key] for key in keys}),
            *(channel_line("well", channel) for channel in recording.wells),
            *(channel_line("aux", channel) for channel in recording.aux)]


def segment_line(segment):
    samples = "".join(f" {sample}" for sample in segment.samples)
    times = f"{segment.time_from} to {segment.time_to}"
    return f"  segment of well {segment.well}, {times}, {len(segment.samples)} samples:{samples}"


UNFINISHED_LINE = "  not finished"
END_LINE = "  end"


def failure_line(text):
    return f"failure: {text}"


def twin_lines(path):
    """Yields the lines of a file's text twin: its whole content, in the order of its chains."""
    try:
        file = RawDataFile(path)
    except RawDataError as error:
        yield failure_line(error)
        return
    with file:
        yield from file_lines(file.header)
        for recording in file.recordings:
            yield from recording_lines(recording)
            if not is_finished(recording):
                yield UNFINISHED_LINE
                continue
            try:
                yield from map(segment_line, file.segments(recording))
                yield END_LINE
            except RawDataError as error:
                yield "  " + failure_line(error)


if __name__ == "__main__":
    for name in sys.argv[1:]:
        for line in twin_lines(name):
            print(line)
