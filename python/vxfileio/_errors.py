"""The exceptions, and the table that maps the library's failures to them."""

import errno
import os
import re
import sys
import warnings
from typing import NamedTuple, NoReturn, Optional

from ._vxfileio import _document_kinds, _texts


class Error(Exception):
    """The base of the package's own exceptions."""


class FileError(Error, OSError):
    """A file can't be read or written. Has `errno`, `strerror` and `filename`."""


class DamagedFileError(FileError):
    """A file of the system is damaged where it is being read."""


class UnknownFileError(FileError):
    """A file isn't one of the system, or not of the kind that was asked for."""


class EmptyFileError(FileError):
    """A raw data file has no recording yet."""


class UsageError(Error, ValueError):
    """A call or a value isn't valid. Has `filename`, which is None if no file is involved."""

    def __init__(self, text: str, filename: Optional[str] = None) -> None:
        super().__init__(text, filename)
        self.text = text
        self.filename = filename

    def __str__(self) -> str:
        return f"{self.text}: {self.filename!r}" if self.filename else self.text


class NoSuchRecordingError(UsageError, KeyError, IndexError):
    """A file has no such recording."""


class NoSuchWellError(UsageError, KeyError):
    """A recording has no such well, or settings have no such label."""


class UnfinishedRecordingError(UsageError):
    """A recording isn't finished. Open the file with `unfinished=True` to read what is there."""


class MissingSamplesWarning(UserWarning):
    """Samples are beyond the end of a cut file, and were read as 0."""


class WriteWarning(UserWarning):
    """A value that readers can't use was written as given."""


def warn(text: str, category: type[Warning]) -> None:
    """Issues a warning at the line outside the package that called it."""
    level, frame = 2, sys._getframe(1)
    while frame.f_back is not None and frame.f_globals.get("__package__") == __package__:
        level, frame = level + 1, frame.f_back
    warnings.warn(text, category, stacklevel=level)


class Row(NamedTuple):
    """A failure, by the beginning and end of its text, with its exception and the exception's `errno`.

    0 means the `errno` that the system set; None, that the exception has no `errno`.
    """

    begin: str
    end: str
    exception: type
    errno: Optional[int]


OPEN_FAILED = (_texts["CannotOpen"], *(f"Could not open {name}: " for name, _, _ in _document_kinds))

TABLE = (
    Row(_texts["CannotOpen"], _texts["Exists"], OSError, errno.EEXIST),
    *(Row(text, "", OSError, 0) for text in OPEN_FAILED),
    Row(_texts["NotOurFile"], "", UnknownFileError, errno.EINVAL),
    Row(_texts["EmptyFile"], "", EmptyFileError, errno.ENODATA),
    Row(_texts["BadRecordingHdr"], "", DamagedFileError, errno.EBADMSG),
    Row(_texts["BadSegmentPosition"], "", DamagedFileError, errno.EBADMSG),
    Row(_texts["BadSegmentHdr"], "", DamagedFileError, errno.EBADMSG),
    Row(_texts["NoSuchRecording"], "", NoSuchRecordingError, None),
    Row(_texts["Unfinished"], "", UnfinishedRecordingError, None),
    Row("", "", UsageError, None),
)


def exception_for(text: str, path: str, code: int) -> Exception:
    """Returns the exception for a failure of the library: its text, its file and `errno` after it."""
    row = next(row for row in TABLE if text.startswith(row.begin) and text.endswith(row.end))
    if row.errno is None:
        made: Exception = row.exception(text, path or None)
    elif row.exception is OSError:
        number = row.errno or code or (errno.EISDIR if os.path.isdir(path) else errno.EIO)
        made = OSError(number, os.strerror(number), path)
    else:
        made = row.exception(row.errno, text, path)
    return made


def fail(text: bytes, path: bytes, code: int) -> NoReturn:
    """Raises the exception for a failure. The binding calls it."""
    raise exception_for(text.decode("utf-8", "surrogateescape"), os.fsdecode(path), code)


REFUSED_STEP = re.compile(r".*?, (opening|closing|replacing|flushing|writing \d+ bytes at \d+ of) ")
"""Matches a text of `GetWriteError` that reports a failed system call, for any reason."""


def refusal(text: str, path: str) -> Optional[OSError]:
    """Returns the exception for a text of `GetWriteError`, or None if it isn't about an error of the system."""
    found = [number for number in errno.errorcode if text.startswith(os.strerror(number))]
    if not found:
        return FileError(errno.EIO, text, path) if REFUSED_STEP.match(text) else None
    longest = max(found, key=lambda number: len(os.strerror(number)))  # "No such device or address", not "No such device"
    return OSError(longest, text, path)


def report(text: str, path: str) -> None:
    """Raises a text of `GetWriteError` that is about an error of the system, and warns of any other."""
    if not text:
        return
    refused = refusal(text, path)
    if refused is not None:
        raise refused
    warn(f"{path}: {text}", WriteWarning)
