#!/usr/bin/python3
"""Measures how vxfileio.dask grows with plates and workers. Prints the figures of docs/scaling.md: wall
seconds, speedup over one worker, CPU ms per plate of the workers, of one thread without a cluster and of scheduler and
client, MiB of a worker before the first task and beyond it.

    bench/scaling.py FOLDER [ROUNDS]

Makes the campaign in FOLDER, unless it exists. Workers are processes of one thread on this machine; starting them
isn't measured. Wall times are medians; CPU times are sums over the workers, and of the median round.
"""

import logging
import os
import pathlib
import resource
import statistics
import subprocess
import sys
import tempfile
import time

import dask
import numpy as np
import vxfileio as vx
import vxfileio.dask
from distributed import Client, LocalCluster

SIZES = (100, 500, 2000)
WORKERS = (1, 2)


def amplitude(recording):
    """Reads all samples of a recording."""
    return {"amplitude": max(int(np.ptp(array.astype(np.int32))) for array in recording.read().values())}


def results_of(paths):
    return [path.with_suffix(".vxr") for path in paths]


JOBS = {
    "catalog": lambda paths: vxfileio.dask.catalog(paths),
    "map_recordings": lambda paths: vxfileio.dask.map_recordings(paths, amplitude, meta={"amplitude": int}),
    "responses": lambda paths: vxfileio.dask.responses(results_of(paths)),
}


def cpu_seconds():
    used = resource.getrusage(resource.RUSAGE_SELF)
    return used.ru_utime + used.ru_stime


def peak_mib():
    """Returns the peak memory of this process. `ru_maxrss` would include that of its parent before the fork."""
    line = next(line for line in pathlib.Path("/proc/self/status").read_text().splitlines() if line.startswith("VmHWM"))
    return int(line.split()[1]) / 1024


def measure(client, table):
    """Returns wall seconds, CPU seconds of the workers, and those of this process with the scheduler."""
    before, here = sum(client.run(cpu_seconds).values()), cpu_seconds()
    start = time.perf_counter()
    client.compute(table).result()
    wall = time.perf_counter() - start
    return wall, sum(client.run(cpu_seconds).values()) - before, cpu_seconds() - here


def measure_cluster(job, paths, workers, rounds, scratch):
    addresses = {"host": "127.0.0.1", "dashboard_address": "127.0.0.1:0", "worker_dashboard_address": "127.0.0.1:0"}
    with dask.config.set({"temporary-directory": scratch}):
        with LocalCluster(n_workers=workers, threads_per_worker=1, silence_logs=logging.CRITICAL,
                          **addresses) as cluster, Client(cluster) as client:
            client.run(__import__, "vxfileio.dask")
            idle = max(client.run(peak_mib).values())
            found = sorted(measure(client, JOBS[job](paths)) for _ in range(rounds))
            return (*found[rounds // 2], idle, max(client.run(peak_mib).values()))


def measure_alone(job, paths, rounds):
    """Returns the median CPU seconds of one thread without a cluster."""
    def once():
        before = cpu_seconds()
        JOBS[job](paths).compute(scheduler="synchronous")
        return cpu_seconds() - before
    return statistics.median(once() for _ in range(rounds))


def raw_files_in(folder):
    return sorted(folder.glob("*/*.vxd"), key=lambda path: path.name)


def make_campaign(folder):
    """Makes the campaign unless it exists, and returns its raw data files."""
    if len(raw_files_in(folder)) < max(SIZES):
        script = pathlib.Path(__file__).resolve().parents[1] / "scripts/campaign.py"
        subprocess.run([sys.executable, script, folder, str(max(SIZES))], check=True)
    return raw_files_in(folder)


def main():
    if not 2 <= len(sys.argv) <= 3 or sys.argv[1].startswith("-"):
        sys.exit(__doc__)
    folder, rounds = pathlib.Path(sys.argv[1]), int(sys.argv[2]) if len(sys.argv) == 3 else 3
    paths = make_campaign(folder)
    for job in JOBS:
        for size in SIZES:
            alone = measure_alone(job, paths[:size], rounds)
            walls = {}
            for workers in WORKERS:
                with tempfile.TemporaryDirectory() as scratch:
                    wall, cpu, here, idle, peak = measure_cluster(job, paths[:size], workers, rounds, scratch)
                walls[workers] = wall
                print(f"| {job} | {size} | {workers} | {wall:.2f} | {walls[1] / wall:.2f} | {1e3 * cpu / size:.2f} | "
                      f"{1e3 * alone / size:.2f} | {1e3 * here / size:.2f} | {idle:.0f} | {peak - idle:.0f} |",
                      flush=True)
    print(f"Load at the end: {os.getloadavg()[0]:.0f}")


if __name__ == "__main__":
    main()
