"""Compares the output of `vxfile samples` with independent data: numpy reads arrays, the text twin has all samples.

usage: samples_numpy.py VXFILE REFERENCE.vxd REFERENCE.txt SMALL_EXAMPLE.vxd
"""

import io
import re
import subprocess
import sys
import tempfile
from decimal import Decimal

import numpy

VXFILE, REFERENCE, TWIN, SMALL = sys.argv[1:]


def run(*options, path=REFERENCE):
    done = subprocess.run([VXFILE, "samples", path, *options], capture_output=True, check=False)
    assert done.returncode == (b"a well that the recording doesn't list" in done.stderr), done.stderr
    return done.stdout


def twin_rows():
    """Yields task, recording, well, time, sample and the value in units, from the twin."""
    task = number = None
    wells = {}
    for line in open(TWIN, encoding="latin-1"):
        if line.startswith("recording"):
            wells = {}
        elif found := re.match(r' +TaskName: "(.*)"', line):
            task = found[1]
        elif found := re.match(r" +Recording: (.*)", line):
            number = int(found[1])
        elif found := re.match(r" +well (-?\d+): Ticks (\d+), UnitsPerAD (\S+), ADZero (-?\d+)", line):
            wells[int(found[1])] = int(found[2]), found[3], int(found[4])
        elif found := re.match(r" +segment of well (-?\d+), (-?\d+) to -?\d+, \d+ samples: (.*)", line):
            well, time = int(found[1]), int(found[2])
            tick, units, zero = wells.get(well, (1, None, None))
            for sample in map(int, found[3].split()):
                yield task, number, well, time, sample, None if units is None else (sample - zero) * float(units), \
                    None if units is None else (sample - zero) * Decimal(units)
                time += tick


rows = list(twin_rows())
assert len(rows) == 15, len(rows)

expected = "task,recording,well,time,sample\n" + "".join(",".join(map(str, row[:5])) + "\n" for row in rows)
assert run().decode() == expected
assert run("--tsv").decode() == expected.replace(",", "\t")
chosen = [row for row in rows if row[0] == "PreQC" and row[2] in (1, 2) and 50 <= row[3] <= 200]
text = run("--task", "PreQC", "--well", "1,2", "--from", "50", "--to", "200", "--units").decode().splitlines()
assert [line.split(",")[:4] for line in text[1:]] == [[str(item) for item in row[:4]] for row in chosen]
assert [Decimal(line.split(",")[4]) for line in text[1:]] == [row[6] for row in chosen]

with tempfile.TemporaryDirectory() as folder:
    run("--task", "PreQC", "--npy", "-o", folder + "/well-{well}.npy")
    for well in 1, 2:
        array = numpy.load(f"{folder}/well-{well}.npy")
        assert array.dtype == numpy.dtype("<u2")
        assert list(array) == [row[4] for row in rows if row[0] == "PreQC" and row[2] == well]
    array = numpy.load(io.BytesIO(run("--task", "PreQC", "--well", "2", "--npy", "--units")))
    assert list(array) == [row[5] for row in rows if row[0] == "PreQC" and row[2] == 2]
    table = numpy.load(io.BytesIO(run("--npy", "--table")))
    assert table.dtype.names == ("task", "recording", "well", "time", "sample")
    assert [tuple(item) for item in table.tolist()] == [(row[0].encode("latin-1"), *row[1:5]) for row in rows]
    scaled = numpy.load(io.BytesIO(run("--task", "PreQC", "--well", "1,2", "--npy", "--table", "--units")))
    assert list(scaled["value"]) == [row[5] for row in rows if row[0] == "PreQC" and row[2] in (1, 2)]
    several = subprocess.run([VXFILE, "samples", REFERENCE, "--npy"], capture_output=True, check=False)
    assert several.returncode == 2 and b"--well" in several.stderr, several


def cell(width, text):
    return text.encode().ljust(width - 2, b"\0") + b"\r\n"


def write_uneven(path):
    """Writes segments at odd positions, some longer than any block. Returns times and samples of each well."""
    with open(SMALL, "rb") as small:
        headers = bytearray(small.read()[:3650])
    headers[1340:1390] = cell(50, "FPosRecordingData=3651")
    content, position, wells = headers + b"?", 3651, {11: [], 12: []}
    sizes = [3, 200000, 1, 40000, 40000, 33000, 700, 700, 700, 5]
    for i, size in enumerate(sizes):
        well, samples = 11 + i % 2, (numpy.arange(size) * 7 + i).astype("<u2")
        position += 300 + 2 * size
        content += cell(50, "Type=Well") + cell(50, f"ID={well}")
        content += cell(50, f"FPosNextSegmentHdr={-1 if i == len(sizes) - 1 else position}")
        content += cell(50, "TimeFrom=0") + cell(50, f"TimeTo={100 * (size - 1)}") + cell(50, f"Size={size}")
        content += samples.tobytes()
        wells[well].append((100 * numpy.arange(size), samples))
    with open(path, "wb") as file:
        file.write(content)
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

print("samples agree with numpy and the twin")
