"""Writing raw data files."""

from __future__ import annotations

import errno
import operator
import os
import threading
from typing import Any, NoReturn, Optional

import numpy as np
from numpy.typing import ArrayLike

from . import _vxfileio
from ._errors import FileError, UsageError, report
from ._raw import FIRST_TIME, LAST_TIME
from ._text import printable
from ._types import Path


class RawWriter:
    """Writes a raw data file while the recording runs.

        with vx.RawWriter("run.vxd", vx.RawDataFileHdr(PlateID="P1")) as writer:
            with writer.recording(header) as recording:
                recording.write(12, 0, samples)

    Never overwrites an existing file unless `overwrite` is set. `write` hands its segment to the operating system
    before it returns, so a crash of the process loses no written segment. If the system refuses a write, the call that
    failed raises `OSError`; the file stays valid, and the writer can still be used.

    A strict writer raises `UsageError` for anything that `vxfile verify` would report, before it writes anything. Other
    writers write it as given, and issue a `WriteWarning` if readers can't use it.

    Threads may share a writer; their calls run one at a time.
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
                os.unlink(path)  # this writer created it
            raise

    def recording(self, header: _vxfileio.RawDataRecordingHdr) -> RecordingWriter:
        """Finishes the previous recording and begins a new one. Leaving its `with` block doesn't finish it."""
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
        """Waits until everything is on the disk. Raises `OSError` if that can't be guaranteed."""
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
        report(news, self.path)
        return result

    def __enter__(self) -> RawWriter:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __reduce__(self) -> NoReturn:
        raise TypeError(f"A writer can't be pickled or copied; only one can write {self.path!r}")

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

        The recording header has the interval between samples. `samples` are `uint16`, or whole numbers from 0 to 65535;
        anything else is an error, since nothing is rounded.
        """
        if self._writer._recording is not self:
            raise UsageError(f"The recording {self.task} {self.number} has ended", self._writer.path)
        if isinstance(well, str) or operator.index(well) not in self._ticks:
            raise UsageError(f"The recording header has no well {well!r}", self._writer.path)
        if not FIRST_TIME <= operator.index(start) <= LAST_TIME:
            raise UsageError(f"The time {start} has more than 64 bits", self._writer.path)
        array = _samples(samples, self._writer.path)
        self._writer._call(self._writer._writer.write_data, well, start, self._ticks[well], array)

    def __repr__(self) -> str:
        return printable(f"<vxfileio.RecordingWriter {self.task} {self.number} of {self._writer.path!r}>")

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
            raise UsageError(f"Samples must be whole numbers from 0 to 65535, not {array.dtype}", path)
        if array.min() < 0 or array.max() > 0xFFFF:
            raise UsageError(f"Samples must be from 0 to 65535, not {array.min()} to {array.max()}", path)
    return np.ascontiguousarray(array, np.uint16)
