#!/usr/bin/python3
"""Runs each workload interleaved (limit, library, peers, limit, ...) and prints medians as ratios to the limit.

The limit is a program that does nothing but the unavoidable. Each program checks what it reads, and all must write the
same bytes as the limit where they write its format.

usage: compare.py BUILD_FOLDER [--rounds N] [--folder DIR] [WORKLOAD...]
"""
import argparse
import filecmp
import os
import shutil
import statistics
import subprocess
import tempfile

MIB = 1 << 20


def raw(samples, total):
    return [str(total // (2 * samples + 300)), str(samples)]


# name: (mode, program family, peers, arguments behind mode and file)
WORKLOADS = {
    "write-20000": ("write", "raw", [], raw(20000, 512 * MIB)),
    "read-20000": ("read", "raw", [], raw(20000, 512 * MIB)),
    "write-1000": ("write", "raw", [], raw(1000, 128 * MIB)),
    "read-1000": ("read", "raw", [], raw(1000, 128 * MIB)),
    "results-write": ("write", "results", [], ["1"]),
    "results-read": ("read", "results", ["expat"], ["1"]),
    "workbook-write": ("write", "workbook", ["xlsxwriter"], ["12"]),
    "workbook-write-x4": ("write", "workbook", ["xlsxwriter"], ["48"]),
    "plate-export": ("write", "export", [], ["2000"]),
    "results-write-x4": ("write", "results", [], ["4"]),
    "results-read-x4": ("read", "results", ["expat"], ["4"]),
}


def run(program, mode, path, arguments):
    """Returns seconds and peak memory in KiB; wrong data or a failure ends the benchmark."""
    seconds, peak = subprocess.run([program, mode, path, *arguments], check=True, capture_output=True,
                                   text=True).stdout.split()
    return float(seconds), int(peak)


def programs_of(build, family, peers):
    """The programs that are built, the limit first; a peer's library need not be installed."""
    names = [f"{family}_limit", f"{family}_vx"] + [f"{family}_{peer}" for peer in peers]
    paths = [os.path.join(build, "bin", name) for name in names]
    return paths[:2] + [path for path in paths[2:] if os.path.exists(path)]


def check_same_bytes(folder, programs, arguments):
    paths = [os.path.join(folder, f"check{i}") for i in range(2)]
    for program, path in zip(programs, paths):
        run(program, "write", path, arguments)
    if not filecmp.cmp(*paths, shallow=False):
        raise SystemExit(f"{programs[0]} and {programs[1]} write different bytes")
    for path in paths:
        os.remove(path)


def measure(build, folder, workload, rounds):
    mode, family, peers, arguments = WORKLOADS[workload]
    programs = programs_of(build, family, peers)
    path = os.path.join(folder, workload, "bench.xls")
    os.mkdir(os.path.dirname(path))
    if family not in ("raw", "export"):
        check_same_bytes(folder, programs, arguments)
    if mode == "read" or family == "export":  # the limit of an export writes again what the library wrote
        run(programs[1], "write", path, arguments)
    times = {program: [] for program in programs}
    peaks = {}
    for _ in range(rounds):
        for program in programs:
            if mode == "write" and family != "export" and os.path.exists(path):
                os.remove(path)
            seconds, peaks[program] = run(program, mode, path, arguments)
            times[program].append(seconds)
    shutil.rmtree(os.path.dirname(path))
    limit = programs[0]
    for program in programs[1:]:
        ratio = statistics.median(times[program]) / statistics.median(times[limit])
        pairs = [own / least for least, own in zip(times[limit], times[program])]
        print(f"{workload:17} {os.path.basename(program):14} ratio to the limit {ratio:5.2f}   "
              f"pairs {min(pairs):.2f} .. {max(pairs):.2f}   peak memory {peaks[program] - peaks[limit]:+6d} KiB",
              flush=True)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD", help=", ".join(WORKLOADS))
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--folder")
    options = parser.parse_intermixed_args()
    with tempfile.TemporaryDirectory(dir=options.folder) as folder:
        for workload in options.workloads or WORKLOADS:
            measure(options.build, folder, workload, options.rounds)


if __name__ == "__main__":
    main()
