#!/usr/bin/python3
"""Compares vxfile with the library and with minimal programs. Prints medians of the processor time (user and system) of
whole processes, which run in turns.

    bench/vxfile.py FOLDER_OF_PROGRAMS [ROUNDS_OF_TURNS]

Needs the targets `bench` and `vxfile` of a release build.
"""
import os
import resource
import shutil
import statistics
import subprocess
import sys
import tempfile

PROGRAMS = os.path.abspath(sys.argv[1])
TURNS = int(sys.argv[2]) if len(sys.argv) > 2 else 15
SHAPES = ((20000, 200), (1000, 1500))  # samples per segment, rounds of 54 wells
ONE_WELL = 46  # the well that raw_vx reads alone


def seconds(command, folder):
    """Returns the seconds that a command takes. Empties the folder for its arrays first."""
    shutil.rmtree(folder, ignore_errors=True)
    os.makedirs(folder)
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run([os.path.join(PROGRAMS, command[0]), *command[1:]], check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def compare(title, folder, least, *others):
    """Prints the speed of the others relative to the first."""
    taken = {name: [] for name, _ in (least, *others)}
    for _ in range(TURNS):
        for name, command in (least, *others):
            taken[name].append(seconds(command, folder))
    medians = {name: statistics.median(times) for name, times in taken.items()}
    for name, _ in others:
        print(f"{title:14} {name:42} {medians[least[0]] / medians[name]:5.2f} of {least[0]}", flush=True)


def main():
    with tempfile.TemporaryDirectory() as work:
        path, arrays = os.path.join(work, "run.vxd"), os.path.join(work, "arrays")
        for samples, rounds in SHAPES:
            subprocess.run([f"{PROGRAMS}/raw_vx", "write", path, str(rounds), str(samples)], check=True,
                           stdout=subprocess.DEVNULL)
            title, shape = f"{samples} samples", [path, str(rounds), str(samples)]
            limit = ["raw_arrays_limit", path, str(samples), arrays]
            one, all_wells = ["--well", str(ONE_WELL), "--npy"], ["--npy", "--force", "-o", arrays + "/{well}.npy"]
            compare(title, arrays, ("the library, all wells", ["raw_vx", "read", *shape]),
                    ("verify", ["vxfile", "verify", path]))
            compare(title, arrays, ("the library, one well", ["raw_vx", "one", *shape]),
                    ("samples of one well to /dev/null", ["vxfile", "samples", path, *one]),
                    ("samples of one well into a file", ["vxfile", "samples", path, *one, "--force", "-o",
                                                      arrays + "/one.npy"]),
                    ("the same with minimal system calls", [*limit, str(ONE_WELL)]))
            compare(title, arrays, ("one read and one write per segment", limit),
                    ("samples of all wells, one file each", ["vxfile", "samples", path, *all_wells]))
            shutil.rmtree(arrays)


main()
