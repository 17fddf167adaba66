"""Finds the second readers, which share no code with the package."""

import pathlib
import sys

REFERENCE = pathlib.Path(__file__).resolve().parents[1] / "reference"
sys.path[:0] = [str(REFERENCE), str(REFERENCE / "xml")]
