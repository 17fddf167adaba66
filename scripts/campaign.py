#!/usr/bin/python3
"""Makes a screening campaign: many small plates, each a raw data file and a results file, from the recorded signal.

    scripts/campaign.py FOLDER [PLATES [DAMAGED]]

Every plate tests one of 20 compounds at four doses in six wells. All wells record the heart signal in examples/data,
each with its own delay, strength and noise. The compound weakens the signal; each compound has its own dose that halves
it. Plate n is in FOLDER/nn/, and every DAMAGED-th is damaged in one of six ways (default: none). The same arguments
make the same files.
"""

import pathlib
import sys

import numpy as np
import vxfileio as vx

SIGNAL = pathlib.Path(__file__).resolve().parents[1] / "examples/data/ecg_mitdb208.u16le"
RECORDED_ZERO = 1024

WELLS = (12, 13, 14, 22, 23, 24)
TICK, ZERO, MILLIVOLT_PER_STEP = 2778, 32768, 0.0003125
STEPS_PER_RECORDED_STEP = 16  # 0.005 mV in steps of MILLIVOLT_PER_STEP
SEGMENT, SEGMENTS = 900, 2  # samples
PIPETTING = 30 * 360
AVERAGE, BEFORE = 160, 40  # samples of an average, and how many of them are before the beat
DOSES = (0, 10_000, 100_000, 1_000_000)  # in picomolar
COMPOUNDS = 20

CHANNELS = tuple(vx.RawDataChannelInfo(ID=well, ADZero=ZERO, UnitsPerAD=MILLIVOLT_PER_STEP, Ticks=TICK)
                 for well in WELLS)


def half_dose(compound):
    """Returns the dose at which a compound halves the signal."""
    return 3_000 * 1.4 ** compound


def load_heart():
    """Returns the recorded signal, in steps of the instrument, relative to its zero."""
    return (np.fromfile(SIGNAL, "<u2").astype(np.float64) - RECORDED_ZERO) * STEPS_PER_RECORDED_STEP


def guid_of(plate):
    return f"2f1a7c34-0002-4d5e-9a60-{plate:012x}"


def samples_of(heart, plate, compound):
    """Returns the samples of a plate: recording, well, sample."""
    random = np.random.default_rng(plate)
    length = SEGMENT * SEGMENTS
    gain = random.uniform(0.7, 1.3, len(WELLS))
    strength = gain / (1 + np.array(DOSES)[:, np.newaxis] / half_dose(compound))
    start = random.integers(0, len(heart) - length, strength.shape)
    played = heart[start[:, :, np.newaxis] + np.arange(length)] * strength[:, :, np.newaxis]
    noise = random.integers(-40, 41, played.shape)
    return (ZERO + played.astype(np.int64) + noise).astype(np.uint16)


def write_raw(path, plate, compound, samples):
    header = vx.RawDataFileHdr(FileType="Raw", ProgramVersion="1.0", Guid=guid_of(plate), PlateID=f"P{plate}",
                               CompoundID=compound, CompoundName=f"Compound {compound}")
    with vx.RawWriter(path, header, overwrite=True) as writer:
        for number, (dose, wells) in enumerate(zip(DOSES, samples)):
            start = number * (SEGMENT * SEGMENTS + PIPETTING) * TICK
            recording = vx.RawDataRecordingHdr(TaskName="Series", Recording=number + 1, Dose=dose,
                                               RecordingStartTime=start, RecordingTime=SEGMENT * SEGMENTS * TICK,
                                               WellChannels=CHANNELS)
            with writer.recording(recording) as current:
                for first in range(0, SEGMENT * SEGMENTS, SEGMENT):
                    for well, trace in zip(WELLS, wells):
                        current.write(well, start + first * TICK, trace[first:first + SEGMENT])


def well_of(trace, control):
    """Returns the results of a well: one beat as its average, and its amplitude as response."""
    name = vx.ResponseType.NaAmplitude
    peak = BEFORE + int(trace[BEFORE:BEFORE - AVERAGE].argmax())
    amplitude = amplitude_of(trace)
    return vx.ResultsWell(AverageCount=1, AverageTick=TICK, AveragePreFPfastTime=BEFORE * TICK,
                          Average=voltage(trace[peak - BEFORE:peak - BEFORE + AVERAGE]).tolist(),
                          FPfastDetectionTimes=[peak * TICK],
                          Responses={name: vx.Response(Label=name, Value=amplitude)},
                          NormalizedResponses={name: vx.Response(Label=name, Value=amplitude / control)})


def voltage(trace):
    return (trace.astype(np.int64) - ZERO) * MILLIVOLT_PER_STEP


def amplitude_of(trace):
    return float(np.ptp(voltage(trace)))


def write_results(path, plate, compound, samples):
    controls = [amplitude_of(trace) for trace in samples[0]]
    recordings = [vx.ResultsRecording(Dose=dose, Wells={
        well: well_of(trace, control) for well, trace, control in zip(WELLS, traces, controls)
    }) for dose, traces in zip(DOSES, samples)]
    header = vx.XmlFileHeader(FileType="VXResults", FileVersion=3, Guid=guid_of(plate),
                              CompoundName=f"Compound {compound}")
    task = vx.ResultsTask(TaskName="Series", Recordings=recordings)
    results = vx.Results(Header=header, CompoundID=compound, Tasks={vx.Task.Series: task}, FPAverageSamples=AVERAGE,
                         FPAverageTick=TICK, FPAveragePreFPfastTime=BEFORE * TICK)
    results.save(path, overwrite=True)


def replaced(data, old, new, start=0):
    """Replaces a text in a header without changing the length."""
    place = data.index(old, start)
    return data[:place] + new.ljust(len(old), b"\0") + data[place + len(old):]


DAMAGES = {
    "mark": lambda data: replaced(data, b"OVL", b"ovl"),
    "empty": lambda data: b"",
    "cut in samples": lambda data: data[:-500],
    "cut in the middle": lambda data: data[:len(data) * 3 // 5],
    "broken chain of recordings": lambda data: replaced(data, b"FPosFirstRecordingHdr=1190",
                                                        b"FPosFirstRecordingHdr=77"),
    "broken chain of segments": lambda data: replaced(data, b"Type=Well", b"type=Well", len(data) // 3),
}


def make(folder, plates, damaged=0):
    """Makes the files. Returns the paths of the raw data files, and a mapping from damaged files to their damage."""
    folder = pathlib.Path(folder)
    heart = load_heart()
    paths, damages = [], {}
    for plate in range(plates):
        path = folder / f"{plate % 100:02}" / f"plate_{plate:06}.vxd"
        path.parent.mkdir(parents=True, exist_ok=True)
        compound = plate % COMPOUNDS
        samples = samples_of(heart, plate, compound)
        write_raw(path, plate, compound, samples)
        write_results(path.with_suffix(".vxr"), plate, compound, samples)
        paths.append(path)
        if damaged and plate % damaged == damaged - 1:
            damages[path] = list(DAMAGES)[plate // damaged % len(DAMAGES)]
            path.write_bytes(DAMAGES[damages[path]](path.read_bytes()))
    return paths, damages


def main():
    if not 2 <= len(sys.argv) <= 4 or sys.argv[1].startswith("-"):
        print(__doc__)
        sys.exit(0 if sys.argv[1:] in (["-h"], ["--help"]) else 2)
    numbers = tuple(map(int, sys.argv[2:]))
    plates, damaged = numbers + (2000, 0)[len(numbers):]
    paths, damages = make(sys.argv[1], plates, damaged)
    print(f"{len(paths)} plates in {sys.argv[1]}, {len(damages)} of them damaged")


if __name__ == "__main__":
    main()
