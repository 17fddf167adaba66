"""The workloads, their sizes, and the programs that run them."""
from dataclasses import dataclass, field


@dataclass
class Program:
    """One implementation of a workload: a program of the build folder and its mode."""

    name: str
    binary: str
    mode: str
    source: str = ""  # the program that writes the file to be read; empty for a program that writes
    read_back: str = ""  # the mode that reads back what it wrote; empty if its bytes are compared with the limit's
    less: bool = False  # whether it does less than the others, so that it doesn't count as a peer
    ours: bool = False  # whether it is the library by another interface


@dataclass
class Workload:
    title: str
    operation: str
    arguments: callable  # of the size
    operations: callable  # of the size
    programs: list
    size: int
    quick: int = 0  # the size for --quick; 0 means the same size
    counted: int = 0  # the size for counting calls; 0 means the same size
    suffix: str = ""
    prepare: dict = field(default_factory=dict)  # the mode in which a source writes, if not "write"
    environment: dict = field(default_factory=dict)  # variables for all its programs


LIMIT, OURS = "limit", "VX-FileIO"


def by_c(mode, source="raw_vx"):
    return Program("the same from C", "raw_c", mode, source, ours=True)


def by_python(kind, mode, name="the same from Python"):
    return Program(name, f"{kind}_python.py", mode, f"{kind}_vx", ours=True)


def raw_writers():
    return [
        Program(LIMIT, "raw_write_limit", "write"),
        Program(OURS, "raw_vx", "write"),
        by_c("write", ""),
        Program("HDF5, flushed", "raw_hdf5", "write", read_back="read"),
        Program("HDF5", "raw_hdf5", "write-later", read_back="read", less=True),
        Program("EDFlib", "raw_edf", "write", read_back="read", less=True),
    ]


def raw_readers(mode):
    return [
        Program(LIMIT, "raw_read_limit", mode, "raw_vx"),
        Program(OURS, "raw_vx", mode, "raw_vx"),
        *([by_c(mode)] if mode == "read" else []),
        Program("HDF5", "raw_hdf5", mode, "raw_hdf5"),
        Program("EDFlib", "raw_edf", mode, "raw_edf"),
    ]


def raw_arrays(mode):
    programs = [Program(LIMIT, "raw_bulk_limit", mode, "raw_vx"), Program(OURS, "raw_vx", mode, "raw_vx")]
    if mode != "bulk-every":
        programs += [by_c(mode), by_python("raw", mode)]
    return programs + ([Program("HDF5", "raw_hdf5", mode, "raw_hdf5")] if mode != "bulk-read" else [])


def raw(title, programs, samples, rounds, counted=24, delivered=54):
    """Rounds of 54 segments, of which `delivered` are read or written; calls are counted in 1 of `counted` rounds."""
    return Workload(title, "segment", lambda n: [n, samples], lambda n: delivered * n, programs, rounds, rounds // 8,
                    rounds // counted)


def arrays(title, mode, samples, rounds, counted=24):
    """Reading into arrays, which are in huge pages: with small ones, the time to look up pages hides the reading."""
    workload = raw(title, raw_arrays(mode), samples, rounds, counted)
    workload.environment = {"GLIBC_TUNABLES": "glibc.malloc.hugetlb=1"}
    return workload


def xml(kind, title, mode, times):
    """One file, `times` times per run, so that a run is long enough to measure."""
    source = "" if mode == "write" else f"{kind}_vx"
    peers = ["pugixml", "tinyxml2"] + (["expat"] if mode == "read" else [])
    read_back = f"read-{kind}" if mode == "write" else ""
    programs = [Program(LIMIT, f"{kind}_limit", mode, source), Program(OURS, f"{kind}_vx", mode, source)]
    programs += [Program(peer, f"xml_{peer}", f"{mode}-{kind}", source, read_back) for peer in peers]
    if kind == "results" and mode == "read":
        programs.append(by_python(kind, mode, "its responses as a table in Python"))
    arguments = [times] if times > 1 else []
    return Workload(title, "file", lambda n: [n, *arguments], lambda n: times, programs, 1, suffix=".xml")


WORKLOADS = {
    "write-20000": raw("54 wells written round robin, segments of 20,000 samples", raw_writers(), 20000, 246),
    "write-1000": raw("54 wells written round robin, segments of 1,000 samples", raw_writers(), 1000, 1080),
    "read-20000": raw("All wells read, segments of 20,000 samples", raw_readers("read"), 20000, 246),
    "read-1000": raw("All wells read, segments of 1,000 samples", raw_readers("read"), 1000, 1080),
    "one-20000": raw("One well of 54, first pass, segments of 20,000 samples", raw_readers("one"), 20000, 246, 24, 1),
    "one-1000": raw("One well of 54, first pass, segments of 1,000 samples", raw_readers("one"), 1000, 1080, 24, 1),
    "every-20000": raw("Every well in turn, segments of 20,000 samples", raw_readers("every"), 20000, 246, 96),
    "every-1000": raw("Every well in turn, segments of 1,000 samples", raw_readers("every"), 1000, 1080, 96),
    "bulk-20000": arrays("All wells into arrays, segments of 20,000 samples", "bulk", 20000, 246),
    "bulk-1000": arrays("All wells into arrays, segments of 1,000 samples", "bulk", 1000, 1080),
    "bulk-read-20000": arrays("All wells into arrays, with the index at hand, segments of 20,000 samples", "bulk-read",
                              20000, 246),
    "bulk-read-1000": arrays("All wells into arrays, with the index at hand, segments of 1,000 samples", "bulk-read",
                             1000, 1080),
    "bulk-every-20000": arrays("Every well in turn into an array, segments of 20,000 samples", "bulk-every", 20000, 246,
                               96),
    "bulk-every-1000": arrays("Every well in turn into an array, segments of 1,000 samples", "bulk-every", 1000, 1080,
                              96),
    "open": Workload("A file of recordings opened", "recording", lambda n: [n], lambda n: n, [
        Program(LIMIT, "raw_open_limit", "open", "raw_vx"),
        Program(OURS, "raw_vx", "open", "raw_vx"),
        Program("HDF5", "raw_hdf5", "open", "raw_hdf5"),
    ], 10000, 2000, 1000, prepare={"raw_vx": "headers", "raw_hdf5": "headers"}),
    "results-write": xml("results", "A results file written", "write", 1),
    "results-read": xml("results", "A results file read", "read", 1),
    "settings-write": xml("settings", "A settings file written", "write", 100),
    "settings-read": xml("settings", "A settings file read", "read", 100),
    "workbook": Workload("A workbook of 65,000 rows of doubles", "workbook", lambda n: [n], lambda n: 1, [
        Program(LIMIT, "workbook_limit", "write"),
        Program(OURS, "workbook_vx", "write"),
        Program("libxlsxwriter", "workbook_xlsxwriter", "write", read_back="xlsx"),
    ], 12, 3, 3, ".xls"),
    "plate-export": Workload("A whole plate's export, 55 workbooks", "workbook", lambda n: [n], lambda n: 55, [
        Program(LIMIT, "export_limit", "write"),
        Program(OURS, "export_vx", "write"),
    ], 2000, suffix=".xls"),
}
