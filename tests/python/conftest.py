"""Finds the second readers, which share no code with the package."""

import contextlib
import gc
import pathlib
import resource
import signal
import subprocess
import sys

import pytest
import vxfileio

REFERENCE = pathlib.Path(__file__).resolve().parents[1] / "reference"
sys.path[:0] = [str(REFERENCE), str(REFERENCE / "xml")]


def built(name):
    """Returns a program from the build that has the package. Skips the test if it isn't built."""
    program = pathlib.Path(vxfileio.__file__).resolve().parents[2] / "bin" / name
    if not program.exists():
        pytest.skip(f"{program} isn't built")
    return program


@contextlib.contextmanager
def files_of_at_most(size):
    """Within it, the system refuses to let a file of this process grow past a number of bytes."""
    before = resource.getrlimit(resource.RLIMIT_FSIZE)
    handler = signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
    resource.setrlimit(resource.RLIMIT_FSIZE, (size, before[1]))
    try:
        yield
    finally:
        resource.setrlimit(resource.RLIMIT_FSIZE, before)
        signal.signal(signal.SIGXFSZ, handler)


@pytest.fixture(scope="session")
def open_files():
    """Returns a function that counts the files that this process has open; always 0 where the system doesn't say."""
    folder = pathlib.Path("/proc/self/fd")

    def count():
        gc.collect()
        return len(list(folder.iterdir())) if folder.is_dir() else 0

    return count


@pytest.fixture(scope="session")
def vxfile():
    """Returns a function that runs the program vxfile and returns its output."""
    program = built("vxfile")
    return lambda *arguments: subprocess.run([program, *arguments], check=True, capture_output=True).stdout


@pytest.fixture(scope="session")
def plate(tmp_path_factory):
    """Returns a folder with the files of the example plate."""
    folder = tmp_path_factory.mktemp("plate")
    subprocess.run([built("plate_run"), folder], check=True, capture_output=True)
    return folder
