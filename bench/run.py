#!/usr/bin/python3
"""Runs the programs of each workload in turn (limit, library, peers, limit, ...), each in its own process, and prints a
table per workload. `scripts/bench` builds the programs and calls this.

Every program checks what it reads. Programs that write the limit's format must write the same bytes; the others read
back what they wrote. System calls and allocations are counted in separate runs that aren't timed.
"""
import argparse
import json
import os
import re
import shutil
import statistics
import subprocess
import tempfile
import zipfile
from math import isclose

import tables
from workloads import LIMIT, OURS, WORKLOADS

LOOKING_AT_ALL = {"LOOK_AT_ALL_SAMPLES": "1"}


class Bench:
    """The programs of a workload and the folder for its files."""

    def __init__(self, programs, folder, workload):
        self.programs = programs
        self.folder = os.path.join(folder, "files")
        self.workload = workload
        self.bytes = 0  # size of the last program's files
        self.available = [p for p in workload.programs if os.path.exists(os.path.join(programs, p.binary))]

    def path(self, owner):
        return os.path.join(self.folder, owner, "bench" + self.workload.suffix)

    def run(self, binary, mode, path, size, ahead=(), variables=()):
        """Returns seconds, KiB added and allocations. Wrong data or a failure ends the benchmark."""
        command = [*ahead, os.path.join(self.programs, binary), mode, path, *map(str, self.workload.arguments(size))]
        environment = {**os.environ, **self.workload.environment, **dict(variables)}
        done = subprocess.run(command, capture_output=True, text=True, env=environment, check=False)
        if done.returncode != 0:
            raise SystemExit(f"Wrong data or a failure ({done.returncode}): {' '.join(command)}\n{done.stderr}")
        seconds, added, allocations = done.stdout.split()
        return float(seconds), int(added), int(allocations)

    def file_of(self, program):
        """Returns the path of the file that a program works on. A writing program starts without the file."""
        if program.source:
            return self.path(program.source)
        path = self.path(program.name)
        shutil.rmtree(os.path.dirname(path), ignore_errors=True)
        os.makedirs(os.path.dirname(path))
        return path

    def measure(self, program, size, **how):
        path = self.file_of(program)
        outcome = self.run(program.binary, program.mode, path, size, **how)
        self.bytes = size_of(os.path.dirname(path))
        return outcome

    def time(self, program, size):
        """Returns seconds and KiB. Removes written files immediately, before the system flushes them to the disk."""
        measured = self.measure(program, size)[:2]
        if not program.source:
            shutil.rmtree(self.folder)
        return measured

    def prepare(self, size, check=True):
        """Makes the files to be read, if any, and checks everything that is read or written."""
        shutil.rmtree(self.folder, ignore_errors=True)
        for source in {p.source for p in self.available} - {""}:
            os.makedirs(os.path.dirname(self.path(source)))
            self.run(source, self.workload.prepare.get(source, "write"), self.path(source), size)
        if not check:
            return
        if self.workload.programs[0].source:
            for program in self.available:
                self.measure(program, size, variables=LOOKING_AT_ALL)
        else:
            self.check_written(size)

    def check_written(self, size):
        for program in self.available:
            self.measure(program, size)
            if program.read_back == "xlsx":
                check_cells(self.path(program.name), size)
            elif program.read_back:
                self.run(program.binary, program.read_back, self.path(program.name), size, variables=LOOKING_AT_ALL)
            elif program.name != LIMIT:
                check_same_bytes(*(os.path.dirname(self.path(name)) for name in (LIMIT, program.name)))
        shutil.rmtree(self.folder)

    def count_calls(self, program, size):
        """Returns system calls and allocations per operation; None for allocations that can't be counted."""
        operations = self.workload.operations(size)
        counter = os.path.join(self.programs, "count_allocations.so")
        allocations = self.measure(program, size, variables={"LD_PRELOAD": counter})[2]
        trace = os.path.join(os.path.dirname(self.folder), "trace")
        self.measure(program, size, ahead=["strace", "-f", "-o", trace])
        with open(trace, encoding="utf-8", errors="replace") as lines:
            work = re.search(r'access\("work begins".*?\n(.*?)[^\n]*access\("work ends"', lines.read(), re.DOTALL)[1]
        calls = sum(1 for line in work.splitlines() if not re.search(r"resumed>|--- |\+\+\+ ", line))
        return calls / operations, allocations / operations if allocations >= 0 else None


def size_of(folder):
    return sum(entry.stat().st_size for entry in os.scandir(folder))


def check_same_bytes(*folders):
    """Compares all files, except for their dates of writing."""
    names = [sorted(os.listdir(folder)) for folder in folders]
    if names[0] != names[1]:
        raise SystemExit(f"{folders[0]} and {folders[1]} hold different files")
    for name in names[0]:
        if subprocess.run(["cmp", "-s", *(os.path.join(folder, name) for folder in folders)], check=False).returncode:
            first, second = (without_dates(os.path.join(folder, name)) for folder in folders)
            if first != second:
                raise SystemExit(f"{folders[0]} and {folders[1]} differ in {name}")


def without_dates(path):
    with open(path, "rb") as file:
        return re.sub(rb"<(AnalyzingDate|AnalyzingDateString)>[^<]*", rb"<\1>", file.read())


def check_cells(path, columns):
    """Checks that a zipped workbook contains the cells of WorkbookCells.h."""
    with zipfile.ZipFile(path) as archive:
        cells = re.findall(rb"<v>([^<]*)</v>", archive.read("xl/worksheets/sheet1.xml"))
    made = ((row * 12 + column) / 7 + 0.001 for row in range(65000) for column in range(columns))
    if len(cells) != 65000 * columns or not all(isclose(float(a), b, rel_tol=1e-14) for a, b in zip(cells, made)):
        raise SystemExit(f"{path} contains wrong cells")


def size_for(workload, options):
    return options.scale * (workload.quick if options.quick and workload.quick else workload.size)


def measure(programs, folder, workload, options):
    """Returns the data of a table: times, memory and calls of each program."""
    size = size_for(workload, options)
    bench = Bench(programs, folder, workload)
    counted = {}
    if not options.no_counts:
        few = workload.counted or workload.size
        bench.prepare(few)
        counted = {program.name: bench.count_calls(program, few) for program in bench.available}
    bench.prepare(size)
    runs = {program.name: [] for program in bench.available}
    for _ in range(options.rounds):
        for program in bench.available:
            runs[program.name].append(bench.time(program, size))
    return {
        "title": workload.title, "operation": workload.operation, "operations": workload.operations(size),
        "rounds": options.rounds,
        "programs": {p.name: {
            "seconds": [seconds for seconds, _ in runs[p.name]],
            "KiB": statistics.median(added for _, added in runs[p.name]),
            "calls": counted.get(p.name, (None, None))[0], "allocations": counted.get(p.name, (None, None))[1],
            "less": p.less, "ours": p.ours,
        } for p in bench.available},
    }


def measure_growth(programs, folder, workload, options):
    """Returns the seconds per MiB of limit and library, at 1, 4 and 16 times the size."""
    grown = {LIMIT: [], OURS: []}
    for factor in (1, 4, 16):
        size = factor * size_for(workload, options)
        bench = Bench(programs, folder, workload)
        bench.available = [p for p in bench.available if p.name in grown]
        bench.prepare(size, check=factor == 1)
        runs = {name: [] for name in grown}
        for _ in range(options.rounds):
            for program in bench.available:
                seconds = bench.time(program, size)[0]
                runs[program.name].append(seconds / bench.bytes * (1 << 20))
        for name, seconds in runs.items():
            grown[name].append(statistics.median(seconds))
    return {"title": workload.title, "rounds": options.rounds, "secondsPerMiB": grown}


def read_options():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter,
                                     prog="scripts/bench")
    parser.add_argument("--programs", required=True, help=argparse.SUPPRESS)
    parser.add_argument("workloads", nargs="*", metavar="WORKLOAD", help=", ".join(WORKLOADS))
    parser.add_argument("--quick", action="store_true", help="small sizes, under three minutes")
    parser.add_argument("--rounds", type=int, default=5, help="number of runs of each program (default 5)")
    parser.add_argument("--scale", type=int, default=1, help="factor for all sizes (default 1)")
    parser.add_argument("--growth", action="store_true", help="measure the time per MiB at 1, 4 and 16 times the size")
    parser.add_argument("--no-counts", action="store_true", help="don't count system calls and allocations")
    memory = "/dev/shm" if os.path.isdir("/dev/shm") else None
    parser.add_argument("--folder", default=memory, help="folder for temporary files (default: one in memory)")
    parser.add_argument("--json", metavar="FILE", help="add the numbers to those in FILE")
    parser.add_argument("--page", metavar="FILE", help="update this page's tables, also from the JSON file")
    options = parser.parse_intermixed_args()
    for name in options.workloads:
        if name not in WORKLOADS:
            parser.error(f"unknown workload {name}")
    return options


def main():
    options = read_options()
    outcome = {"machine": {}, "workloads": {}, "growth": {}}
    if options.json and os.path.exists(options.json):
        with open(options.json, encoding="utf-8") as file:
            outcome = json.load(file)
    kind, work, table = ("growth", measure_growth, tables.growth_table) if options.growth else (
        "workloads", measure, tables.workload_table)
    with tempfile.TemporaryDirectory(dir=options.folder) as folder:
        if not options.growth:
            outcome["machine"] = tables.machine(folder)
        for name in options.workloads or WORKLOADS:
            outcome[kind][name] = work(options.programs, folder, WORKLOADS[name], options)
            print(table({name: outcome[kind][name]} if options.growth else outcome[kind][name]), flush=True)
            if options.json:
                with open(options.json, "w", encoding="utf-8") as file:
                    json.dump(outcome, file, indent=1)
    if options.page:
        tables.write_page(options.page, outcome)


if __name__ == "__main__":
    main()
