#!/usr/bin/python3
"""Reads raw recordings with the Python package. usage: raw_python.py bulk|bulk-read FILE ROUNDS SAMPLES

Prints what Measure.h prints. The package is in the folder `python` next to that of this script.
"""
import os
import pathlib
import sys
import time

import numpy as np

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "python"))
import vxfileio as vx  # noqa: E402

WELLS, FIRST_WELL, OWN_SAMPLES = 54, 10, 8


def peak_kib():
    with open("/proc/self/status", encoding="ascii") as status:
        return next(int(line.split()[1]) for line in status if line.startswith("VmHWM:"))


def are_samples(array, rounds, samples, well):
    """Compares what raw_vx wrote: the same ramp in each segment, but for the first samples."""
    segments = array.reshape(rounds, samples)
    own = np.arange(rounds)[:, None] * WELLS + well + np.arange(OWN_SAMPLES)
    if not np.array_equal(segments[:, :OWN_SAMPLES], own.astype(np.uint16)):
        return False
    first = OWN_SAMPLES if "LOOK_AT_ALL_SAMPLES" in os.environ else samples - 1
    ramp = (np.arange(first, samples) * 37).astype(np.uint16)
    return bool((segments[:, first:] == ramp).all())


def main():
    mode, path, rounds, samples = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
    arrays = {FIRST_WELL + well: np.ones(rounds * samples, np.uint16) for well in range(WELLS)}
    with vx.open(path) as run:
        recording = run.recordings[0]
        if mode == "bulk-read":
            recording.index()
        with open("/proc/self/clear_refs", "w", encoding="ascii") as peak:
            peak.write("5")
        before = peak_kib()
        os.access("work begins", os.F_OK)
        start = time.perf_counter()
        read = recording.read(out=arrays)
        good = all(are_samples(read[FIRST_WELL + well], rounds, samples, well) for well in range(WELLS))
        seconds = time.perf_counter() - start
        os.access("work ends", os.F_OK)
        print(f"{seconds:.6f} {peak_kib() - before} -1")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
