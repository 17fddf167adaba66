"""Pictures of recordings and results, with matplotlib.

Each function draws into `ax`, or into new axes if it is omitted, and returns them; `plate` makes and returns a figure.
Nothing is shown: call `matplotlib.pyplot.show()`, or save the figure.
"""

from __future__ import annotations

import re
from typing import TYPE_CHECKING, Any, Optional, Sequence

import numpy as np

from ._documents import Results, Settings
from ._errors import UsageError
from ._raw import Recording, Well
from ._vxfileio import dose_text

if TYPE_CHECKING:
    from matplotlib.axes import Axes
    from matplotlib.figure import Figure


def _axes(ax: Optional[Axes]) -> Axes:
    if ax is not None:
        return ax
    from matplotlib import pyplot

    return pyplot.subplots(layout="constrained")[1]


def _lines(recording: Recording, well: Well, start: Optional[int], stop: Optional[int]) -> tuple[Any, Any]:
    """Returns times and values, with NaN between two runs, so that no line crosses a gap."""
    times = recording.times(well, start, stop).astype(float)
    if recording.run.ticks_per_second is not None:
        times /= recording.run.ticks_per_second
    values = recording.values(well, start, stop)
    breaks = recording.runs(well, start, stop)["offset"][1:].astype(np.intp)
    return np.insert(times, breaks, np.nan), np.insert(values, breaks, np.nan)


def trace(recording: Recording, well: Well, start: Optional[int] = None, stop: Optional[int] = None, *,
          ax: Optional[Axes] = None) -> Axes:
    """Draws the signal of a well in its physical unit against time. Gaps stay empty."""
    times, values = _lines(recording, well, start, stop)
    ax = _axes(ax)
    ax.plot(times, values, linewidth=0.8)
    ax.set(title=f"{recording.run.label(well)}, {recording.task} {recording.number}, {dose_text(max(recording.dose, 0))}",
           xlabel="time in s" if recording.run.ticks_per_second is not None else "time", ylabel="value")
    return ax


LARGEST_PLATE = 64
"""No plate has more rows or columns. A place beyond is damage."""

EXTRA_COLUMNS = 12


def place_of(well: int, label: str, settings: Optional[Settings]) -> Optional[tuple[int, int]]:
    """Returns row and column of a well on its plate, from 0: those of the settings, or else those of its label.

    Returns None if no plate has the place.
    """
    known = settings.RecordPlate.Data.Wells if settings is not None else ()
    record = next((record for record in known if record is not None and record.WellID == well), None)
    found = re.fullmatch(r"([A-Z])0*([1-9][0-9]?)", label)
    if record is not None:
        place = record.PlateRow, record.PlateColumn
    elif found:
        place = ord(found[1]) - ord("A"), int(found[2]) - 1
    else:
        return None
    return place if all(0 <= number < LARGEST_PLATE for number in place) else None


def _places_of(recording: Recording, wells: Sequence[Well]) -> dict[Well, tuple[int, int]]:
    """Returns a place for each well: its own, or else one in an extra row."""
    run = recording.run
    places: dict[Well, tuple[int, int]] = {}
    for well in wells:
        place = place_of(run.well_id(well), run.label(well), run.settings)
        if place is not None and place not in places.values():
            places[well] = place
    rows = max((row + 1 for row, _ in places.values()), default=0)
    columns = max((column + 1 for _, column in places.values()), default=EXTRA_COLUMNS)
    extra = (well for well in wells if well not in places)
    return places | {well: (rows + i // columns, i % columns) for i, well in enumerate(extra)}


def plate(recording: Recording, start: Optional[int] = None, stop: Optional[int] = None, *,
          wells: Optional[Sequence[Well]] = None) -> Figure:
    """Draws a small trace of each well at its place on the plate, all with the same scale.

    The places come from the settings of the run, or else from the labels. Wells without a place of their own are in
    extra rows.
    """
    from matplotlib import pyplot

    run = recording.run
    names = list(recording.wells if wells is None else run.well_names(wells).values())
    if not names:
        raise UsageError("The recording has no wells to be drawn", run.path)
    places = _places_of(recording, names)
    shape = [max(place[i] for place in places.values()) + 1 for i in (0, 1)]
    figure, axes = pyplot.subplots(*shape, sharex=True, sharey=True, squeeze=False, layout="constrained",
                                   figsize=(1.2 * shape[1] + 1, 0.8 * shape[0] + 1))
    for ax in axes.flat:
        ax.set_axis_off()
    for well, place in places.items():
        axes[place].set_axis_on()
        axes[place].plot(*_lines(recording, well, start, stop), linewidth=0.5)
        axes[place].set_title(run.label(well), fontsize="x-small", pad=1)
        axes[place].tick_params(labelsize="xx-small")
    figure.suptitle(f"{recording.task} {recording.number}, {dose_text(max(recording.dose, 0))}")
    return figure


def heat_map(results: Results, response: str, recording: int = 0, *, task: str = "Series", normalized: bool = False,
             ax: Optional[Axes] = None) -> Axes:
    """Draws a response of each well as a colour at its place on the plate. Wells without a value stay empty."""
    table = results.responses
    table = table[(table["task"] == task) & (table["recording"] == recording) & (table["response"] == response)
                  & (table["normalized"] == normalized)]
    places: dict[tuple[int, int], float] = {}
    for well, label, value in zip(table["well"], table["label"], table["value"]):
        place = place_of(well, label, results.settings)
        if place is not None:
            places.setdefault(place, value)
    if not places:
        raise UsageError(f"{task} {recording} has no {response} of wells whose place is known", results.path)
    values = np.full([max(place[i] for place in places) + 1 for i in (0, 1)], np.nan)
    for place, value in places.items():
        values[place] = value
    ax = _axes(ax)
    image = ax.imshow(values, aspect="equal")
    ax.figure.colorbar(image, ax=ax, label=response)
    ax.set(title=f"{response}, {task} {recording}", xticks=range(values.shape[1]), yticks=range(values.shape[0]),
           xticklabels=range(1, values.shape[1] + 1),
           yticklabels=[chr(ord("A") + row) for row in range(values.shape[0])])
    return ax


def dose_response(results: Results, response: str, *, task: str = "Series", ax: Optional[Axes] = None) -> Axes:
    """Draws the mean of a normalised response against the dose, with its standard deviation and the number of wells."""
    table = results.means
    table = table[(table["task"] == task) & (table["response"] == response)].sort_values("dose", kind="stable")
    if table.empty:
        raise UsageError(f"{task} has no means of {response}", results.path)
    ax = _axes(ax)
    doses = table["dose"].to_numpy(float)
    ax.errorbar(doses, table["mean"], yerr=table["sd"], marker="o", capsize=4)
    for dose, mean, count in zip(doses, table["mean"], table["wells"]):
        ax.annotate(f"n = {count}", (dose, mean), xytext=(4, 6), textcoords="offset points", fontsize="small")
    ax.set_xscale("symlog", linthresh=min(doses[doses > 0], default=1.0))
    ax.set_xticks(doses, table["dose_text"])
    ax.minorticks_off()
    ax.set(title=response, xlabel="dose", ylabel="mean of the normalised response")
    return ax
