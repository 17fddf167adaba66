"""The functions of the binding: their stubs, and that those that read or write files release the interpreter's lock."""

import ast
import contextlib
import itertools
import os
import pathlib
import re
import subprocess
import sys
import threading
import time

import numpy as np
import pytest
import vxfileio as vx
from conftest import REFERENCE
from vxfileio import _vxfileio

IN_MEMORY = {
    "RawDataFile.header", "RawDataFile.recordings", "RawDataFile.find", "RecordingIndex.wells",
    "RecordingIndex.segments", "RecordingIndex.certain_samples", "RecordingIndex.damage", "SampleSelection.wells",
    "SampleSelection.runs", "RawDataWriter.write_error", "make_file_hdr", "well_workbooks", "results_table", "dose_text",
}


def bound():
    """Returns the functions of the binding by name, without those of records."""
    functions = {name: thing for name, thing in vars(_vxfileio).items()
                 if callable(thing) and not isinstance(thing, type)}
    for made in vars(_vxfileio).values():
        if isinstance(made, type) and made not in _vxfileio._records and not issubclass(made, vx.Word):
            functions.update((f"{made.__name__}.{name}", function) for name, function in vars(made).items()
                             if "(self: " in (function.__doc__ or ""))
    return functions


def refused(call, *arguments):
    """Makes a call that the library may refuse, after the lock was released."""
    with contextlib.suppress(vx.UsageError):
        call(*arguments)


def without_lock(folder):
    """Returns a call of each function that releases the lock, by the function's name. Each can be repeated."""
    raw = os.fsencode(REFERENCE / "small_example.vxd")
    file = _vxfileio.RawDataFile(raw)
    index = file.index(0, False, False)
    selection = index.select([11, 12], 0, 10**9)
    counts = [count for _, count, _ in selection.wells()]
    samples, values = ([np.empty(count, dtype) for count in counts] for dtype in (np.uint16, float))
    settings, results = (vx.open(REFERENCE / "xml" / name) for name in ("settings.vxs", "results.vxr"))
    document, starts = os.fsencode(folder / "document"), itertools.count(0, 10)
    channel = vx.RawDataChannelInfo(ID=1, ADZero=0, UnitsPerAD=1.0, Ticks=10)
    recording = vx.RawDataRecordingHdr(TaskName="Series", Recording=1, WellChannels=[channel])
    writer = _vxfileio.RawDataWriter(os.fsencode(folder / "run.vxd"), True, False)
    header = _vxfileio.make_file_hdr(vx.RawDataFileHdr())
    writer.write_file_hdr(header)
    writer.write_recording_hdr(recording)
    return {
        "RawDataFile.__init__": lambda: _vxfileio.RawDataFile(raw),
        "RawDataFile.index": lambda: file.index(0, False, False),
        "RecordingIndex.select": lambda: index.select([11, 12], 0, 10**9),
        "SampleSelection.times": lambda: selection.times(0),
        "SampleSelection.read": lambda: selection.read(samples),
        "SampleSelection.read_scaled": lambda: selection.read_scaled(values),
        "RawDataWriter.__init__": lambda: _vxfileio.RawDataWriter(os.fsencode(folder / "other.vxd"), False, True),
        "RawDataWriter.write_file_hdr": lambda: refused(writer.write_file_hdr, header),
        "RawDataWriter.write_recording_hdr": lambda: writer.write_recording_hdr(recording),
        "RawDataWriter.write_data": lambda: writer.write_data(1, next(starts), 10, samples[0][:1]),
        "RawDataWriter.update_file_hdr": lambda: writer.update_file_hdr("PreQC", ["1"]),
        "RawDataWriter.flush_to_disk": writer.flush_to_disk,
        "RawDataWriter.close": writer.close,
        "read_settings": lambda: _vxfileio.read_settings(vx.Settings, os.fsencode(REFERENCE / "xml/settings.vxs")),
        "read_results": lambda: _vxfileio.read_results(vx.Results, os.fsencode(REFERENCE / "xml/results.vxr")),
        "write_settings": lambda: _vxfileio.write_settings(settings, document, -1),
        "write_results": lambda: _vxfileio.write_results(results, document),
        "write_workbooks": lambda: _vxfileio.write_workbooks(results, settings, document),
    }


def lets_others_run(call, seconds):
    """Repeats a call until another thread, which waits for the lock, has run. Returns whether it has within a time."""
    gate, ran, before = threading.Lock(), [], sys.getswitchinterval()
    sys.setswitchinterval(1000)  # from now on, threads take turns only where the lock is released
    try:
        gate.acquire()
        thread = threading.Thread(target=lambda: (gate.acquire(), ran.append(True)))
        thread.start()
        gate.release()
        deadline = time.monotonic() + seconds
        while not ran and time.monotonic() < deadline:
            call()
        result = bool(ran)
    finally:
        sys.setswitchinterval(before)
    thread.join()
    return result


def test_each_function_is_known_to_work_in_memory_or_to_release_the_lock(tmp_path):
    assert sorted(bound()) == sorted([*IN_MEMORY, *without_lock(tmp_path)])


@pytest.mark.parametrize("name", sorted(bound().keys() - IN_MEMORY))
def test_reading_and_writing_release_the_lock(name, tmp_path):
    assert lets_others_run(without_lock(tmp_path)[name], 20)


def test_a_function_that_keeps_the_lock_would_be_noticed():
    assert not lets_others_run(lambda: _vxfileio.dose_text(1), 0.2)


@pytest.mark.parametrize("call", ["recording.read()", "recording.times(11)", "refused(lambda: vx.RawWriter('none/none'))"])
def test_threads_may_still_run_when_the_program_exits(call):
    program = f"""
import threading, time
import vxfileio as vx

recording = vx.open({str(REFERENCE / "small_example.vxd")!r}).recordings[0]

def refused(call):
    try:
        call()
    except OSError:
        pass

def repeat():
    while True:
        {call}

for _ in range(3):
    threading.Thread(target=repeat, daemon=True).start()
time.sleep(0.3)
"""
    ended = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=60)
    assert (ended.returncode, ended.stderr) == (0, "")


def test_stubs_have_the_functions_of_the_binding_and_their_arguments():
    stub = ast.parse(pathlib.Path(vx.__file__).with_name("_vxfileio.pyi").read_text())
    records = {made.__name__ for made in _vxfileio._records}
    ours = {}
    for node in stub.body:
        if isinstance(node, ast.FunctionDef):
            ours[node.name] = node.args
        elif isinstance(node, ast.ClassDef) and node.name not in records:
            ours |= {f"{node.name}.{item.name}": item.args for item in node.body if isinstance(item, ast.FunctionDef)}
    signatures = {name: function.__doc__.splitlines()[0] for name, function in bound().items()}
    assert {name: [argument.arg for argument in arguments.args] for name, arguments in ours.items()} == {
        name: re.findall(r"(\w+): ", signature) for name, signature in signatures.items()}
