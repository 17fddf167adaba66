"""Compares what `vxfile table` writes, read by csv, json and numpy, with an independent reader of results files.

usage: table_readers.py VXFILE FOLDER_OF_REFERENCE_XML
"""

import csv
import functools
import io
import json
import math
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ElementTree

import numpy

VXFILE, REFERENCE = sys.argv[1], pathlib.Path(sys.argv[2])
sys.path.insert(0, str(REFERENCE))
import read_xml  # noqa: E402

LEAST = -2**63
UNITS = ("pM", "nM", "\xb5M", "mM", "M")

HOSTILE = """<Vexaprobe><Header/><Results><Task><Recordings Size="1"><Recording><Wells Size="3">
<Well><WellID>-2</WellID><WellLabel>=1+1,&quot;x&quot;&lt;script&gt;</WellLabel>
<FPfastDetectionTimes Size="3"><Time>5</Time><Time>3</Time><Time>9223372036854775807</Time></FPfastDetectionTimes>
<AverageCount>1</AverageCount><AveragePreFPfastTime>7</AveragePreFPfastTime><AverageTick>3</AverageTick>
<Average Size="9"><Ave>nan;-nan;inf;-inf;1e-300;-0;5e-324;1e100;0.30000000000000004;</Ave></Average>
<Responses Size="2"><Response><Label>QT-Interval</Label><Value>5</Value></Response>
<Response><Label>Na-Slope</Label><Value>0.1</Value></Response></Responses>
<NormalizedResponses Size="1"><Response><Label>Na-Slope</Label><Value>123456789012345678</Value></Response>
</NormalizedResponses></Well>
<Well><WellID>7</WellID><WellLabel>007</WellLabel></Well><Well/></Wells>
<NormalizedResponses Size="1"><Response><Label>Na-Slope</Label><normMean>1e5</normMean><normStdDev>2</normStdDev>
<Samples>3</Samples></Response></NormalizedResponses><Dose>18446744073709551615</Dose></Recording></Recordings>
<TaskName>S\xe9rie,\xb5</TaskName></Task></Results></Vexaprobe>"""


def run(path, *options, status=0):
    done = subprocess.run([VXFILE, "table", path, *options], capture_output=True, check=False)
    assert done.returncode == status, (path, options, done)
    return done.stdout


def dose_text(dose):
    unit = 0
    while dose and dose % 1000 == 0 and unit < 4:
        dose, unit = dose // 1000, unit + 1
    return f"{dose} {UNITS[unit]}"


def recordings(root):
    for task in root.find("Results").iter("Task"):
        for number, recording in enumerate(task.find("Recordings")):
            dose = int(recording.findtext("Dose") or 0)
            yield recording, (task.findtext("TaskName"), number, dose, dose_text(dose))


def wells(root):
    for recording, place in recordings(root):
        for element in recording.findall("Wells/Well"):
            well = {tag: value for tag, _, value in read_xml.fields_of(element, read_xml.RESULTS_WELL)}
            if len(element):
                yield well, place + (well["WellID"], well["WellLabel"])


def expected(root, what):
    """Yields the rows of a table, None for what is missing."""
    if what == "means":
        for recording, place in recordings(root):
            for mean in recording.findall("NormalizedResponses/Response"):
                yield place + tuple(value for _, _, value in read_xml.fields_of(mean, read_xml.RESPONSE_MEAN))
        return
    for well, place in wells(root):
        if what == "responses":
            for normalized in (False, True):
                found = well["NormalizedResponses" if normalized else "Responses"]
                values = [tuple(value for _, _, value in response) for response in found]
                order = ("NotDefined", "Na-Amplitude", "Na-Slope", "QT-Interval")
                for label, value in sorted(values, key=lambda item: order.index(item[0])):
                    yield place + (label, value, normalized)
        if what == "beats":
            times = well["FPfastDetectionTimes"]
            for i, time in enumerate(times):
                interval = time - times[i - 1] if i else None
                yield place + (i, time, interval if interval is None or abs(interval) < 2**63 else None)
        if what == "averages" and well["AverageCount"]:
            for i, value in enumerate(well["Average"]):
                yield place + (i, (i + 1) * well["AverageTick"] - well["AveragePreFPfastTime"], value)


def as_csv(value):
    if value is None or isinstance(value, bool):
        return "" if value is None else str(value).lower()
    if isinstance(value, float):
        return value if math.isfinite(value) else str(value)
    return "'" + value if isinstance(value, str) and value.startswith("=") else str(value)


def is_real(field, value):
    """Returns whether a field is this number, sign included, and looks like a real one."""
    return isinstance(value, float) and repr(float(field)) == repr(value) and any(mark in field for mark in ".en")


def check_csv(rows, text, separator, names):
    read = list(csv.reader(io.StringIO(text.decode(), newline=""), delimiter=separator))
    assert len(read) == len(rows) + 1 and read[0] == names, (len(read), len(rows), read[0])
    for row, fields in zip(rows, read[1:]):
        for value, field in zip(map(as_csv, row), fields, strict=True):
            assert field == value or is_real(field, value), (row, fields)


def check_json(rows, text, names):
    read = [json.loads(line, parse_constant=None) for line in text.decode().splitlines()]
    assert len(read) == len(rows)
    for row, item in zip(rows, read):
        assert list(item) == names
        finite = [None if isinstance(value, float) and not math.isfinite(value) else value for value in row]
        assert list(map(repr, item.values())) == list(map(repr, finite)), (row, item)


def check_npy(rows, data, names):
    assert data.index(b"\n") % 64 == 63, "items are aligned"
    array = numpy.load(io.BytesIO(data), allow_pickle=False)
    assert list(array.dtype.names) == names
    for row, item in zip(rows, array.tolist(), strict=True):
        for value, cell in zip(row, item, strict=True):
            value = value.encode() if isinstance(value, str) else LEAST if value is None else value
            assert repr(cell) == repr(value), (row, item)


with tempfile.TemporaryDirectory() as folder:
    hostile = pathlib.Path(folder) / "hostile.vxr"
    hostile.write_bytes(HOSTILE.encode("latin-1"))
    parsed = ElementTree.fromstring(HOSTILE)
    files = [(path, ElementTree.parse(path).getroot()) for path in sorted(REFERENCE.glob("results*.vxr"))]
    types = {}
    for path, root in files + [(hostile, parsed)]:
        shown = functools.partial(run, status=int(path == hostile))  # its task has an unknown word
        for what in "responses", "means", "beats", "averages":
            rows = list(expected(root, what))
            names = shown(path, "--what", what).decode().splitlines()[0].split(",")
            check_csv(rows, shown(path, "--what", what), ",", names)
            check_csv(rows, shown(path, "--what", what, "--tsv"), "\t", names)
            check_json(rows, shown(path, "--what", what, "--jsonl"), names)
            array = shown(path, "--what", what, "--npy")
            check_npy(rows, array, names)
            output = pathlib.Path(folder) / "out.npy"
            shown(path, "--what", what, "--npy", "-o", output, "--force")
            assert output.read_bytes() == array
            assert types.setdefault(what, numpy.load(output).dtype) == numpy.load(output).dtype

    # A cut document has the rows before the cut.
    whole = (REFERENCE / "results.vxr").read_bytes()
    beats = run(REFERENCE / "results.vxr", "--what", "beats").splitlines()
    start, end = whole.index(b"<Results>") + 9, whole.index(b"</Results>")
    seen = set()
    for size in range(start, end, 61):
        hostile.write_bytes(whole[:size])
        rows = run(hostile, "--what", "beats", status=1).splitlines()
        assert rows == beats[:len(rows)]
        seen.add(len(rows))
    assert seen == {1, 3, 4}, seen

print("tables agree with csv, json, numpy and the independent reader")
