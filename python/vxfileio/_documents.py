"""Settings, results and workbooks: reading, tables, saving."""

from __future__ import annotations

import contextlib
import errno
import os
from collections.abc import Iterator
from typing import TYPE_CHECKING, Any, Optional, TypeVar, Union

import numpy as np

from . import _vxfileio
from ._errors import DamagedFileError, FileError, UnknownFileError, UsageError, refusal, report
from ._text import printable, table
from ._types import Path

if TYPE_CHECKING:
    import pandas

Document = TypeVar("Document", bound="_Document")

FIRST_COMPOUND = -1

OTHER_KIND = "This is a"
"""The beginning of the library's error for a file of another kind."""


class _Document:
    """The base of settings and results. The content is in memory; there is nothing to close."""

    path: Optional[str] = None
    """The file that was read, or None."""

    read_error: str = ""
    """What was wrong with the document, if it was opened with `partial=True`."""

    def __enter__(self: Document) -> Document:
        return self

    def __exit__(self, *_: object) -> None:
        pass


def _read(made: type[Document], read: Any, path: Path, partial: bool) -> Document:
    document, error = read(made, os.fsencode(path))
    document.path = os.fsdecode(path)
    document.read_error = error
    if error and not partial:
        if error.startswith(OTHER_KIND):
            raise UnknownFileError(errno.EINVAL, error, document.path)
        raise DamagedFileError(errno.EBADMSG, error, document.path)
    return document


@contextlib.contextmanager
def _reserved(path: Path, overwrite: bool) -> Iterator[bytes]:
    """Creates the file first unless it may be overwritten, so that no existing file is ever replaced by accident.

    Removes it again if nothing was written to it.
    """
    name = os.fsencode(path)
    if overwrite:
        yield name
        return
    os.close(os.open(path, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o666))
    try:
        yield name
    finally:
        with contextlib.suppress(FileNotFoundError):
            if os.path.getsize(path) == 0:
                os.unlink(path)


class Settings(_Document, _vxfileio.SettingsContent):
    """The settings of a run: a file header and the property sets.

    Change the attributes, then `save`. Lists are tuples and mappings are read-only: assign a new one to add or remove
    entries. The entries themselves can be changed in place. After a list is replaced, entries of the old one stay
    valid, but are no longer part of the settings.
    """

    @classmethod
    def read(cls, path: Path, partial: bool = False) -> Settings:
        """Reads a settings file with any name. With `partial`, reads as much of a damaged file as possible."""
        return _read(cls, _vxfileio.read_settings, path, partial)

    def save(self, path: Path, *, overwrite: bool = False, compound: int = FIRST_COMPOUND) -> None:
        """Writes a settings file with the compound at this index of the plate's list, and its wells.

        Raises `FileExistsError` if the file exists, unless `overwrite` is set. An existing file is replaced only when
        the new one is complete. Sets `Analyzer.AnalyzingDate` in the file to the current time. Cuts a text at its first
        NUL, with a `WriteWarning`.
        """
        with _reserved(path, overwrite) as name:
            error = _vxfileio.write_settings(self, name, compound)
        report(error, os.fsdecode(path))

    def __repr__(self) -> str:
        wells = sum(well is not None for well in self.RecordPlate.Data.Wells)
        return printable(f"<vxfileio.Settings {self.path!r}: plate {self.RecordPlate.Data.PlateID!r}, {wells} wells, "
                         f"{len(self.RecordPlate.Data.Series)} doses>")

    def _repr_html_(self) -> str:
        rows = [(section, name, value) for section in self._fields
                for name, value in getattr(self, section).to_dict().items()
                if not isinstance(value, (tuple, dict))]
        return table(f"Settings {self.path}", ("section", "attribute", "value"), rows, most_rows=len(rows))


def settings_of(given: Union[None, Path, Settings]) -> Optional[Settings]:
    """Returns settings. Reads them if a path is given."""
    return given if given is None or isinstance(given, Settings) else Settings.read(given)


class Results(_Document, _vxfileio.ResultsContent):
    """The results of an analysis, as a tree (`Tasks`) and as tables.

    The tables have the columns of `vxfile table`. With settings (`vxfileio.open(path, settings=...)`), tables of wells
    also have `analysed` and, for responses, `mark`. Each access makes a new table from the tree. Needs pandas.
    """

    settings: Optional[Settings] = None
    """The settings of the run, for labels, marks and workbooks, or None."""

    @classmethod
    def read(cls, path: Path, partial: bool = False, settings: Union[None, Path, Settings] = None) -> Results:
        """Reads a results file with any name. With `partial`, reads as much of a damaged file as possible."""
        results = _read(cls, _vxfileio.read_results, path, partial)
        results.settings = settings_of(settings)
        return results

    @property
    def responses(self) -> pandas.DataFrame:
        """One row per response of a well: task, recording, dose, dose_text, well, label, response, value, normalized."""
        return self._table("responses")

    @property
    def means(self) -> pandas.DataFrame:
        """One row per mean of a recording: task, recording, dose, dose_text, response, mean, sd, wells."""
        return self._table("means")

    @property
    def beats(self) -> pandas.DataFrame:
        """One row per beat of a well: task, recording, dose, dose_text, well, label, beat, time, interval.

        `interval` is the time since the previous beat; it is missing for the first.
        """
        import pandas

        frame = self._table("beats")
        intervals = frame["interval"].to_numpy()
        frame["interval"] = pandas.arrays.IntegerArray(intervals, intervals == np.iinfo(np.int64).min)
        return frame

    @property
    def averages(self) -> pandas.DataFrame:
        """One row per sample of a well's average: task, recording, dose, dose_text, well, label, sample, time, value."""
        return self._table("averages")

    def _table(self, name: str) -> pandas.DataFrame:
        import pandas

        return pandas.DataFrame(_vxfileio.results_table(self, name, self.settings), copy=False)

    def save(self, path: Path, *, overwrite: bool = False) -> None:
        """Writes a results file.

        Files have an average's samples with six significant digits, and the findings and responses of a well only if it
        has `FPfastDetectionTimes`. `TaskName` of a task and `Label` of a response must be their keys in the mappings:
        reading takes the keys from there.

        Raises `FileExistsError` if the file exists, unless `overwrite` is set. An existing file is replaced only when
        the new one is complete. Cuts a text at its first NUL, with a
        `WriteWarning`.
        """
        with _reserved(path, overwrite) as name:
            error = _vxfileio.write_results(self, name)
        report(error, os.fsdecode(path))

    def export(self, path: Path, settings: Union[None, Path, Settings] = None, *, overwrite: bool = False) -> None:
        """Writes workbooks: one with all responses to `path`, and one for each well that the plate marks as new.

        Uses these settings, an object or a path, or else those that the results were opened with. The name of a well's
        workbook has "-" and the well's label before the extension. If any of the files exists and `overwrite` isn't
        set, raises `FileExistsError` and writes nothing. If some can't be written, the others are, and stay; then the
        error is raised, and another try needs `overwrite`.
        """
        known = settings_of(settings) or self.settings
        if known is None:
            raise UsageError("A workbook needs the settings of the run: pass settings=...", os.fsdecode(path))
        with contextlib.ExitStack() as stack:
            for other in dict.fromkeys(_vxfileio.well_workbooks(known, os.fsencode(path))):
                stack.enter_context(_reserved(os.fsdecode(other), overwrite))
            name = stack.enter_context(_reserved(path, overwrite))
            error = _vxfileio.write_workbooks(self, known, name)
        if error:
            raise refusal(error, os.fsdecode(path)) or FileError(errno.EIO, error, os.fsdecode(path))

    def __repr__(self) -> str:
        tasks = ", ".join(f"{name} with {len(task.Recordings)} recordings" for name, task in self.Tasks.items())
        return printable(f"<vxfileio.Results {self.path!r}: {tasks or 'no tasks'}>")

    def _repr_html_(self) -> str:
        rows = [(name, number, _vxfileio.dose_text(recording.Dose), len(recording.Wells))
                for name, task in self.Tasks.items() for number, recording in enumerate(task.Recordings)]
        return table(f"Results {self.path}", ("task", "recording", "dose", "wells"), rows)
