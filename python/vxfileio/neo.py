"""Reads raw data files with neo (https://neuralensemble.org/neo). Call `register()` once.

    import neo
    import vxfileio.neo

    vxfileio.neo.register()
    block = neo.get_io("run.vxd", ticks_per_second=1_000_000, units="mV").read_block(lazy=True)

In neo:

- The file is a block, annotated with `Guid`, `PlateID`, `CompoundID` and `CompoundName`.
- Wells that were sampled at one interval, at the same times and with the same scale form one stream. A well with gaps
  of its own is in a stream of its own.
- A signal in neo can't have gaps. So each run of samples without a gap is in a segment of its own, and `t_start` is the
  time of its first sample. Segment n of a recording has run n of each stream; a stream with fewer runs, or of another
  recording, has a signal of 0 samples there. Segments are annotated with `task`, `recording`, `dose` and `run`,
  and with `place`, the index of the recording in the file. Nothing is filled in, left out or sorted.
- A recording without samples has no segment.
- A damaged or unfinished recording is an error, as in `vxfileio.open`, unless `partial` or `unfinished` is set.
"""

from __future__ import annotations

import math
import os
from collections import Counter
from collections.abc import Sequence
from typing import Any, NamedTuple, Optional, Union

import neo
import neo.io
import neo.rawio
import numpy as np
from neo.io.basefromrawio import BaseFromRaw
from neo.rawio import baserawio
from numpy.typing import NDArray

from ._errors import UsageError
from ._groups import Run, groups_of, read_run
from ._open import open_raw
from ._raw import Recording, Recordings
from ._types import Path

NO_RATE = "Sampling rates need ticks_per_second, which the file doesn't have: pass ticks_per_second=..."


class _Channel(NamedTuple):
    """A well as a channel of neo."""

    well: int
    zero: int
    units_per_step: float


class _Stream(NamedTuple):
    """The interval and the channels that all signals of a stream share."""

    interval: int
    channels: tuple[_Channel, ...]


class _Signal(NamedTuple):
    """One run of the wells of a stream."""

    recording: Recording
    wells: tuple[int, ...]
    runs: tuple[Run, ...]
    number: int

    @property
    def run(self) -> Run:
        return self.runs[self.number]


_Segment = dict[_Stream, _Signal]


class VexaprobeRawIO(baserawio.BaseRawIO):
    """Reads raw data files for `neo.rawio`. The module's docstring describes the blocks, segments and streams.

    `ticks_per_second` is the number of the instrument's time units in a second, and `units` the physical unit of the
    samples, such as "mV": the file has neither. Without `ticks_per_second`, `parse_header` raises `UsageError`. With
    `settings`, channels are named by the labels of the wells, otherwise by their IDs. All other options are those of
    `vxfileio.open`.
    """

    name = "Vexaprobe"
    description = "Raw data files of a cell screening instrument"
    extensions = ["vxd"]
    rawmode = "one-file"

    def __init__(self, filename: Path = "", ticks_per_second: Optional[float] = None, units: str = "dimensionless",
                 settings: Any = None, unfinished: bool = False, partial: bool = False, **more: Any) -> None:
        super().__init__(**more)
        self.filename = os.fsdecode(filename)
        self.ticks_per_second = ticks_per_second
        self.units = units
        self._options = {"settings": settings, "unfinished": unfinished, "partial": partial}

    @property
    def _scale(self) -> float:
        if not self.ticks_per_second:
            raise UsageError(NO_RATE, self.filename)
        return self.ticks_per_second

    def _source_name(self) -> str:
        return self.filename

    def _parse_header(self) -> None:
        run = open_raw(self.filename, ticks_per_second=self._scale, **self._options)
        self._segments = [segment for recording in run.recordings for segment in _segments_of(recording)]
        self._streams = list(dict.fromkeys(stream for segment in self._segments for stream in segment))
        self.header = self._make_header(run)
        self._generate_minimal_annotations()
        self._annotate(run)

    def _make_header(self, run: Recordings) -> dict[str, Any]:
        rates = [self._scale / stream.interval for stream in self._streams]
        streams = [{"name": f"wells at {rate:g} Hz", "id": str(number), "buffer_id": ""}
                   for number, rate in enumerate(rates)]
        channels = [{"name": run.label(channel.well), "id": str(channel.well), "sampling_rate": rates[number],
                     "dtype": "uint16", "units": self.units, "gain": channel.units_per_step,
                     "offset": -channel.zero * channel.units_per_step, "stream_id": str(number), "buffer_id": ""}
                    for number, stream in enumerate(self._streams) for channel in stream.channels]
        header = {"nb_block": 1, "nb_segment": [len(self._segments)],
                  "signal_streams": _rows(baserawio._signal_stream_dtype, streams),
                  "signal_channels": _rows(baserawio._signal_channel_dtype, channels),
                  "spike_channels": _rows(baserawio._spike_channel_dtype, []),
                  "event_channels": _rows(baserawio._event_channel_dtype, [])}
        if hasattr(baserawio, "_signal_buffer_dtype"):
            header["signal_buffers"] = _rows(baserawio._signal_buffer_dtype, [])
        return header

    def _annotate(self, run: Recordings) -> None:
        block = self.raw_annotations["blocks"][0]
        block.update((key, getattr(run.header, key)) for key in ("Guid", "PlateID", "CompoundID", "CompoundName"))
        for segment, annotations in zip(self._segments, block["segments"]):
            signal = next(iter(segment.values()))
            recording = signal.recording
            annotations.update(name=f"{recording.task} {recording.number}", task=recording.task,
                               recording=recording.number, dose=recording.dose, place=recording._place,
                               run=signal.number)

    def _signal(self, seg_index: int, stream_index: int) -> Optional[_Signal]:
        return self._segments[seg_index].get(self._streams[stream_index])

    def _segment_t_start(self, block_index: int, seg_index: int) -> float:
        return min(signal.run.time_from for signal in self._segments[seg_index].values()) / self._scale

    def _segment_t_stop(self, block_index: int, seg_index: int) -> float:
        return max(signal.run.time_after for signal in self._segments[seg_index].values()) / self._scale

    def _get_signal_size(self, block_index: int, seg_index: int, stream_index: int) -> int:
        signal = self._signal(seg_index, stream_index)
        return signal.run.samples if signal else 0

    def _get_signal_t_start(self, block_index: int, seg_index: int, stream_index: int) -> float:
        signal = self._signal(seg_index, stream_index)
        if signal is None:
            return self._segment_t_start(block_index, seg_index)
        return signal.run.time_from / self._scale

    def _get_analogsignal_chunk(self, block_index: int, seg_index: int, i_start: Optional[int], i_stop: Optional[int],
                                stream_index: int,
                                channel_indexes: Union[None, slice, Sequence[int], NDArray[Any]]) -> NDArray[np.uint16]:
        channels = np.array([channel.well for channel in self._streams[stream_index].channels])
        wells = channels[slice(None) if channel_indexes is None else channel_indexes].tolist()
        size = self._get_signal_size(block_index, seg_index, stream_index)
        first, stop, _ = slice(i_start, i_stop).indices(size)
        signal = self._signal(seg_index, stream_index)
        if signal is None:
            return np.empty((0, len(wells)), np.uint16)
        return read_run(signal.recording, wells, signal.runs, signal.number, first, stop - first).T


class VexaprobeIO(VexaprobeRawIO, BaseFromRaw):
    """Reads raw data files for `neo.io`. Takes the arguments of `VexaprobeRawIO`."""

    mode = "file"

    def __init__(self, filename: Path, *arguments: Any, **options: Any) -> None:
        VexaprobeRawIO.__init__(self, filename, *arguments, **options)
        BaseFromRaw.__init__(self, self.filename)


def register() -> None:
    """Adds `VexaprobeRawIO` to the lists of `neo.rawio` and `VexaprobeIO` to those of `neo.io`, once."""
    for module, made, known in ((neo.rawio, VexaprobeRawIO, neo.rawio.rawiolist), (neo.io, VexaprobeIO, neo.io.iolist)):
        setattr(module, made.__name__, made)
        if made not in known:
            known.append(made)
    for extension in VexaprobeIO.extensions:  # later versions look here
        by_extension = getattr(neo.io, "io_by_extension", {}).setdefault(extension, [])
        if VexaprobeIO not in by_extension:
            by_extension.append(VexaprobeIO)


def _unit(value: float) -> float:
    """Returns the value, as one and the same object if it is NaN, so that equal channels compare equal."""
    return math.nan if math.isnan(value) else value


def _segments_of(recording: Recording) -> list[_Segment]:
    """Returns the segments of a recording. Segment n has run n of each stream that has more than n runs."""
    channels = {channel.ID: _Channel(channel.ID, channel.ADZero, _unit(channel.UnitsPerAD))
                for channel in recording.index().wells()}
    segments: list[_Segment] = []
    for group in groups_of(recording):
        known = tuple(channels[well] for well in group.wells)
        streams = {run.interval: _Stream(run.interval, known) for run in group.runs}
        places: Counter[int] = Counter()
        for number, run in enumerate(group.runs):
            place = places[run.interval]
            places[run.interval] += 1
            if place == len(segments):
                segments.append({})
            segments[place][streams[run.interval]] = _Signal(recording, group.wells, group.runs, number)
    return segments


def _rows(dtype: Any, records: Sequence[dict[str, Any]]) -> NDArray[Any]:
    """Makes an array of these records. Fields that this version of neo doesn't have are left out."""
    names = np.dtype(dtype).names or ()
    return np.array([tuple(record[name] for name in names) for record in records], dtype=dtype)
