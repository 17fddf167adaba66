"""A file with gaps, overlaps and wells of different lengths, made without the library."""

import make_reference as made
from read_vxd import Channel

WELLS = (Channel(11, 100, 0.5, 1000), Channel(12, 100, 0.25, 2000), Channel(13, 50, 0.5, 1000))


def segment(well, tick, start, *samples):
    return made.segment(well, start, start + tick * (len(samples) - 1), *samples)


def write(path, *recordings):
    """Writes a file. Each recording is a pair: its header's values, and its segments."""
    data = made.encode_file_header(made.file_header())
    for number, (values, segments) in enumerate(recordings):
        start = len(data) + 2460
        chain = b""
        for place, item in enumerate(segments):
            end = start + len(chain) + 300 + 2 * len(item.samples)
            chain += made.encode_segment(item, end if place + 1 < len(segments) else -1)
        following = start + len(chain) if number + 1 < len(recordings) else -1
        data += made.encode_recording(made.recording(start, following, wells=WELLS, **values)) + chain
    path.write_bytes(data)
    return path


def uneven(path):
    """Writes two recordings. In the first, wells 11 and 12 have a gap, and well 13 has the times 100 and 150 twice. In
    the second, well 12 has one sample, after those of well 11, and well 13 has none."""
    return write(
        path,
        ({"task": b"Series", "number": 1, "Dose": 7}, [
            segment(11, 100, 1000, 1, 2), segment(12, 100, 1000, 3, 4), segment(13, 50, 0, 5, 6, 7, 8),
            segment(11, 100, 1200, 9), segment(12, 100, 1200, 10), segment(13, 50, 100, 11, 12, 13),
            segment(11, 100, 9000, 14, 15, 16, 17), segment(12, 100, 9000, 18, 19, 20, 21)]),
        ({"task": b"Series", "number": 2, "Dose": 8}, [
            segment(11, 100, 20000, 22, 23, 24), segment(12, 100, 20900, 25)]))
