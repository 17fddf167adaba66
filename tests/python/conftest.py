"""Finds the second readers, which share no code with the package."""

import pathlib
import subprocess
import sys

import pytest
import vxfileio

REFERENCE = pathlib.Path(__file__).resolve().parents[1] / "reference"
sys.path[:0] = [str(REFERENCE), str(REFERENCE / "xml")]

@pytest.fixture(scope="session")
def vxfile():
    """Runs the program vxfile, from the build that has the package, and returns what it prints."""
    program = pathlib.Path(vxfileio.__file__).resolve().parents[2] / "bin" / "vxfile"
    if not program.exists():
        pytest.skip(f"{program} isn't built")
    return lambda *arguments: subprocess.run([program, *arguments], check=True, capture_output=True).stdout


@pytest.fixture(scope="session")
def plate(tmp_path_factory):
    """Returns a folder with the files of the example plate."""
    program = pathlib.Path(vxfileio.__file__).resolve().parents[2] / "bin" / "plate_run"
    if not program.exists():
        pytest.skip(f"{program} isn't built")
    folder = tmp_path_factory.mktemp("plate")
    subprocess.run([program, folder], check=True, capture_output=True)
    return folder
