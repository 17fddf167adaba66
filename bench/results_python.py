#!/usr/bin/python3
"""Reads a results file with the Python package and makes the table of its responses. usage: results_python.py read FILE
SCALE

Importing the package and pandas isn't measured.
"""
import sys

import numpy as np
import pandas  # noqa: F401
from measure_python import measure

import vxfileio as vx

DOSES, WELLS, FIRST_WELL = 11, 54, 10
RESPONSES = {"Na-Amplitude": 1, "Na-Slope": 2, "QT-Interval": 3}


def is_whole(table, scale):
    """Compares with the responses that results_vx wrote."""
    response = table.response.map(RESPONSES).to_numpy()
    made = 1.0 + 0.3 * response + (table.well.to_numpy() - FIRST_WELL) / 54.0 + table.recording.to_numpy()
    rows = table[["recording", "well", "response", "normalized"]].drop_duplicates()
    wanted = 2 * DOSES * scale * WELLS * len(RESPONSES)  # plain and normalized ones
    return len(rows) == len(table) == wanted and np.allclose(table.value, made, rtol=1e-14)


def main():
    table = measure(lambda: vx.open(sys.argv[2]).responses)
    return 0 if is_whole(table, int(sys.argv[3])) else 1


if __name__ == "__main__":
    sys.exit(main())
