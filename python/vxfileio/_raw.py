"""Raw data files: recordings and their samples."""

from __future__ import annotations

import numbers
import operator
import os
import re
import weakref
from collections.abc import Iterable, Iterator, Mapping, Sequence
from typing import TYPE_CHECKING, Any, Optional, Union, overload

import numpy as np
from numpy.typing import NDArray

from . import _vxfileio
from ._documents import Settings, settings_of
from ._errors import MissingSamplesWarning, NoSuchRecordingError, NoSuchWellError, UsageError, warn
from ._text import printable, table
from ._types import Path, sample_type

if TYPE_CHECKING:
    import pandas
    import xarray

Well = Union[int, str]
"""A well: its ID, or its label if the settings are known."""

NO_WELL = "The recording has no well {!r}"

FIRST_TIME, LAST_TIME = -(2**63), 2**63 - 1


def normal_label(label: str) -> str:
    """Returns a label without leading zeros in its number: "B7" for "B07"."""
    return re.sub(r"^([^0-9]*)0+(?=[0-9])", r"\1", label)


class Recordings:
    """An open raw data file. `vxfileio.open` returns it.

    After it is closed, or its `with` block ends, nothing more can be read; arrays that were read stay valid. Any number
    of threads may read at the same time. Pickling stores the path and the options of `open`; unpickling opens the file
    again.
    """

    def __init__(self, path: Path, *, settings: Union[None, Path, Settings] = None,
                 ticks_per_second: Optional[float] = None, unfinished: bool = False, partial: bool = False) -> None:
        self.path: str = os.fsdecode(path)
        self.settings = settings_of(settings)
        if not (ticks_per_second is None or _is_rate(ticks_per_second)):
            raise UsageError(f"ticks_per_second must be a number above 0, not {ticks_per_second!r}", self.path)
        self.ticks_per_second = None if ticks_per_second is None else float(ticks_per_second)
        self.unfinished = unfinished
        self.partial = partial
        self._absolute = os.path.abspath(self.path)
        self._file: Optional[_vxfileio.RawDataFile] = _vxfileio.RawDataFile(os.fsencode(path))
        self.header: _vxfileio.RawDataFileHdr = self._file.header()
        self._headers = self._file.recordings()
        self._indexes: dict[int, _vxfileio.RecordingIndex] = {}
        # Recordings keep their file. With references in both directions, a file that a program drops would stay open
        # until the next garbage collection.
        self._made: weakref.WeakValueDictionary[int, Recording] = weakref.WeakValueDictionary()

    @property
    def recordings(self) -> RecordingList:
        """The recordings of the file, finished or not."""
        return RecordingList(self)

    def close(self) -> None:
        """Closes the file. Closing it twice is not an error."""
        self._file = None
        self._indexes.clear()

    @property
    def closed(self) -> bool:
        """Whether the file was closed."""
        return self._file is None

    @property
    def tasks(self) -> tuple[str, ...]:
        """The names of the tasks, in the order of their first recordings."""
        return tuple(dict.fromkeys(recording.task for recording in self.recordings))

    def open_file(self) -> _vxfileio.RawDataFile:
        """Returns the binding's file. Raises `UsageError` if it was closed."""
        if self._file is None:
            raise UsageError("The file was closed", self.path)
        return self._file

    def well_id(self, well: Well) -> int:
        """Returns the ID of a well. Labels need the settings of the run."""
        if not isinstance(well, str):
            return operator.index(well)
        if self.settings is None:
            raise UsageError(f"The label {well!r} needs the settings: open the file with settings=...", self.path)
        found = {record.WellID for record in self.settings.RecordPlate.Data.Wells
                 if record is not None and normal_label(record.Label) == normal_label(well)}
        if len(found) != 1:
            raise NoSuchWellError(f"The settings have {'no' if not found else 'more than one'} well {well!r}", self.path)
        return found.pop()

    def well_names(self, wells: Iterable[Well]) -> dict[int, Well]:
        """Returns the names in a list of wells, by ID. A well that is named twice has its first name."""
        names: dict[int, Well] = {}
        if not isinstance(wells, (str, bytes)) and np.iterable(wells):
            for name in wells:
                names.setdefault(self.well_id(name), name)
        if not names:
            raise UsageError(f"wells must be a list of at least one well, not {wells!r}", self.path)
        return names

    def label(self, well: Well) -> str:
        """Returns the label of a well, or its ID as text if it isn't known."""
        known = self.settings.RecordPlate.Data.Wells if self.settings is not None else ()
        wanted = self.well_id(well)
        labels = (record.Label for record in known if record is not None and record.WellID == wanted)
        return next(labels, "") or str(wanted)

    def __enter__(self) -> Recordings:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __reduce__(self) -> tuple:
        options = {name: getattr(self, name) for name in ("settings", "ticks_per_second", "unfinished", "partial")}
        return _reopen, (self._absolute, options)

    def __repr__(self) -> str:
        state = "closed" if self.closed else f"{len(self.recordings)} recordings of {', '.join(self.tasks)}"
        return printable(f"<vxfileio.Recordings {self.path!r}: {state}>")

    def _repr_html_(self) -> str:
        rows = [(i, r.task, r.number, r.dose, len(r.wells), r.finished) for i, r in enumerate(self.recordings)]
        heads = ("", "task", "number", "dose in pM", "wells", "finished")
        return table(f"Recordings {self.path}", heads, rows)


def _is_rate(value: Any) -> bool:
    try:
        return isinstance(value, numbers.Real) and 0 < float(value) < float("inf")
    except OverflowError:  # an int or a fraction beyond the largest float
        return False


def _reopen(path: str, options: dict[str, Any]) -> Recordings:
    return Recordings(path, **options)


def _recording_of(run: Recordings, place: int) -> Recording:
    return run.recordings[place]


class RecordingList(Sequence["Recording"]):
    """The recordings of a file, in its order: by index, from 0, or by `(task, number)`.

    If several recordings have the same task and number, that finds the last finished one.
    """

    def __init__(self, run: Recordings) -> None:
        self._run = run

    def _at(self, place: int) -> Recording:
        """Returns the recording at a place, the same object as before if it is still in use."""
        made = self._run._made.get(place)
        return self._run._made.setdefault(place, Recording(self._run, place)) if made is None else made

    def __len__(self) -> int:
        return len(self._run._headers)

    def __iter__(self) -> Iterator[Recording]:
        return map(self._at, range(len(self)))

    @overload
    def __getitem__(self, key: Union[int, tuple[str, int]]) -> Recording: ...
    @overload
    def __getitem__(self, key: slice) -> list[Recording]: ...

    def __getitem__(self, key: Union[int, slice, tuple[str, int]]) -> Union[Recording, list[Recording]]:
        if isinstance(key, slice):
            return [self._at(place) for place in range(len(self))[key]]
        place: Optional[int] = None
        if isinstance(key, tuple) and len(key) == 2 and isinstance(key[0], str):
            task, number = key[0], operator.index(key[1])
            if -(2**31) <= number < 2**31:
                place = self._run.open_file().find(task, number)
        elif isinstance(key, tuple) or not hasattr(key, "__index__"):
            raise TypeError(f"A recording has an index or (task, number), not {key!r}")
        elif -len(self) <= operator.index(key) < len(self):
            place = range(len(self))[key]
        if place is None:
            raise NoSuchRecordingError(f"The file has no recording {key!r}", self._run.path)
        return self._at(place)

    def __repr__(self) -> str:
        return "[" + ",\n ".join(map(repr, self)) + "]"

    def _repr_html_(self) -> str:
        return self._run._repr_html_()


class Recording:
    """One recording: its header, and the samples of its wells.

    Times are in the instrument's time unit, doses in picomolar. `start` and `stop` of the reading methods are times:
    `start` is included, `stop` isn't. The samples of a well are in the order in which they were recorded; where a sample
    doesn't follow the previous one after one interval, a new run begins (`runs`).
    """

    def __init__(self, run: Recordings, place: int) -> None:
        header = run._headers[place]
        self.run = run
        self.header = header
        self.task: str = header.TaskName
        self.number: int = header.Recording
        self.dose: int = header.Dose
        self.wells: tuple[int, ...] = tuple(dict.fromkeys(channel.ID for channel in header.WellChannels))
        self.finished: bool = header.FPosRecordingData != -1
        self._place = place

    def channel(self, well: Well) -> _vxfileio.RawDataChannelInfo:
        """Returns the channel of a well: the scale and the interval of its samples."""
        wanted = self.run.well_id(well)
        for channel in self.index().wells():
            if channel.ID == wanted:
                return channel
        raise NoSuchWellError(NO_WELL.format(well), self.run.path)

    def index(self) -> _vxfileio.RecordingIndex:
        """Returns the index of the segments. The first call reads it."""
        file = self.run.open_file()
        index = self.run._indexes.get(self._place)
        if index is None:
            index = file.index(self._place, self.run.unfinished, self.run.partial)
            self.run._indexes[self._place] = index
        return index

    def refresh(self) -> None:
        """Discards the index, so that the next read includes segments that were recorded since.

        To see recordings that have begun or finished since, open the file again.
        """
        self.run._indexes.pop(self._place, None)

    @property
    def certain_samples(self) -> int:
        """The number of samples of all wells that are certainly in the file."""
        return self.index().certain_samples()

    @property
    def damage(self) -> str:
        """The error that ends the segments of a damaged recording opened with `partial=True`; otherwise empty."""
        return self.index().damage()

    def samples(self, well: Well, start: Optional[int] = None, stop: Optional[int] = None) -> NDArray[np.uint16]:
        """Returns the samples of a well as they are in the file."""
        return next(iter(self.read([well], start, stop).values()))

    def values(self, well: Well, start: Optional[int] = None, stop: Optional[int] = None) -> NDArray[np.float64]:
        """Returns the samples of a well in its physical unit: `(sample - ADZero) * UnitsPerAD`."""
        return next(iter(self.read([well], start, stop, scaled=True).values()))

    def times(self, well: Well, start: Optional[int] = None, stop: Optional[int] = None) -> NDArray[np.int64]:
        """Returns the times of the samples of a well."""
        return self._select([well], start, stop)[1].times(0)

    def seconds(self, well: Well, start: Optional[int] = None, stop: Optional[int] = None) -> NDArray[np.float64]:
        """Returns the times in seconds. Needs `ticks_per_second`, which the file doesn't have."""
        return self._in_seconds(self.times(well, start, stop))

    def runs(self, well: Well, start: Optional[int] = None, stop: Optional[int] = None) -> NDArray[Any]:
        """Returns the runs of a well, the stretches of samples that follow each other at one interval.

        An array with the fields `time_from`, `interval`, `samples`, and `offset`: the number of samples before the run.
        """
        return self._select([well], start, stop)[1].runs(0)

    def segments(self) -> NDArray[Any]:
        """Returns the segments as they are in the file.

        An array with the fields `well`, `samples`, `time_from`, `time_to`, and `offset`: bytes from the start of the
        file.
        """
        return self.index().segments()

    def read(self, wells: Optional[Sequence[Well]] = None, start: Optional[int] = None, stop: Optional[int] = None,
             scaled: bool = False, out: Optional[Mapping[Well, NDArray]] = None) -> dict[Well, NDArray]:
        """Reads wells in one pass along the file.

        Returns an array for each well, by the name used in `wells`; without `wells`, for all, by their IDs. Arrays are
        `uint16`, or `float64` in physical units if `scaled`. To fill existing arrays, pass them in `out` by the same
        names: of that type, contiguous and large enough. The result then has the filled part of each. A well that is
        named twice is read once, by its first name.
        """
        names, selection = self._select(wells, start, stop)
        return self._read(names, selection, scaled, out)

    def _read(self, names: Sequence[Well], selection: _vxfileio.SampleSelection, scaled: bool,
              out: Optional[Mapping[Well, NDArray]] = None) -> dict[Well, NDArray]:
        counts = [count for _, count, _ in selection.wells()]
        dtype = sample_type(scaled)
        if out is not None and not isinstance(out, Mapping):
            raise UsageError(f"out must be a mapping from wells to arrays, not {type(out).__name__}", self.run.path)
        if out is None:
            arrays: list[NDArray[Any]] = [np.empty(count, dtype) for count in counts]
        else:
            arrays = [self._room(out, name, count, dtype) for name, count in zip(names, counts)]
            if _overlap(arrays):
                raise UsageError("The arrays of out overlap", self.run.path)
        if scaled:
            selection.read_scaled(arrays)
        else:
            selection.read(arrays)
        self._warn_of_missing(selection)
        return dict(zip(names, arrays))

    def to_dataframe(self, wells: Optional[Sequence[Well]] = None, start: Optional[int] = None,
                     stop: Optional[int] = None, scaled: bool = True) -> pandas.DataFrame:
        """Returns a table with one row per sample: `well`, `time`, `value`.

        It also has `label` with settings, and `seconds` with `ticks_per_second`. Needs pandas.
        """
        import pandas

        names, selection = self._select(wells, start, stop)
        arrays = self._read(names, selection, scaled)
        ids = [well for well, _, _ in selection.wells()]
        counts = [len(array) for array in arrays.values()]
        times = [selection.times(i) for i in range(len(ids))]
        columns: dict[str, Any] = {"well": np.repeat(np.array(ids, np.int32), counts)}
        if self.run.settings is not None:
            columns["label"] = np.repeat(np.array([self.run.label(well) for well in ids], object), counts)
        columns["time"] = np.concatenate(times) if times else np.empty(0, np.int64)
        if self.run.ticks_per_second is not None:
            columns["seconds"] = self._in_seconds(columns["time"])
        columns["value"] = np.concatenate(list(arrays.values())) if arrays else np.empty(0, sample_type(scaled))
        return pandas.DataFrame(columns, copy=False)

    def to_xarray(self, wells: Optional[Sequence[Well]] = None, start: Optional[int] = None,
                  stop: Optional[int] = None, scaled: bool = True) -> xarray.Dataset:
        """Returns a dataset with one variable per well, named by its label.

        Without settings, or if two wells have the same label or one begins with `time`, the names are the IDs. Wells
        with the same times share a dimension; the dimensions are `time`, `time_2` and so on. Nothing is filled in or
        sorted. Needs xarray.
        """
        import xarray

        given, selection = self._select(wells, start, stop)
        arrays = self._read(given, selection, scaled)
        ids = [well for well, _, _ in selection.wells()]
        dimensions: list[NDArray[np.int64]] = []
        variables = {}
        for i, (name, well, array) in enumerate(zip(self._variable_names(ids), ids, arrays.values())):
            times = selection.times(i)
            known = (d for d, other in enumerate(dimensions) if np.array_equal(times, other))
            dimension = next(known, len(dimensions))
            if dimension == len(dimensions):
                dimensions.append(times)
            variables[name] = (_dimension_name(dimension), array, {"well": well})
        coordinates = {_dimension_name(d): times for d, times in enumerate(dimensions)}
        attributes = {"task": self.task, "recording": self.number, "dose": self.dose}
        if self.run.ticks_per_second is not None:
            attributes["ticks_per_second"] = self.run.ticks_per_second
        return xarray.Dataset(variables, coordinates, attributes)

    def __reduce__(self) -> tuple:
        return _recording_of, (self.run, self._place)

    def __repr__(self) -> str:
        state = "" if self.finished else ", not finished"
        text = f"<vxfileio.Recording {self.task} {self.number}: {self.dose} pM, {len(self.wells)} wells{state}>"
        return printable(text)

    def _repr_html_(self) -> str:
        rows = [(c.ID, self.run.label(c.ID), c.Ticks, c.ADZero, c.UnitsPerAD) for c in self.header.WellChannels]
        return table(repr(self)[1:-1], ("well", "label", "interval", "ADZero", "UnitsPerAD"), rows)

    def _select(self, wells: Optional[Sequence[Well]], start: Optional[int],
                stop: Optional[int]) -> tuple[list[Well], _vxfileio.SampleSelection]:
        """Returns the names of the wells, each well once, and their selection."""
        index = self.index()
        known = [channel.ID for channel in index.wells()]
        names: dict[int, Well] = {well: well for well in known} if wells is None else self.run.well_names(wells)
        for well, name in names.items():
            if well not in known:
                raise NoSuchWellError(NO_WELL.format(name), self.run.path)
        first = FIRST_TIME if start is None else max(operator.index(start), FIRST_TIME)
        last = LAST_TIME if stop is None else min(operator.index(stop) - 1, LAST_TIME)
        if first > last:
            first, last = LAST_TIME, FIRST_TIME
        return list(names.values()), index.select(list(names), first, last)

    def _room(self, out: Mapping[Well, NDArray], name: Well, count: int, dtype: np.dtype) -> NDArray:
        array: Any = out.get(name)
        fits = isinstance(array, np.ndarray) and array.ndim == 1 and array.dtype == dtype and len(array) >= count
        if not fits or not array.flags.c_contiguous or not array.flags.writeable:
            raise UsageError(f"out[{name!r}] must be a contiguous, writable array of {dtype} with room for {count}",
                             self.run.path)
        return array[:count]

    def _variable_names(self, wells: Sequence[int]) -> list[str]:
        """Returns the labels of wells, or their IDs if labels are the same or could be names of dimensions."""
        labels = [self.run.label(well) for well in wells]
        usable = len(set(labels)) == len(labels) and not any(label.startswith(_dimension_name(0)) for label in labels)
        return labels if usable else [str(well) for well in wells]

    def _warn_of_missing(self, selection: _vxfileio.SampleSelection) -> None:
        for well, _, missing in selection.wells():
            if missing:
                text = f"{missing} samples of well {well} are beyond the end of {self.run.path} and were read as 0"
                warn(text, MissingSamplesWarning)

    def _in_seconds(self, times: NDArray[np.int64]) -> NDArray[np.float64]:
        if self.run.ticks_per_second is None:
            raise UsageError("Seconds need ticks_per_second: open the file with ticks_per_second=...", self.run.path)
        return times / self.run.ticks_per_second


def _overlap(arrays: Sequence[NDArray]) -> bool:
    spans = sorted((array.ctypes.data, array.ctypes.data + array.nbytes) for array in arrays if array.size)
    return any(stop > start for (_, stop), (start, _) in zip(spans, spans[1:]))


def _dimension_name(number: int) -> str:
    return "time" if number == 0 else f"time_{number + 1}"
