#!/usr/bin/python3
"""Traces every number in the workbooks of a plate run back to the samples that it was computed from.

    trace_run.py FOLDER        the output of `plate_run FOLDER`

Reads the samples with read_vxd.py, the settings with Python's XML parser and the workbooks with xlrd, and implements
the analysis of the example a second time. Uses nothing of the library.
"""

import pathlib
import sys
import xml.etree.ElementTree as ElementTree

import xlrd

FOLDER = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(FOLDER.parent / "reference"), str(FOLDER)]
import check_workbooks  # noqa: E402
import read_vxd  # noqa: E402

MICRO = 1e6
REFRACTORY = 250_000

# ---- The analysis, from samples to the numbers in workbooks ----------------------------------------------------------


class Settings:
    """The settings of the plate and the analysis."""

    def __init__(self, path):
        settings = ElementTree.parse(path).getroot().find("Settings")
        self.analyzer = {child.tag: child.text for child in settings.find("PropertyAnalyzer")}
        plate = settings.find("PropertyRecordPlate")
        self.doses = [int(dose.text) for dose in plate.find("Series")]
        self.wells = [(int(well.findtext("WellID")), well.findtext("Label"), int(well.findtext("State")))
                      for well in plate.find("Wells")]
        self.left_out = set()
        series = next(task for task in settings.iter("Task") if task.findtext("TaskName") == "Series")
        for number, recording in enumerate(series.iter("Wells")):
            for well in recording:
                if well.findtext("Analyze") == "0":
                    self.left_out.add((number, int(well.findtext("WellID")), None))
                for mark in well.find("Responses"):
                    if mark.text == "Deselected":
                        self.left_out.add((number, int(well.findtext("WellID")), mark.tag))

    def whole(self, tag):
        return int(self.analyzer[tag])


class Trace:
    """The samples of one well in one recording, and what is computed from them."""

    def __init__(self, file, recording, well, settings):
        channel = next(channel for channel in recording.wells if channel.id == well)
        self.begin, self.tick, self.volts = None, channel.ticks, channel.units_per_ad / 1000
        self.samples = []
        for segment in file.segments(recording, well=well):
            self.begin = segment.time_from if self.begin is None else self.begin
            self.samples.extend(sample - channel.ad_zero for sample in segment.samples)
        self.settings = settings
        self.beats = self.find_beats()
        self.average = self.average_beats()

    def find_beats(self):
        s, samples = self.settings, self.samples
        distance = s.whole("FPfastRiseTimeMax") // self.tick
        rises = [0] * distance + [later - now for now, later in zip(samples, samples[distance:])]
        least = float(s.analyzer["FPfastAmplitude"]) / self.volts
        greatest = max(rises[:s.whole("FPfastAutoAdjustTime") // self.tick])
        if greatest < least:
            return []
        threshold = greatest * float(s.analyzer["FPfastAutoAdjustFactor"])
        beats = []
        for i in range(1, len(rises)):
            if rises[i - 1] < threshold <= rises[i]:
                time = self.begin + i * self.tick
                if not beats or time - beats[-1] >= REFRACTORY:
                    beats.append(time)
        return beats

    def time_in_average(self, sample):
        return (sample + 1) * self.tick - self.settings.whole("PreFPfastTime")

    def average_beats(self):
        """Returns the average of all beats, in volts."""
        length = self.settings.whole("FPAverageTime") // self.tick
        pieces = []
        for beat in self.beats:
            first = (beat + self.time_in_average(0) - self.begin) // self.tick
            if first >= 0 and first + length <= len(self.samples):
                pieces.append(self.samples[first:first + length])
        return [sum(column) / len(pieces) * self.volts for column in zip(*pieces)] if pieces else []

    def between(self, begin, end):
        return [k for k in range(len(self.average)) if begin <= self.time_in_average(k) <= end]

    def responses(self):
        """Returns the values of the three responses that exist."""
        s, average = self.settings, self.average
        if not average:
            return {}
        around = self.between(-s.whole("FPfastRiseTimeMax"), s.whole("FPfastRiseTimeMax"))
        length = s.whole("FPSlopeInterval") // self.tick
        steepest = max(average[k + length] - average[k] for k in around[:-length])
        found = {"Na-Amplitude": max(average[k] for k in around) - min(average[k] for k in around),
                 "Na-Slope": steepest / (length * self.tick / MICRO)}
        peak = self.between(s.whole("FPmaxSearchBegin"), s.whole("FPmaxSearchEnd"))
        start, end = average[peak[0]], average[peak[-1]]
        height = [abs(average[k] - (start + (k - peak[0]) / (peak[-1] - peak[0]) * (end - start))) for k in peak]
        found["QT-Interval"] = self.time_in_average(peak[height.index(max(height))])
        return found


# ---- Expected cells of the workbooks ---------------------------------------------------------------------------------


def dose_text(dose):
    unit = 0
    while dose >= 10000 or (dose >= 1000 and dose % 1000 == 0):
        dose, unit = dose // 1000, unit + 1
    return str(dose) + ("pM", "nM", "\u00b5M", "mM")[unit]


def results_cells(settings, traces):
    stride = len(settings.doses) + 2
    for block, (response, factor) in enumerate((("QT-Interval", 1), ("Na-Amplitude", MICRO), ("Na-Slope", 1))):
        left = block * stride
        yield ("Results", 2, left), response
        for i, dose in enumerate(settings.doses):
            yield ("Results", 3, left + 1 + i), dose_text(dose)
        for row, (well, label, _) in enumerate(settings.wells, 4):
            yield ("Results", row, left), label
            for i in range(len(settings.doses)):
                value = traces[well, i].responses().get(response)
                if value is not None and not settings.left_out & {(i, well, response), (i, well, None)}:
                    yield ("Results", row, left + 1 + i), value * factor


def well_cells(settings, traces, well):
    has_axis = False
    for i, dose in enumerate(settings.doses):
        trace = traces[well, i]
        yield ("HB Time Stamps", 0, i), dose_text(dose)
        yield ("Averages", 0, i + 1), dose_text(dose)
        for k, beat in enumerate(trace.beats, 1):
            yield ("HB Time Stamps", k, i), beat
        for k, volts in enumerate(trace.average, 1):
            yield ("Averages", k, i + 1), float(f"{volts:g}") * MICRO
        if trace.average and not has_axis:
            has_axis = True
            yield ("Averages", 0, 0), "Time"
            for k in range(len(trace.average)):
                yield ("Averages", k + 1, 0), k * trace.tick - settings.whole("PreFPfastTime")


def same(expected, found):
    if isinstance(expected, str) or isinstance(found, str):
        return expected == found
    return abs(check_workbooks.kept(float(expected)) - found) <= 1e-9 * abs(expected)


def check(folder):
    settings = Settings(folder / "plate.vxs")
    with read_vxd.RawDataFile(folder / "plate.vxd") as file:
        series = [recording for recording in file.recordings if recording.fields["TaskName"] == b"Series"]
        traces = {(well, i): Trace(file, recording, well, settings) for i, recording in enumerate(series)
                  for well, _, _ in settings.wells}
    workbooks = {"plate.xls": dict(results_cells(settings, traces))}
    for well, label, state in settings.wells:
        if state == 2:
            workbooks[f"plate-{label}.xls"] = dict(well_cells(settings, traces, well))
    bad = sorted(set(path.name for path in folder.glob("*.xls")) ^ workbooks.keys())
    for name in workbooks.keys() - set(bad):
        found = check_workbooks.read_xlrd(folder / name)
        wrong = [place for place in found.keys() | workbooks[name].keys()
                 if place not in found or place not in workbooks[name] or not same(workbooks[name][place], found[place])]
        for place in sorted(wrong)[:5]:
            bad.append(f"{name} {place}: {found.get(place)}, but the samples result in {workbooks[name].get(place)}")
    print("\n".join(bad) or f"{sum(map(len, workbooks.values()))} cells of {len(workbooks)} workbooks match the samples")
    return bool(bad)


if __name__ == "__main__":
    sys.exit(check(pathlib.Path(sys.argv[1])))
