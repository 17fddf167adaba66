"""Failures, row by row, and what happens to them on their way to Python."""

import concurrent.futures
import contextlib
import errno
import os
import re
import signal
import time

import numpy as np
import pytest
import vxfileio as vx
from conftest import REFERENCE
from vxfileio import _errors

RUN = REFERENCE / "several_recordings.vxd"

DOCUMENTED = [  # text, errno after it, exception, errno
    ("Cannot open file a, because it exists", 17, FileExistsError, errno.EEXIST),
    ("Cannot open file a", errno.ENOENT, FileNotFoundError, errno.ENOENT),
    ("Cannot open file a", errno.EACCES, PermissionError, errno.EACCES),
    ("Cannot open file a", 0, OSError, errno.EIO),
    ("Could not open settings file: a", errno.EISDIR, IsADirectoryError, errno.EISDIR),
    ("Could not open results file: a", errno.ENOENT, FileNotFoundError, errno.ENOENT),
    ("Opened file is not a Vexaprobe file.", 0, vx.UnknownFileError, errno.EINVAL),
    ("Opened file is empty.", 0, vx.EmptyFileError, errno.ENODATA),
    ("Error reading Recording Header", 0, vx.DamagedFileError, errno.EBADMSG),
    ("Error seeking Data Segment.", 0, vx.DamagedFileError, errno.EBADMSG),
    ("Error reading Data Segment Header", 0, vx.DamagedFileError, errno.EBADMSG),
    ("The file has no such recording.", 0, vx.NoSuchRecordingError, None),
    ("The recording isn't finished.", 0, vx.UnfinishedRecordingError, None),
    ("Value does not fit its cell: TaskName", 0, vx.UsageError, None),
]


@pytest.mark.parametrize("text, code, exception, number", DOCUMENTED)
def test_each_failure_has_its_exception(text, code, exception, number):
    with pytest.raises(exception) as raised:
        _errors.fail(text.encode(), b"\xff.vxd", code)
    assert type(raised.value) is exception and raised.value.filename == os.fsdecode(b"\xff.vxd")
    assert getattr(raised.value, "errno", None) == number
    assert isinstance(raised.value, (OSError, ValueError))


def test_each_row_of_the_table_is_tested():
    rows = {next(row for row in _errors.TABLE if text.startswith(row.begin) and text.endswith(row.end))
            for text, *_ in DOCUMENTED}
    assert rows == set(_errors.TABLE)


@pytest.mark.parametrize("number", [errno.ENODEV, errno.ENXIO, errno.EMFILE, errno.ENFILE, errno.ENOSPC])
def test_refused_writes_have_the_number_of_their_text(number):
    error = _errors.refusal(os.strerror(number) + ". 3 segments missing", "run.vxd")
    assert (error.errno, error.filename) == (number, "run.vxd")
    assert _errors.refusal("PlateID has a separator", "run.vxd") is None
    for step in ("replacing", "flushing the folder of", "writing 4096 bytes at 8192 of"):
        error = _errors.refusal(f"Unknown error 523, {step} run.vxd", "run.vxd")
        assert isinstance(error, vx.FileError) and error.errno == errno.EIO


@pytest.mark.parametrize("name, exception", [("missing", FileNotFoundError), ("folder", IsADirectoryError)])
def test_failures_of_the_system_are_its_own(name, exception, tmp_path):
    (tmp_path / "folder").mkdir()
    for call in (vx.open, vx.Settings.read, vx.Results.read):
        with pytest.raises(exception) as raised:
            call(tmp_path / name)
        assert raised.value.filename == str(tmp_path / name)

    # Not on the main thread: there, files are read in a thread of their own, in which no call has failed before.
    def read_after_another_failure():
        assert not os.access(tmp_path / "none", os.F_OK)
        vx.Settings.read(tmp_path / name)

    with concurrent.futures.ThreadPoolExecutor() as pool, pytest.raises(exception):
        pool.submit(read_after_another_failure).result()
    with pytest.raises(OSError) as raised:
        vx.RawWriter(tmp_path / "missing" / "run.vxd")
    assert (raised.value.errno, raised.value.filename) == (errno.ENOENT, str(tmp_path / "missing" / "run.vxd"))
    for call in (vx.RawWriter, vx.Settings.read):
        with pytest.raises(OSError) as raised:
            call(f"{tmp_path}/run.vxd\0old")
        assert raised.value.filename == f"{tmp_path}/run.vxd\0old" and list(tmp_path.iterdir()) == [tmp_path / "folder"]


@pytest.mark.skipif(not os.path.exists("/proc/self/mem"), reason="no file that can be opened and not read")
def test_a_failure_to_read_names_the_file():
    with pytest.raises(OSError) as raised:
        vx.open("/proc/self/mem")
    assert (raised.value.errno, raised.value.filename) == (errno.EIO, "/proc/self/mem")


def test_files_of_another_kind_are_unknown():
    for call in (vx.Settings.read, lambda path: vx.open(RUN, settings=path)):
        with pytest.raises(vx.UnknownFileError, match="not a settings file") as raised:
            call(REFERENCE / "xml" / "results.vxr")
        assert raised.value.filename == str(REFERENCE / "xml" / "results.vxr")
    for read in (vx.open, vx.Settings.read, vx.Results.read):
        with pytest.raises(vx.UnknownFileError, match="empty"):
            read(os.devnull)


@pytest.mark.skipif(not hasattr(os, "mkfifo"), reason="no pipes with names")
def test_a_pipe_is_refused_without_waiting_for_it(tmp_path):
    os.mkfifo(tmp_path / "pipe")
    (tmp_path / "link").symlink_to("pipe")
    for name in ("pipe", "link"):
        with pytest.raises(vx.UnknownFileError, match="is a pipe"):
            vx.open(tmp_path / name)


@pytest.mark.parametrize("value, exception", [("x", TypeError), (2**40, ValueError), (1.5, TypeError)])
def test_failures_of_attributes_name_them(value, exception):
    with pytest.raises(exception, match="^CompoundID: expected"):
        vx.RawDataFileHdr(PlateID="P", CompoundID=value)


def test_exceptions_can_be_pickled():
    import pickle

    error = vx.NoSuchRecordingError("text", "run.vxd")
    again = pickle.loads(pickle.dumps(error))
    assert (str(again), again.filename) == (str(error), "run.vxd")
    damaged = pickle.loads(pickle.dumps(vx.DamagedFileError(74, "text", "run.vxd")))
    assert (damaged.errno, damaged.filename) == (74, "run.vxd")


@contextlib.contextmanager
def interrupted(is_due):
    """Raises KeyboardInterrupt in its block once `is_due()`, and expects it."""
    was_raised = False

    def interrupt(*_):
        nonlocal was_raised
        if not was_raised and is_due():
            was_raised = True
            raise KeyboardInterrupt

    handler = signal.signal(signal.SIGALRM, interrupt)
    try:
        with pytest.raises(KeyboardInterrupt):
            signal.setitimer(signal.ITIMER_REAL, 0.005, 0.005)
            yield
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, handler)


def test_an_interrupt_ends_a_read_in_the_middle(tmp_path):
    path, size = tmp_path / "run.vxd", 50_000_000
    channel = vx.RawDataChannelInfo(ID=1, ADZero=0, UnitsPerAD=1, Ticks=1)
    header = vx.RawDataRecordingHdr(TaskName="Series", WellChannels=[channel])
    with vx.RawWriter(path) as writer, writer.recording(header) as recording:
        recording.write(1, 0, np.zeros(size, np.uint16))
    recording = vx.open(path).recordings[0]
    recording.index()
    room = np.full(size, -1.0)

    with interrupted(lambda: room[0] == 0):  # the read has begun
        recording.read(scaled=True, out={1: room})
    assert room[-1] == -1
    assert list(recording.samples(1, 0, 2)) == [0, 0]


@pytest.mark.skipif(not os.path.isdir("/proc/self/task"), reason="the system doesn't list threads")
def test_an_interrupted_document_is_read_on_in_the_background(tmp_path):
    def new_threads():
        return set(os.listdir("/proc/self/task")) - before

    before = set(os.listdir("/proc/self/task"))
    settings = (REFERENCE / "xml" / "settings.vxs").read_bytes()
    well = re.search(b"<Well>.*?</Well>", settings).group()
    path = tmp_path / "large.vxs"  # takes far longer to read than the 50 ms until the reader looks for Ctrl-C
    path.write_bytes(settings.replace(well, well * 1_000_000, 1))
    with interrupted(new_threads):
        vx.Settings.read(path)
    deadline = time.monotonic() + 60
    while new_threads():
        assert time.monotonic() < deadline
        time.sleep(0.01)
    assert vx.Settings.read(REFERENCE / "xml" / "settings.vxs").RecordPlate.Data.Wells[0].Label == "A1"


def test_the_interpreter_survives_a_thousand_failures(open_files):
    before = open_files()
    for _ in range(1000):
        with pytest.raises(vx.DamagedFileError):
            vx.open(REFERENCE / "circle_of_recordings.vxd")
    assert open_files() == before
