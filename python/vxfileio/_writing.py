"""Writing raw data files."""

from __future__ import annotations

import errno
import operator
import os
import threading
from typing import Any, Optional

import numpy as np
from numpy.typing import ArrayLike

from . import _vxfileio
from ._errors import FileError, UsageError, WriteWarning, refusal, warn
from ._raw import FIRST_TIME, LAST_TIME
from ._text import printable
from ._types import Path


class RawWriter:
    """Writes a raw data file while the recording runs.

        with vx.RawWriter("run.vxd", vx.RawDataFileHdr(PlateID="P1")) as writer:
            with writer.recording(header) as recording:
                recording.write(12, 0, samples)

    Never writes over an existing file unless `overwrite` is set. Each segment is with the operating system before
    `write` returns: if the process dies, none is lost. What the system refuses is raised as `OSError` by the call that
    failed; the file stays valid, and the writer can go on.

    A strict writer refuses what `vxfile verify` would report, with a `UsageError` and before anything is written. Other
    writers write it as given, with a `WriteWarning` if readers can't use it.

    Any number of threads may use it; one waits for the other.
    """

    def __init__(self, path: Path, header: Optional[_vxfileio.RawDataFileHdr] = None, *, overwrite: bool = False,
                 strict: bool = True) -> None:
        self.path: str = os.fsdecode(path)
        self._lock = threading.Lock()
        self._recording: Optional[RecordingWriter] = None
        self._reported = ""
        self._writer = _vxfileio.RawDataWriter(os.fsencode(path), not overwrite, strict)
        self.closed = False
        try:
            self._call(self._writer.write_file_hdr, _with_mark(header or _vxfileio.RawDataFileHdr()))
        except BaseException:
            self._writer.close()
            if not overwrite:
                os.unlink(path)  # it's ours
            raise

    def recording(self, header: _vxfileio.RawDataRecordingHdr) -> RecordingWriter:
        """Finishes the recording before, and begins a new one. Leaving its `with` block ends nothing else."""
        self._call(self._writer.write_recording_hdr, header)
        self._recording = RecordingWriter(self, header)
        return self._recording

    def write(self, well: int, start: int, samples: ArrayLike) -> None:
        """Appends samples of a well to the current recording; see `RecordingWriter.write`."""
        if self._recording is None:
            raise UsageError("No recording has been begun", self.path)
        self._recording.write(well, start, samples)

    def update_header(self, task: str, values: list[int]) -> None:
        """Replaces the list of a task, PreQC, CompoundTest or PostQC, in the file header."""
        self._call(self._writer.update_file_hdr, task, [str(value) for value in values])

    def flush(self) -> None:
        """Waits until the disk has everything. Raises `OSError` if that can't be promised."""
        if not self._call(self._writer.flush_to_disk):
            raise FileError(errno.EIO, self._reported or "The file could not be flushed", self.path)

    def close(self) -> None:
        """Finishes the last recording and closes the file. Closing it twice is not an error."""
        if not self.closed:
            self.closed = True
            self._run(self._writer.close)

    def _call(self, call: Any, *arguments: Any) -> Any:
        if self.closed:
            raise UsageError("The file was closed", self.path)
        return self._run(call, *arguments)

    def _run(self, call: Any, *arguments: Any) -> Any:
        with self._lock:
            try:
                result = call(*arguments)
            finally:
                error = self._writer.write_error()
                news, self._reported = (error if error != self._reported else ""), error
        if news:
            refused = refusal(news, self.path)
            if refused is not None:
                raise refused
            warn(f"{self.path}: {news}", WriteWarning)
        return result

    def __enter__(self) -> RawWriter:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __repr__(self) -> str:
        return printable(f"<vxfileio.RawWriter {self.path!r}{': closed' if self.closed else ''}>")


class RecordingWriter:
    """A recording that is being written. `RawWriter.recording` returns it."""

    def __init__(self, writer: RawWriter, header: _vxfileio.RawDataRecordingHdr) -> None:
        self._writer = writer
        self._ticks = {channel.ID: channel.Ticks for channel in header.WellChannels}
        self.task = header.TaskName
        self.number = header.Recording

    def write(self, well: int, start: int, samples: ArrayLike) -> None:
        """Appends one segment: samples of a well, the first at the time `start`.

        The interval between samples is that of the recording header. `samples` are `uint16`, or whole numbers from 0 to
        65535; anything else is an error, as nothing is rounded.
        """
        if self._writer._recording is not self:
            raise UsageError(f"The recording {self.task} {self.number} has ended", self._writer.path)
        if well not in self._ticks:
            raise UsageError(f"The recording header has no well {well!r}", self._writer.path)
        if not FIRST_TIME <= operator.index(start) <= LAST_TIME:
            raise UsageError(f"The time {start} has more than 64 bits", self._writer.path)
        array = _samples(samples, self._writer.path)
        self._writer._call(self._writer._writer.write_data, well, start, self._ticks[well], array)

    def __enter__(self) -> RecordingWriter:
        return self

    def __exit__(self, *_: object) -> None:
        pass


def _with_mark(header: _vxfileio.RawDataFileHdr) -> _vxfileio.RawDataFileHdr:
    """Returns the header with the mark and the version of a new file, unless it has its own."""
    made = _vxfileio.make_file_hdr(header)
    for name in ("HeaderID", "FileVersion"):
        if getattr(header, name):
            setattr(made, name, getattr(header, name))
    return made


def _samples(given: ArrayLike, path: str) -> np.ndarray:
    array = np.asarray(given)
    if array.ndim != 1 or array.size == 0:
        raise UsageError(f"Samples must be a list of at least one, not an array of shape {array.shape}", path)
    if array.dtype != np.uint16:
        if array.dtype.kind not in "iu":
            raise UsageError(f"Samples must be whole numbers, not {array.dtype}", path)
        if array.min() < 0 or array.max() > 0xFFFF:
            raise UsageError("Samples must be from 0 to 65535", path)
    return np.ascontiguousarray(array, np.uint16)
