"""Groups the wells of a recording that share their times, and reads parts of their runs."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import NamedTuple, Optional

import numpy as np
from numpy.typing import NDArray

from ._raw import Recording
from ._types import sample_type


class Run(NamedTuple):
    """Samples that follow each other at one interval; see `Recording.runs`."""

    time_from: int
    interval: int
    samples: int
    offset: int

    @property
    def time_after(self) -> int:
        """The time one interval after the last sample."""
        return self.time_from + self.samples * self.interval

    def count_before(self, time: int) -> int:
        """Returns the number of samples that are earlier than `time`."""
        return min(max(-((self.time_from - time) // self.interval), 0), self.samples)


class Group(NamedTuple):
    """Wells of one recording that have the same runs."""

    wells: tuple[int, ...]
    runs: tuple[Run, ...]


def groups_of(recording: Recording, wells: Optional[Iterable[int]] = None) -> list[Group]:
    """Returns wells of a recording, or all, grouped by their runs, in the order of the first well of each group."""
    found: dict[tuple[Run, ...], list[int]] = {}
    for well in (channel.ID for channel in recording.index().wells()) if wells is None else wells:
        runs = tuple(Run(*run) for run in recording.runs(well).tolist())
        found.setdefault(runs, []).append(well)
    return [Group(tuple(wells), runs) for runs, wells in found.items()]


def read_run(recording: Recording, wells: Sequence[int], runs: Sequence[Run], number: int, first: int, count: int,
             scaled: bool = False) -> NDArray:
    """Reads `count` samples of run `number` from its sample `first` on, in one pass. Returns a row for each well.

    `runs` are all runs of the wells, since runs can overlap: a read by times also returns samples of earlier runs.
    """
    if count <= 0 or not wells:
        return np.empty((len(wells), max(count, 0)), sample_type(scaled))
    run = runs[number]
    start = run.time_from + first * run.interval
    stop = start + count * run.interval
    skipped = sum(other.count_before(stop) - other.count_before(start) for other in runs[:number])
    arrays = recording.read(wells, start, stop, scaled)
    return np.stack([arrays[well][skipped:skipped + count] for well in wells])
