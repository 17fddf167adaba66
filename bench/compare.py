#!/usr/bin/python3
"""Runs each workload interleaved (limit, library, limit, library, ...) and prints medians as ratios.

usage: compare.py BUILD_FOLDER [--rounds N] [--folder DIR] [WORKLOAD...]
"""
import argparse
import os
import statistics
import subprocess
import tempfile

MIB = 1 << 20
# name: (samples per segment, bytes in all)
SIZES = {"20000": (20000, 512 * MIB), "1000": (1000, 128 * MIB)}
WORKLOADS = [f"{mode}-{size}" for size in SIZES for mode in ("write", "read")]


def run(program, mode, path, samples, total):
    """Returns seconds and peak memory in KiB; wrong data or a failure ends the benchmark."""
    segments = total // (2 * samples + 300)
    call = [program, mode, path, str(segments), str(samples)]
    seconds, peak = subprocess.run(call, check=True, capture_output=True, text=True).stdout.split()
    return float(seconds), int(peak)


def measure(build, folder, workload, rounds):
    mode, size = workload.split("-")
    samples, total = SIZES[size]
    path = os.path.join(folder, "bench.vxd")
    limit, ours = (os.path.join(build, "bin", name) for name in ("raw_limit", "raw_vx"))
    if mode == "read":
        run(ours, "write", path, samples, total)
    times = {limit: [], ours: []}
    peaks = {}
    for _ in range(rounds):
        for program in times:
            if mode == "write" and os.path.exists(path):
                os.remove(path)
            seconds, peaks[program] = run(program, mode, path, samples, total)
            times[program].append(seconds)
    os.remove(path)
    low, mid = statistics.median(times[limit]), statistics.median(times[ours])
    pairs = [ours_s / limit_s for limit_s, ours_s in zip(times[limit], times[ours])]
    print(f"{workload:12} ratio to the limit {mid / low:5.2f}   pairs {min(pairs):.2f} .. {max(pairs):.2f}   "
          f"throughput {low / mid:4.2f} of the limit   peak memory {peaks[ours] - peaks[limit]:+6d} KiB")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build")
    parser.add_argument("workloads", nargs="*", default=WORKLOADS)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--folder")
    options = parser.parse_intermixed_args()
    with tempfile.TemporaryDirectory(dir=options.folder) as folder:
        for workload in options.workloads or WORKLOADS:
            measure(options.build, folder, workload, options.rounds)


if __name__ == "__main__":
    main()
