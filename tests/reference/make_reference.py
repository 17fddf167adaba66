#!/usr/bin/python3
"""Makes the reference files: NAME.vxd and its text twin NAME.txt, which lists everything that a reader finds in it.

The twins aren't made by reading the files: each function below states what is written and what must be read. Positions
are literal numbers, so that a file can be followed by eye. docs/raw-data-file.md describes the format.

    make_reference.py [FOLDER]      default: the folder of this script
"""

import array
import pathlib
import sys

import read_vxd
from read_vxd import Channel, Recording, Segment

# ---- Encoding --------------------------------------------------------------------------------------------------------


def cell(width, text):
    assert len(text) <= width - 3, text
    return text.ljust(width - 2, b"\0") + b"\r\n"


def value_text(value):
    if isinstance(value, bytes):
        return value
    if isinstance(value, (list, tuple)):
        return b":".join(map(value_text, value))
    return (f"{value:g}" if isinstance(value, float) else str(value)).encode("ascii")


def key_and_value(key, value):
    text = value_text(value)
    return key.encode("ascii") + (b"=" + text if text else b"")


def encode(cells, values):
    assert len(cells) == len(values)
    return b"".join(cell(width, key_and_value(key, value)) for (key, width, _), value in zip(cells, values))


def encode_file_header(header):
    data = encode(read_vxd.FILE_CELLS, list(header.values()))
    return cell(50, header["HeaderID"]) + data[50:]


def channel_lists(channels):
    return [[getattr(channel, name) for channel in channels] for name in ("id", "ticks", "units_per_ad", "ad_zero")]


def encode_recording(recording, version=2):
    lists = iter(channel_lists(recording.wells) + channel_lists(recording.aux))
    cells = read_vxd.recording_cells(version)
    values = [next(lists) if kind.startswith("list") else recording.fields[key] for key, _, kind in cells]
    return encode(cells, values)


def encode_segment(segment, following=-1):
    header = [b"Well", segment.well, following, segment.time_from, segment.time_to, len(segment.samples)]
    samples = b"".join(sample.to_bytes(2, "little") for sample in segment.samples)
    return encode(read_vxd.SEGMENT_CELLS, header) + samples


def patched(data, offset, new):
    """Returns the data with the bytes at an offset replaced, without changing the length."""
    assert offset + len(new) <= len(data)
    return data[:offset] + new + data[offset + len(new):]


# ---- Content ---------------------------------------------------------------------------------------------------------


def file_header(**changes):
    header = {
        "HeaderID": b"OVL Vexaprobe", "FPosFirstRecordingHdr": 1190, "FileType": b"Raw", "ProgramVersion": b"1.0",
        "FileVersion": 2, "Guid": b"0123", "PlateID": b"P1", "CompoundID": 5, "CompoundName": b"Test",
        "PreQC": [], "CompoundTest": [], "PostQC": [], "CheckSum": b"0", "Reserved": b""
    }
    assert changes.keys() <= header.keys()
    return header | changes


WELLS_11_12 = (Channel(11, 100, 0.0002, 32768), Channel(12, 100, 0.0002, 32768))


def recording(data, following=-1, task=b"CompoundTest", number=1, wells=WELLS_11_12, aux=(), **changes):
    fields = {
        "TaskName": task, "Recording": number, "Dose": 1000, "FPosRecordingData": data, "FPosRecordingTrailer": -1,
        "FPosNextRecordingHdr": following, "RecordingStartTime": 1000000, "RecordingTime": 300,
        "NumberOfWells": len(wells), "NumberOfAuxCh": len(aux)
    }
    assert changes.keys() <= fields.keys()
    return Recording(fields | changes, list(wells), list(aux))


def segment(well, time_from, time_to, *samples):
    return Segment(well, time_from, time_to, array.array("H", samples))


SEGMENT_11 = segment(11, 0, 300, 1, 256, 65535, 32768)
SEGMENT_12 = segment(12, 0, 300, 7, 8, 9, 10)


def read_as(item, **fields):
    """Returns an item as it is read, if that differs from what was written."""
    if isinstance(item, dict):
        return item | fields
    return Recording(item.fields | fields, item.wells, item.aux)


def twin(header, *recordings):
    """Each of the recordings is a tuple: the recording, its segments, and the text of the failure, if any."""
    lines = read_vxd.file_lines(header)
    for item, *segments in recordings:
        lines += read_vxd.recording_lines(item)
        failure = segments.pop() if segments and isinstance(segments[-1], str) else None
        lines += map(read_vxd.segment_line, segments)
        if failure:
            lines.append("  " + read_vxd.failure_line(failure))
        else:
            finished = read_vxd.is_finished(item)
            lines.append(read_vxd.END_LINE if finished else read_vxd.UNFINISHED_LINE)
    return lines


def refused(text):
    return [read_vxd.failure_line(text)]


BAD_SEGMENT_HEADER = "Error reading Data Segment Header"
BAD_SEGMENT_POSITION = "Error seeking Data Segment."
BAD_RECORDING_HEADER = "Error reading Recording Header"

# ---- The files: each function returns the bytes and the lines of the twin --------------------------------------------


def small_example():
    header = file_header(CompoundTest=[1000, 2000])
    first = recording(3650)
    data = (encode_file_header(header) + encode_recording(first) + encode_segment(SEGMENT_11, 3958) +
            encode_segment(SEGMENT_12))
    return data, twin(header, (first, SEGMENT_11, SEGMENT_12))


def no_recordings():
    return encode_file_header(file_header(FPosFirstRecordingHdr=-1)), refused("Opened file is empty.")


def not_ours():
    """The text of the file type is there, but not at the first byte."""
    return encode_file_header(file_header(HeaderID=b" OVL Vexaprobe")), refused("Opened file is not a Vexaprobe file.")


def several_recordings():
    """Several wells, intervals and list items; signs and limits; recordings without segments."""
    header = file_header(HeaderID=b"OVL Vexaprobe 2", CompoundID=-7, PreQC=[-1, 2],
                         CompoundTest=[0, 1000000, 9223372036854775807], PostQC=[-9223372036854775808])
    wells = [Channel(1, 100, 0.0002, 32768), Channel(2, 50, 1e-05, -32768), Channel(96, 1, -2.5e+06, 0)]
    quality = recording(3650, 4864, b"PreQC", wells=wells, Dose=0)
    empty = recording(7324, 7324, number=-3, Dose=-1)
    limits = recording(9784, 10700, b"Series", 2147483647, wells[2:], Dose=-9223372036854775808,
                       RecordingStartTime=18446744073709551615, RecordingTime=-5)
    last = recording(13160, -1, b"PostQC", wells=[], Dose=9223372036854775807, RecordingStartTime=0)
    interleaved = [segment(1, 0, 200, 1, 2, 3), segment(2, 0, 50, 4, 5), segment(1, 300, 300, 6),
                   segment(2, 100, 149, 65535)]
    signed = [segment(96, -4, -3, 0, 1), segment(96, -9223372036854775808, -9223372036854775807, 2, 3),
              segment(-2147483648, 9223372036854775804, 9223372036854775807, 4, 5, 6, 7)]
    data = encode_file_header(header) + encode_recording(quality)
    for item, following in zip(interleaved, (3956, 4260, 4562, -1)):
        data += encode_segment(item, following)
    data += encode_recording(empty) + encode_recording(limits)
    for item, following in zip(signed, (10088, 10392, -1)):
        data += encode_segment(item, following)
    data += encode_recording(last)
    return data, twin(header, (quality, *interleaved), (empty, BAD_SEGMENT_HEADER), (limits, *signed),
                      (last, BAD_SEGMENT_HEADER))


def two_tasks():
    """Tasks, doses, wells, intervals and scales that all differ, so that a mix-up shows."""
    header = file_header(PlateID=b"P7", CompoundID=3, PreQC=[0], CompoundTest=[1000, 25000])
    a1, a2, b1 = Channel(1, 100, 0.25, 32768), Channel(2, 50, 1e-03, 100), Channel(3, 20, -2.0, 7)
    check = recording(3650, 4564, b"PreQC", wells=[a1, a2], aux=[Channel(9, 10, 0.5, 3)], Dose=0, RecordingTime=400)
    low = recording(7024, 7632, b"Series", 1, [b1, a1], RecordingStartTime=2000000, RecordingTime=200)
    high = recording(10092, -1, b"Series", 2, [a1, Channel(2, 200, 0.001, 100), Channel(3, 20, -2.0, 9)], Dose=25000,
                     RecordingStartTime=3500000, RecordingTime=600)
    parts = ((check, segment(1, 0, 200, 40000, 32760, 65535), segment(2, 0, 50, 101, 99), segment(1, 300, 400, 6, 0)),
             (low, segment(3, 20, 60, 30, 40, 50), segment(1, 100, 100, 20)),
             (high, segment(2, 0, 400, 70, 80, 90), segment(3, 40, 60, 60, 61)))
    data = encode_file_header(header)
    for item, *segments in parts:
        data += encode_recording(item)
        for one in segments:
            data += encode_segment(one, -1 if one is segments[-1] else len(data) + 300 + 2 * len(one.samples))
    return data, twin(header, *parts)


def unfinished():
    """The writer died: no position points to the two complete segments of the last recording."""
    header = file_header()
    first = recording(3650, 3958)
    last = recording(-1, number=2)
    data = (encode_file_header(header) + encode_recording(first) + encode_segment(SEGMENT_11) +
            encode_recording(last) + encode_segment(SEGMENT_11, 6726) + encode_segment(SEGMENT_12))
    return data, twin(header, (first, SEGMENT_11), (last,))


def version_1():
    """Recording headers without RecordingStartTime."""
    header = file_header(FileVersion=1)
    recordings = recording(3600, 4216, RecordingStartTime=0), recording(6626, number=2, RecordingStartTime=0)
    data = encode_file_header(header) + encode_recording(recordings[0], 1) + encode_segment(SEGMENT_11, 3908)
    data += encode_segment(SEGMENT_12) + encode_recording(recordings[1], 1) + encode_segment(SEGMENT_12)
    return data, twin(header, (recordings[0], SEGMENT_11, SEGMENT_12), (recordings[1], SEGMENT_12))


def awkward_text():
    """Separators in values, empty values, line ends, bytes of a code page, completely filled cells."""
    header = file_header(HeaderID=b"OVL Vexaprobe=2:x", FileType=b"=Raw", ProgramVersion=b"", Guid=b":",
                         PlateID=b"nineteen bytes long", CompoundName=b"A:B", CompoundTest=[1])
    seen = read_as(header, FileType=b"Raw", Guid=b"", CompoundName=b"A")
    recordings = (recording(3650, 3650, b"Task=One"), recording(6110, 6110, b""),
                  recording(8570, 8570, b"thirty-eight bytes, the most that fit."),
                  recording(11030, 11030, b"two\r\nlines"), recording(13490, -1, b"\xb5M \\ \"q\""))
    names = b"Task", b"", b"thirty-eight bytes, the most that fit.", b"two", b"\xb5M \\ \"q\""
    data = encode_file_header(header) + b"".join(map(encode_recording, recordings))
    read = [(read_as(item, TaskName=name), BAD_SEGMENT_HEADER) for item, name in zip(recordings, names)]
    return data, twin(seen, *read)


def foreign_numbers():
    """Numbers and lists that our writers never write: blanks, signs, garbage, limits, wrong counts, no NUL."""
    header = file_header(CompoundID=2147483647, PreQC=[0], CompoundTest=[1, 2, 0], PostQC=[9223372036854775807, 0])
    data = encode_file_header(file_header())
    for offset, new in ((200, cell(30, b"FileVersion= +2junk")), (310, cell(30, b"CompoundID=99999999999")),
                        (540, cell(100, b"PreQC=")), (640, cell(150, b"CompoundTest=1::=2:")),
                        (790, b"PostQC=" + b"5" * 91 + b"\r\n")):
        data = patched(data, offset, new)

    wells = [Channel(11, 2147483647, float("inf"), -1), Channel(-1, -2147483648, -5.0, 0), Channel(-1, 0, 5.0, 7)]
    aux = [Channel(7, 1, 0.0, 3), Channel(8, 2, float("nan"), 4), Channel(-1, 0, 0.0, 0)]
    read = recording(3650, wells=wells, aux=aux, Recording=0, Dose=-9223372036854775808, RecordingTime=12,
                     RecordingStartTime=18446744073709551615)
    raw = encode_recording(recording(3650))
    for offset, new in (
            (50, cell(50, b"Recording=x10")), (100, cell(50, b"Dose=-99999999999999999999")),
            (300, cell(50, b"RecordingStartTime=-1")), (350, cell(50, b"RecordingTime=12 34")),
            (400, cell(30, b"NumberOfWells=3")), (430, cell(200, b"WellIDs=11")),
            (630, cell(200, b"Ticks=99999999999:-99999999999")), (830, cell(400, b"UnitsPerADs=1e400:-.5E1:5.e:6")),
            (1230, cell(200, b"ADZeros=-1:--1:7 8:9:10")), (1430, cell(30, b"NumberOfAuxCh=\t3")),
            (1460, cell(200, b"AuxIDs=7:8")), (1660, cell(200, b"Ticks=1:2")),
            (1860, cell(400, b"UnitsPerADs=1e-400:NaN:-x")), (2260, cell(200, b"ADZeros=3:4"))):
        raw = patched(raw, offset, new)

    odd = segment(12, 0, -7, 513, 1027)
    odd_bytes = encode_segment(segment(0, 0, 0, 513, 1027))
    for offset, new in ((0, cell(50, b"Types of segments")), (50, cell(50, b"=12:13")),
                        (150, cell(50, b"TimeFrom= \r\n5")), (200, cell(50, b"TimeTo=-07")),
                        (250, cell(50, b"Size=4294967298"))):
        odd_bytes = patched(odd_bytes, offset, new)
    return data + raw + odd_bytes, twin(header, (read, odd))


def backwards():
    """Both chains run from the end of the file to its beginning, with unreferenced bytes in between."""
    header = file_header(FPosFirstRecordingHdr=7300)
    late, early = recording(6992, 3724), recording(1298, number=2)
    data = encode_file_header(header).ljust(1298, b"?")
    data += encode_segment(SEGMENT_12)                                        # at 1298
    data = data.ljust(3724, b"\xff") + encode_recording(early)                # at 3724
    data += bytes(500) + encode_segment(SEGMENT_12)                           # at 6684
    data += encode_segment(SEGMENT_11, 6684) + encode_recording(late)         # at 6992 and 7300
    return data, twin(header, (late, SEGMENT_11, SEGMENT_12), (early, SEGMENT_12))


def circle_of_recordings():
    header = file_header()
    chain = recording(3650, 3650), recording(6110, 6110, number=2), recording(8570, 3650, number=3)
    return encode_file_header(header) + b"".join(map(encode_recording, chain)), refused(BAD_RECORDING_HEADER)


def circle_of_segments():
    """A circle of two segments in one recording, a segment that points to itself in the other."""
    header = file_header()
    pair, single = recording(3650, 4266), recording(6726, number=2)
    data = (encode_file_header(header) + encode_recording(pair) + encode_segment(SEGMENT_11, 3958) +
            encode_segment(SEGMENT_12, 3650) + encode_recording(single) + encode_segment(SEGMENT_12, 6726))
    return data, twin(header, (pair, SEGMENT_11, SEGMENT_12, SEGMENT_11, BAD_SEGMENT_HEADER),
                      (single, SEGMENT_12, BAD_SEGMENT_HEADER))


def cut_samples():
    """The file ends in the middle of a sample: its high byte and all that follows read as 0."""
    header = file_header()
    only = recording(3650)
    data = (encode_file_header(header) + encode_recording(only) + encode_segment(SEGMENT_11, 3958) +
            encode_segment(segment(12, 0, 300, 7, 0x1234, 9, 10))[:-5])
    return data, twin(header, (only, SEGMENT_11, segment(12, 0, 300, 7, 0x34, 0, 0)))


def cut_header():
    """The file ends after `ID=1` of `ID=12`: a header without times, samples and the end of its chain."""
    header = file_header()
    only = recording(3650)
    data = (encode_file_header(header) + encode_recording(only) + encode_segment(SEGMENT_11, 3958) +
            encode_segment(SEGMENT_12)[:54])
    return data, twin(header, (only, SEGMENT_11, segment(1, 0, 0), BAD_SEGMENT_HEADER))


def damaged_segments():
    """One recording for each kind of wrong position or size."""
    header = file_header()
    good = encode_segment(SEGMENT_11)
    cases = (
        (None, -2, (BAD_SEGMENT_POSITION,)),
        (None, 1190, (BAD_SEGMENT_HEADER,)),
        (None, 9223372036854775807, (BAD_SEGMENT_HEADER,)),
        (patched(good, 100, cell(50, b"FPosNextSegmentHdr=-2")), None, (SEGMENT_11, BAD_SEGMENT_POSITION)),
        (patched(good, 100, cell(50, b"FPosNextSegmentHdr=0")), None, (SEGMENT_11, BAD_SEGMENT_HEADER)),
        (patched(good, 0, cell(50, b"type=Well")), None, (BAD_SEGMENT_HEADER,)),
        (patched(good, 250, cell(50, b"Size=-1")), None, (BAD_SEGMENT_HEADER,)),
        (patched(good, 250, cell(50, b"Size=10000000")), None, (BAD_SEGMENT_HEADER,)),
        (patched(good, 250, cell(50, b"Size=4611686018427387904")), None, (segment(11, 0, 300),)),
    )
    data = encode_file_header(header)
    recordings = []
    for number, (segment_bytes, position, outcome) in enumerate(cases, 1):
        behind = len(data) + 2460
        following = -1 if number == len(cases) else behind + len(segment_bytes or b"")
        item = recording(behind if position is None else position, following, number=number)
        data += encode_recording(item) + (segment_bytes or b"")
        recordings.append((item, *outcome))
    return data, twin(header, *recordings)


def too_many_wells():
    """One well more than any cell could list."""
    raw = patched(encode_recording(recording(3650)), 400, cell(30, b"NumberOfWells=194"))
    return encode_file_header(file_header()) + raw, refused(BAD_RECORDING_HEADER)


FILES = (small_example, no_recordings, not_ours, several_recordings, two_tasks, unfinished, version_1, awkward_text,
         foreign_numbers, backwards, circle_of_recordings, circle_of_segments, cut_samples, cut_header,
         damaged_segments, too_many_wells)


def make(folder):
    for maker in FILES:
        data, lines = maker()
        (folder / f"{maker.__name__}.vxd").write_bytes(data)
        (folder / f"{maker.__name__}.txt").write_bytes("".join(line + "\n" for line in lines).encode("ascii"))


if __name__ == "__main__":
    make(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else pathlib.Path(__file__).parent)
