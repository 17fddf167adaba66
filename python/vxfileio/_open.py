"""Opening a file of any kind."""

from __future__ import annotations

import errno
import io
import os
import re
import stat
from typing import Any, Optional, Union

from ._documents import Results, Settings
from ._errors import UnknownFileError
from ._raw import Recordings
from ._types import Path
from ._vxfileio import _document_kinds, _marks

USUAL_LOOK_AHEAD, LOOK_AHEAD = 64 << 10, 16 << 20
"""The number of bytes of a document that are searched for its section; more only if they have our root."""

DOCUMENT_MARKS = (
    *((rf"<{section}[\s/>]".encode(), section.lower()) for _, section, _ in _document_kinds),
    *((f"<FileType>{file_type}<".encode(), section.lower()) for _, section, file_type in _document_kinds),
)

ROOT_MARK = b"<" + _marks["root"] + rb"[\s/>]"

KINDS_THAT_ARE_NOT_READ = {
    "workbook": "The file is a workbook; a spreadsheet program reads it",
    "empty": "The file is empty",
    "pipe": "The file is a pipe; put what comes out of it into a file and open that",
    "unknown": "The file isn't one of the system",
}


def _may_be_document(head: bytes) -> bool:
    return head.removeprefix(b"\xef\xbb\xbf").lstrip(b" \t\r\n").startswith(b"<")


def kind_of(path: Path) -> str:
    """Returns the kind of a file by its content: "raw", "settings", "results", "workbook", "empty" or "unknown".

    A pipe has the kind "pipe", and nothing is read from it.
    """
    name = os.fspath(path)
    if stat.S_ISFIFO(os.stat(name).st_mode):
        return "pipe"
    with io.open(name, "rb") as file:
        try:
            head = file.read(USUAL_LOOK_AHEAD)
            if _may_be_document(head) and not any(re.search(mark, head) for mark, _ in DOCUMENT_MARKS):
                more = head + file.read(LOOK_AHEAD - len(head))
                head = more if re.search(ROOT_MARK, more) else head
        except OSError as error:
            raise OSError(error.errno, error.strerror, name) from None
    if not head:
        return "empty"
    if head.startswith(_marks["raw"]):
        return "raw"
    if head.startswith(_marks["workbook"]):
        return "workbook"
    if _may_be_document(head):
        return next((kind for mark, kind in DOCUMENT_MARKS if re.search(mark, head)), "unknown")
    return "unknown"


def open(path: Path, *, settings: Union[None, Path, Settings] = None, ticks_per_second: Optional[float] = None,
         unfinished: bool = False, partial: bool = False) -> Union[Recordings, Settings, Results]:
    """Opens a file of any kind; its content decides which.

    Returns `Recordings` for raw data, `Settings` for settings, `Results` for results.

    `settings` are those of the run, as an object or a path. With them, wells of raw data can be named by their labels,
    and tables of results have more columns. `ticks_per_second` is the number of the instrument's time units in a
    second, for times in seconds. With `unfinished`, a recording that is still being written can be read up to its last
    complete segment. With `partial`, a damaged file is read up to the damage, which is otherwise an error. A segment
    that claims far more samples than the file has is an error even then.

    Raises `OSError` if the system can't read the file, `UnknownFileError` if it isn't one of ours, and
    `DamagedFileError` if it is damaged.
    """
    kind = kind_of(path)
    if kind == "settings":
        return Settings.read(path, partial)
    if kind == "results":
        return Results.read(path, partial, settings)
    if kind == "raw":
        return Recordings(path, settings=settings, ticks_per_second=ticks_per_second, unfinished=unfinished,
                          partial=partial)
    raise UnknownFileError(errno.EINVAL, KINDS_THAT_ARE_NOT_READ[kind], os.fsdecode(path))


def open_raw(path: Path, **options: Any) -> Recordings:
    """Opens a raw data file, with the options of `open`. Raises `UnknownFileError` for files of all other kinds."""
    run = open(path, **options)
    if not isinstance(run, Recordings):
        raise UnknownFileError(errno.EINVAL, "The file isn't a raw data file", os.fsdecode(path))
    return run
