#!/usr/bin/python3
"""Reads raw recordings with the Python package. usage: raw_python.py bulk|bulk-read FILE ROUNDS SAMPLES"""
import os
import sys

import numpy as np
from measure_python import measure

import vxfileio as vx

WELLS, FIRST_WELL, OWN_SAMPLES = 54, 10, 8


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
    arrays = {FIRST_WELL + well: row for well, row in enumerate(np.ones((WELLS, rounds * samples), np.uint16))}
    with vx.open(path) as run:
        recording = run.recordings[0]
        if mode == "bulk-read":
            recording.index()

        def read():
            arrays_read = recording.read(out=arrays)
            return all(are_samples(arrays_read[FIRST_WELL + well], rounds, samples, well) for well in range(WELLS))

        good = measure(read)
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
