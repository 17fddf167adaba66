"""Reads thousands of files with dask (https://dask.org), as lazy tables and arrays, on any of its schedulers.

    import vxfileio.dask

    recordings = vxfileio.dask.catalog("plates/**/*.vxd")
    print(recordings[recordings.error.notnull()].compute())

Functions for many files take a list of paths, or one path or pattern (`**` matches any number of folders). They open no
file until the result is computed, unless stated otherwise. Tables list the files in the order given. A bad file becomes
a row with its `error` and missing values (`pandas.NA`, `None` or `nan`); it never affects the other files. Paths in
tables are absolute, and workers read the files under these paths.

Each task reads `files_per_partition` files, by default 1 to 64, so that there are enough tasks for all workers. If a
worker dies, repeating its tasks has the same result. Each call makes new keys, so dask never reuses earlier results.
"""

from __future__ import annotations

import errno
import glob
import inspect
import os
import uuid
from collections.abc import Iterable, Iterator, Mapping, Sequence
from dataclasses import dataclass, replace
from functools import partial
from itertools import groupby
from typing import Any, Callable, Optional, Union, cast

import dask.array
import dask.dataframe
import numpy as np
import pandas
from numpy.typing import NDArray

from ._documents import Results
from ._errors import EmptyFileError, Error, FileError, UnknownFileError, UsageError
from ._groups import Group, groups_of, read_run
from ._open import KINDS_THAT_ARE_NOT_READ, kind_of, open_raw
from ._raw import Recording, Well
from ._types import Path, sample_type

Paths = Union[Path, Iterable[Path]]

Row = dict[str, Any]

Piece = Union[list[Row], pandas.DataFrame]
"""Rows of a table, in either form."""

BAD_FILE = (Error, OSError)

EMPTY = KINDS_THAT_ARE_NOT_READ["empty"]

CATALOG = {"path": "object", "Guid": "object", "plate": "object", "compound": "object", "task": "object",
           "number": "Int64", "dose": "Int64", "wells": "Int64", "samples": "Int64", "state": "object",
           "error": "object"}

RESPONSES = {"path": "object", "Guid": "object", "task": "object", "recording": "Int64", "dose": "UInt64",
             "dose_text": "object", "well": "Int64", "label": "object", "response": "object", "value": "float64",
             "normalized": "boolean", "error": "object"}

KNOWN = {"path": "object", "task": "object", "number": "Int64", "dose": "Int64"}

MOST_FILES, LEAST_PARTITIONS = 64, 32


def catalog(paths: Paths, files_per_partition: Optional[int] = None) -> dask.dataframe.DataFrame:
    """Returns a table of raw data files with one row per recording. Reads no samples.

    Columns: `path`, `Guid`, `plate`, `compound`, `task`, `number`, `dose` in picomolar, `wells`, `samples` (of all
    wells; only those that are certainly in the file), `state` and `error`. The state is "finished", "unfinished" (also
    if the file is empty), "damaged" (also if it isn't a raw data file), or, if the system refuses to read the file,
    "unreadable". A path that can't be read, such as a dangling link, and a file whose recordings can't be listed have
    one row each. Reads the headers of segments only if one of the last three columns is used.
    """
    return _table(_catalog_of, CATALOG, paths, files_per_partition)


def responses(paths: Paths, files_per_partition: Optional[int] = None) -> dask.dataframe.DataFrame:
    """Returns the responses in results files: `path`, `Guid`, the columns of `Results.responses`, and `error`."""
    return _table(_responses_of, RESPONSES, paths, files_per_partition)


def map_recordings(paths: Paths, function: Callable[..., Any],
                   meta: Union[None, Mapping[str, Any], pandas.DataFrame] = None, *,
                   files_per_partition: Optional[int] = None, **options: Any) -> dask.dataframe.DataFrame:
    """Calls `function(recording)` for each recording of raw data files. Returns a table of all results.

    The function returns a mapping for one row, a DataFrame for any number of rows, or one value, for a column `value`.
    The first columns of the table are `path`, `task`, `number` and `dose`; the last is `error`, what is wrong with the
    file or the recording. Samples missing at the end of a cut file are read as 0; such a row has both result and
    `error`. If the function raises `vxfileio.Error` or `OSError`, that becomes the `error` of a row; `compute` raises
    all other exceptions.

    `meta` has the columns of the function and their types. Without it, the function is called at once for the first
    recording that can be read, to find the types. Whole numbers and flags get pandas' nullable types. If the function
    has a parameter `columns`, it receives the names of the columns that will be used, so that it can skip other work.
    `options` are those of `vxfileio.open`. For processes and clusters, the function must be picklable.
    """
    names = _list(paths)
    read = partial(_results_of, function, options, "columns" in inspect.signature(function).parameters)
    types = _first_types(read, names) if meta is None else getattr(meta, "dtypes", meta)
    known = {column: _nullable(dtype) for column, dtype in types.items()}
    return _table(read, {**KNOWN, **known, "error": "object"}, names, files_per_partition)


def samples(path: Path, recording: Union[int, tuple[str, int]] = 0, wells: Optional[Sequence[Well]] = None, *,
            scaled: bool = False, chunk_bytes: int = 64 << 20, **options: Any) -> dict[Well, dask.array.Array]:
    """Returns the samples of one recording as dask arrays: one for each well, by the name used in `wells`.

    `recording` is an index in the file, or `(task, number)`. The arrays have the same content as those that
    `Recording.read` returns. Headers are read at once; samples only when a result needs them. Wells that were sampled
    at the same times share chunks of at most `chunk_bytes`, which end at gaps and overlaps.
    `options` are those of `vxfileio.open`.
    """
    run = open_raw(os.path.abspath(os.fsdecode(path)), **options)
    found = run.recordings[recording]
    known: dict[int, Well] = {channel.ID: channel.ID for channel in found.index().wells()}
    ids = known if wells is None else run.well_names(wells)
    rows: dict[int, dask.array.Array] = {}
    for group in groups_of(found, ids):
        lazy = _LazySamples(found, group, scaled)
        together = dask.array.from_array(lazy, lazy.chunks(chunk_bytes), name=False, fancy=False,
                                         meta=np.empty((0, 0), lazy.dtype))
        rows.update((well, together[place]) for place, well in enumerate(group.wells))
    return {name: rows[well] for well, name in ids.items()}


class _LazySamples:
    """The samples of wells with the same runs, with what dask needs of an array. Is pickled by path, without samples."""

    ndim = 2

    def __init__(self, recording: Recording, group: Group, scaled: bool) -> None:
        self.recording = recording
        self.group = group
        self.scaled = scaled
        self.dtype = sample_type(scaled)
        self.shape = (len(group.wells), sum(run.samples for run in group.runs))

    def chunks(self, most_bytes: int) -> tuple[tuple[int, ...], tuple[int, ...]]:
        """Returns the lengths of chunks along both axes."""
        most = max(most_bytes // (self.dtype.itemsize * self.shape[0]), 1)
        lengths = [min(most, run.samples - first) for run in self.group.runs for first in range(0, run.samples, most)]
        return self.shape[:1], tuple(lengths) or (0,)

    def __getitem__(self, key: tuple[Union[int, slice], Union[int, slice]]) -> NDArray[Any]:
        rows, columns = key
        span = range(self.shape[1])[columns]
        positions = range(span, span + 1) if isinstance(span, int) else span
        wells = np.atleast_1d(np.array(self.group.wells)[rows]).tolist()
        block = self._read(wells, positions)
        return block[0 if isinstance(rows, int) else slice(None), 0 if isinstance(span, int) else slice(None)]

    def _read(self, wells: list[int], positions: range) -> NDArray[Any]:
        first, stop = (min(positions), max(positions) + 1) if positions else (0, 0)
        parts = [np.empty((len(wells), 0), self.dtype)]
        for number, run in enumerate(self.group.runs):
            begin, end = max(first - run.offset, 0), min(stop - run.offset, run.samples)
            if begin < end:
                parts.append(read_run(self.recording, wells, self.group.runs, number, begin, end - begin, self.scaled))
        whole = parts[-1] if len(parts) == 2 else np.concatenate(parts, axis=1)
        return whole[:, ::positions.step]


@dataclass(frozen=True)
class _Table:
    """Makes one partition of a table. dask reduces `columns` to those that are used."""

    read: Callable[[str, Sequence[str]], Iterator[Piece]]
    dtypes: Mapping[str, str]
    columns: Sequence[str]

    def project_columns(self, columns: Sequence[str]) -> _Table:
        return replace(self, columns=columns)

    def frame(self, rows: list[Row]) -> pandas.DataFrame:
        """Returns rows as a table with `columns`."""
        missing = {column: pandas.NA if dtype[0].isupper() or dtype == "boolean" else None
                   for column, dtype in self.dtypes.items()}
        columns = {column: [row.get(column, missing[column]) for row in rows] for column in self.columns}
        return pandas.DataFrame({column: pandas.Series(values, dtype=self.dtypes[column])
                                 for column, values in columns.items()}, columns=list(self.columns))

    def pieces(self, path: str) -> list[Piece]:
        """Returns the rows of a file, or one row with its error."""
        try:
            found = list(self.read(path, self.columns))
        except BAD_FILE as error:
            return [[{"path": path, "state": _state_of(error), "error": _text_of(error, path)}]]
        unknown = {column for piece in found for part in (piece if isinstance(piece, list) else [piece])
                   for column in part} - self.dtypes.keys()
        if unknown:
            raise ValueError(f"Columns that meta doesn't have: {', '.join(map(str, unknown))}")
        return found

    def __call__(self, paths: Sequence[str]) -> pandas.DataFrame:
        types = {column: self.dtypes[column] for column in self.columns}
        frames = []
        for form, pieces in groupby((piece for path in paths for piece in self.pieces(path)), type):
            if form is list:
                frames.append(self.frame([row for rows in pieces for row in rows]))
            else:
                frames.append(pandas.concat(pieces, ignore_index=True).reindex(columns=self.columns).astype(types))
        return pandas.concat(frames, ignore_index=True) if frames else self.frame([])


def _list(paths: Paths) -> list[str]:
    """Returns absolute paths, so that workers in other folders find the same files."""
    if not isinstance(paths, (str, bytes, os.PathLike)):
        return [os.path.abspath(os.fsdecode(path)) for path in cast(Iterable[Path], paths)]
    name = os.path.abspath(os.fsdecode(paths))
    found = [] if os.path.lexists(name) else sorted(glob.glob(name, recursive=True))
    return found or [name]


def _table(read: Callable[[str, Sequence[str]], Iterator[Piece]], dtypes: Mapping[str, str], paths: Paths,
           files_per_partition: Optional[int]) -> dask.dataframe.DataFrame:
    if files_per_partition is not None and files_per_partition < 1:
        raise UsageError(f"files_per_partition must be at least 1, not {files_per_partition!r}")
    names = _list(paths)
    size = files_per_partition or max(min(MOST_FILES, len(names) // LEAST_PARTITIONS), 1)
    table = _Table(read, dtypes, tuple(dtypes))
    parts = [tuple(names[first:first + size]) for first in range(0, len(names), size)] or [()]
    return dask.dataframe.from_map(table, parts, meta=table.frame([]), enforce_metadata=False,
                                   token=uuid.uuid4().hex, label="vxfileio")


def _state_of(error: Exception) -> str:
    if isinstance(error, EmptyFileError) or isinstance(error, FileError) and error.strerror == EMPTY:
        return "unfinished"
    return "damaged" if isinstance(error, FileError) else "unreadable"


def _text_of(error: Exception, path: str) -> str:
    """Returns what is wrong, with the name of the file unless it is `path`."""
    text = getattr(error, "strerror", None) or getattr(error, "text", None) or str(error)
    file = getattr(error, "filename", None)
    return text if file in (None, path) else f"{text}: {file!r}"


def _missing_text(recording: Recording) -> Optional[str]:
    """Returns what is wrong with the samples of a recording that can be read, or None."""
    if recording.damage or not recording.finished:
        return recording.damage or None
    missing = int(recording.segments()["samples"].sum()) - recording.certain_samples
    return f"{missing} samples are beyond the end of the file" if missing else None


def _catalog_of(path: str, columns: Sequence[str]) -> Iterator[Piece]:
    with open_raw(path, unfinished=True, partial=True) as run:
        header = run.header
        known = {"path": path, "Guid": header.Guid, "plate": header.PlateID, "compound": header.CompoundName}
        yield [{**known, "task": recording.task, "number": recording.number, "dose": recording.dose,
                "wells": len(recording.wells), **_condition_of(recording, columns)} for recording in run.recordings]


def _condition_of(recording: Recording, columns: Sequence[str]) -> Row:
    """Returns the columns that need the segments. Reads no segment if `columns` has none of them."""
    if not {"samples", "state", "error"} & set(columns):
        return {}
    error = _missing_text(recording)
    state = "damaged" if error else "finished" if recording.finished else "unfinished"
    return {"samples": recording.certain_samples, "state": state, "error": error}


def _responses_of(path: str, columns: Sequence[str]) -> Iterator[Piece]:
    if kind_of(path) != "results":
        raise UnknownFileError(errno.EINVAL, "The file isn't a results file", path)
    results = Results.read(path)
    yield results.responses.assign(path=path, Guid=results.Header.Guid, error=None)


def _results_of(function: Callable[..., Any], options: Mapping[str, Any], takes_columns: bool, path: str,
                columns: Optional[Sequence[str]]) -> Iterator[Piece]:
    more = {"columns": columns} if takes_columns else {}
    with open_raw(path, **options) as run:
        for recording in run.recordings:
            known = {"path": path, "task": recording.task, "number": recording.number, "dose": recording.dose}
            try:
                error = _missing_text(recording)
                result = function(recording, **more)
            except BAD_FILE as failure:
                yield [{**known, "error": _text_of(failure, path)}]
                continue
            yield _with_names(result, {**known, "error": error})


def _with_names(result: Any, known: Row) -> Piece:
    """Returns the result of a function as rows, with the columns in `known` added."""
    if not isinstance(result, (Mapping, pandas.DataFrame)):
        result = {"value": result}
    twice = known.keys() & set(result)
    if twice:
        raise ValueError(f"The table has columns of these names already: {', '.join(sorted(twice))}")
    return result.assign(**known) if isinstance(result, pandas.DataFrame) else [{**known, **result}]


def _first_types(read: Callable[..., Iterator[Piece]], paths: Sequence[str]) -> Mapping[str, Any]:
    """Returns the columns of a function and their types, from its first result."""
    errors: list[str] = []
    for path in paths:
        try:
            for piece in read(path, None):
                frame = pandas.DataFrame(piece)
                types = frame.drop(columns=[*KNOWN, "error"]).dtypes
                if len(types):
                    return types
                errors.extend(frame["error"].dropna())
        except BAD_FILE as error:
            errors.append(str(error))
    reason = f" ({errors[0]})" if errors else ""
    raise UsageError(f"No recording can be read{reason}; say with meta=... what the function returns")


def _nullable(dtype: Any) -> str:
    """Returns the type of a column whose values may be missing."""
    name = pandas.api.types.pandas_dtype(dtype).name
    if name.startswith(("int", "uint")):
        return name.replace("i", "I").replace("u", "U")
    return "boolean" if name == "bool" else name
