"""Compares the output of `vxfile samples` with independent data: numpy reads arrays, read_vxd.py has all samples.

usage: samples_numpy.py VXFILE FOLDER_OF_REFERENCE
"""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
from decimal import Decimal

import numpy

VXFILE, FOLDER = sys.argv[1:]
REFERENCE = FOLDER + "/several_recordings.vxd"
sys.path.insert(0, FOLDER)
import make_reference as made  # noqa: E402
import read_vxd  # noqa: E402


def run(*options, path=REFERENCE):
    done = subprocess.run([VXFILE, "samples", path, *options], capture_output=True, check=False)
    assert done.returncode == (b"a well that the recording doesn't list" in done.stderr), done.stderr
    return done.stdout


def all_rows():
    """Yields task, recording, well, time, sample and the value in units."""
    with read_vxd.RawDataFile(REFERENCE) as file:
        for recording in file.recordings:
            channels = {channel.id: channel for channel in recording.wells}
            with contextlib.suppress(read_vxd.RawDataError):  # an empty recording has no first segment
                for segment in file.segments(recording):
                    channel = channels.get(segment.well, read_vxd.Channel(ticks=1))
                    for i, sample in enumerate(segment.samples):
                        yield (recording.fields["TaskName"].decode("latin-1"), recording.fields["Recording"],
                               segment.well, segment.time_from + i * channel.ticks, sample,
                               (sample - channel.ad_zero) * Decimal(str(channel.units_per_ad)))


rows = list(all_rows())
assert len(rows) == 15, len(rows)

expected = "task,recording,well,time,sample\n" + "".join(",".join(map(str, row[:5])) + "\n" for row in rows)
assert run().decode() == expected
chosen = [row for row in rows if row[0] == "PreQC" and row[2] in (1, 2) and 50 <= row[3] <= 200]
text = run("--task", "PreQC", "--well", "1,2", "--from", "50", "--to", "200", "--units").decode().splitlines()
assert [line.split(",")[:4] for line in text[1:]] == [[str(item) for item in row[:4]] for row in chosen]
assert [Decimal(line.split(",")[4]) for line in text[1:]] == [row[5] for row in chosen]

table = numpy.load(io.BytesIO(run("--npy", "--table")))
assert table.dtype.names == ("task", "recording", "well", "time", "sample")
assert [tuple(item) for item in table.tolist()] == [(row[0].encode("latin-1"), *row[1:5]) for row in rows]


def write_uneven(path):
    """Writes segments at odd positions, some longer than any block. Returns times and samples of each well."""
    data = made.encode_file_header(made.file_header()) + made.encode_recording(made.recording(3651)) + b"?"
    wells = {11: [], 12: []}
    sizes = [3, 200000, 1, 40000, 40000, 33000, 700, 700, 700, 5]
    for i, size in enumerate(sizes):
        well, samples = 11 + i % 2, (numpy.arange(size) * 7 + i).astype("<u2")
        following = -1 if i == len(sizes) - 1 else len(data) + 300 + 2 * size
        data += made.encode_segment(made.segment(well, 0, 100 * (size - 1), *samples.tolist()), following)
        wells[well].append((100 * numpy.arange(size), samples))
    pathlib.Path(path).write_bytes(data)
    return {well: map(numpy.concatenate, zip(*parts)) for well, parts in wells.items()}


with tempfile.TemporaryDirectory() as folder:
    path = folder + "/uneven.vxd"
    wells = write_uneven(path)
    run("--npy", "-o", folder + "/{well}.npy", path=path)
    table = numpy.load(io.BytesIO(run("--npy", "--table", path=path)))
    for well, (times, samples) in wells.items():
        assert numpy.array_equal(numpy.load(f"{folder}/{well}.npy"), samples)
        assert numpy.array_equal(numpy.load(io.BytesIO(run("--well", str(well), "--npy", path=path))), samples)
        assert numpy.array_equal(table[table["well"] == well]["sample"], samples)
        assert numpy.array_equal(table[table["well"] == well]["time"], times)

print("samples agree with numpy and the second reader")
