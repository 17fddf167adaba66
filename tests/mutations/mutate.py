"""Plants small faults in a copy of the sources and checks that the tests notice each of them.

usage: mutate.py BUILD_FOLDER [WORD]
       mutate.py --check               plants nothing; checks that each fault still has its place

The faults are in faults.txt next to this script; with a WORD, only those whose file or text contains it. Each begins
with a line "@ FILE". Lines with "-" are text that occurs exactly once in that file, lines with "+" replace it. It is an
error if the text no longer occurs or the fault doesn't compile: the list must be updated. So is a fault that no test
notices.

First all faults that can have a guard are built together, and each is tried with the tests that reach it. The others
are then planted alone, as are those that no test has noticed so far, marked "(not yet)".
"""

import collections
import concurrent.futures
import os
import pathlib
import re
import signal
import subprocess
import sys
import tempfile
import time

import guards

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT = 300  # seconds; if a fault makes a test hang, it counts as noticed

# The test programs for each folder, those most likely to notice first.
PROGRAMS = {
    "base": ["base_test", "settings_test", "rawdata_test"],
    "access": ["access_test", "vxfile_test", "samples", "pytest"],
    "frame": ["rawdata_test", "settings_test", "results_test", "faults_test"],
    "helpers": ["helpers_test", "rawdata_test", "xmlarchive_test", "results_test", "reference_test", "vxfile_test",
                "faults_test"],
    "rawdata": ["rawdata_test", "access_test", "layout_test", "reference_test", "faults_test", "vxfile_test",
                "sessions", "pytest", "c_interface"],
    "xmlarchive": ["xmlarchive_test", "settings_test", "reference_test", "faults_test", "vxfile_test",
                   "sessions"],
    "settings": ["settings_test", "reference_test", "results_test", "forms"],
    "results": ["results_test", "reference_test", "forms", "tables", "c_interface", "sessions"],
    "export": ["export_test", "results_test", "faults_test"],
    "capi": ["c_interface", "bindings"],
    "python": ["pytest"],
    "recovery": ["recover_test", "layout_test", "vxfile_test", "sessions", "faults_test"],
    "verify": ["vxfile_test", "sessions", "recover_test", "c_interface"],
    "vxfile": ["vxfile_test", "sessions", "samples", "tables", "catalog", "tool_faults_test"],
}

# Checks by script: the targets that each one needs, and its command. {} is the build folder; paths are those of the
# sources.
SCRIPTS = {
    "sessions": ("vxfile", ["tests/tools/check_sessions.py", "{}/bin", "docs/vxfile.md", "docs/catalog.md",
                            "tests/tools/golden.md"]),
    "samples": ("vxfile", ["tests/tools/samples_numpy.py", "{}/bin/vxfile", "tests/reference"]),
    "catalog": ("vxfile", ["tests/tools/catalog.py", "{}/bin/vxfile", "tests/reference"]),
    "tables": ("vxfile", ["tests/tools/table_readers.py", "{}/bin/vxfile", "tests/reference/xml"]),
    "c_interface": ("capi_c_test", ["-c", "import subprocess, sys, tempfile\n"
                                    "sys.exit(subprocess.call([*sys.argv[1:], tempfile.gettempdir()]))",
                                    "{}/bin/capi_c_test", "tests/reference"]),
    "bindings": ("capi_c_test", ["capi/tools/bindings.py", "."]),
    "forms": ("print_forms", ["tests/reference/xml/check_forms.py", "{}/bin/print_forms"]),
    "pytest": ("vxfileio_python_package vxfile plate_run", ["-m", "pytest", "-x", "-p", "no:cacheprovider",
                                                            "tests/python"]),
}


class Fault:
    def __init__(self, file):
        self.file, self.old, self.new = file, [], []

    def __str__(self):
        return "%s: %s -> %s" % (self.file, " ".join(self.old), " ".join(self.new) or "nothing")

    def programs(self):
        rooms = self.file.split("/")
        return PROGRAMS[rooms[0] if rooms[0] in PROGRAMS else rooms[1]]

    def plant(self, text):
        old = "\n".join(self.old)
        if text.count(old) != 1:
            sys.exit("faults.txt: the text occurs %d times, not once: %s" % (text.count(old), self))
        return text.replace(old, "\n".join(self.new))


def read_faults(path):
    faults = []
    for line in path.read_text().splitlines():
        if line.startswith("@ "):
            faults.append(Fault(line[2:]))
        elif line.startswith("- "):
            faults[-1].old.append(line[2:])
        elif line.startswith("+"):
            faults[-1].new.append(line[2:])
        elif line and not line.startswith("#"):
            sys.exit("not a line of a fault: " + line)
    return faults


def run(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)


def build(folder, program):
    """Builds what a program needs. Returns the messages of the compiler if that fails."""
    targets = SCRIPTS.get(program, (program, None))[0].split()
    built = run("cmake", "--build", folder, "--parallel", str(os.cpu_count()), "--target", "vxfileio", *targets)
    return built.stdout if built.returncode else ""


def command_of(folder, program):
    words = SCRIPTS.get(program, (program, None))[1]
    if words is None:
        return [str(folder / "bin" / program), "--gtest_brief=1", "--gtest_fail_fast"]
    return ["/usr/bin/python3", *(word.format(folder) for word in words)]


def tell(verdict, fault):
    """Prints a fault after what noticed it."""
    print("%-16s %s" % (verdict, fault), flush=True)


def ends_with_0(folder, command, **variables):
    """Runs a command in the copy of the sources. Returns whether it ends with 0, and in time."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as scratch:
        process = subprocess.Popen(command, cwd=folder / "source", env={**os.environ, "TMPDIR": scratch, **variables},
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
        try:
            return process.wait(TIMEOUT) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            if process.poll() is None:
                os.killpg(process.pid, signal.SIGKILL)  # also what it has started
                process.wait()


class Test:
    """One test of a program, one session, one file of Python tests, or a script."""

    def __init__(self, program, command):
        self.program, self.command = program, command
        self.seconds, self.reached = 0.0, bytes()

    def measure(self, folder):
        """Measures how long it takes and which faults it reaches. Returns whether it passes without a fault."""
        with tempfile.NamedTemporaryFile() as file:
            file.write(bytes(guards.SIZE))
            file.flush()
            begin = time.monotonic()
            passes = ends_with_0(folder, self.command, **{guards.REACHED: file.name})
            self.seconds = time.monotonic() - begin
            self.reached = pathlib.Path(file.name).read_bytes()
            return passes or ends_with_0(folder, self.command)  # it doesn't fail by chance


def tests_of(folder, program):
    """Returns the tests of a program, each with the command that runs it alone."""
    command = command_of(folder, program)
    source = folder / "source"
    if program == "sessions":
        sessions = subprocess.run([*command, "--list"], cwd=source, stdout=subprocess.PIPE, text=True, check=True).stdout
        return [Test(program, [*command[:3], session]) for session in sessions.split()]
    if program == "pytest":
        return [Test(program, [*command[:-1], str(file)]) for file in sorted(source.glob(command[-1] + "/test_*.py"))]
    if program in SCRIPTS:
        return [Test(program, command)]
    tests, suite = [], ""
    for line in run(*command, "--gtest_list_tests").stdout.splitlines():
        name = line.split("#")[0].strip()
        if line.startswith("  "):
            tests.append(Test(program, [*command, "--gtest_filter=" + suite + name]))
        else:
            suite = name
    return tests


def update_copy(copy):
    """Makes the copy equal to the sources. Writes only files that differ, so that only the last fault is rebuilt."""
    tops = [top for top in ROOT.iterdir() if top.name not in ("build", ".git")]
    files = {path.relative_to(ROOT) for top in tops for path in [top, *top.rglob("*")] if path.is_file()}
    for name in files:
        content = (ROOT / name).read_bytes()
        if not (copy / name).is_file() or (copy / name).read_bytes() != content:
            (copy / name).parent.mkdir(parents=True, exist_ok=True)
            (copy / name).write_bytes(content)
    for path in copy.rglob("*"):
        if path.is_file() and path.relative_to(copy) not in files:
            path.unlink()


def configure(folder, programs):
    """Makes a build folder for the copy of the sources."""
    header = folder / "guards.h"
    if not header.is_file() or header.read_text() != guards.HEADER:
        header.write_text(guards.HEADER)
    configured = run("cmake", "-S", folder / "source", "-B", folder, "-DCMAKE_BUILD_TYPE=Debug",
                     "-DVXFILEIO_BUILD_TOOLS=ON", "-DVXFILEIO_BUILD_EXAMPLES=ON",
                     f"-DVXFILEIO_BUILD_PYTHON={'ON' if 'pytest' in programs else 'OFF'}",
                     f"-DCMAKE_CXX_FLAGS=-w -include {folder}/guards.h",
                     "-DCMAKE_CXX_FLAGS_DEBUG=-O1 -D_GLIBCXX_ASSERTIONS", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON")
    if configured.returncode:
        sys.exit(configured.stdout)


def plant_guarded(folder, faults, refused):
    """Plants the faults that can have a guard, by number, except those that the compiler refused. Returns their numbers
    and the changed functions by file."""
    by_file = collections.defaultdict(dict)
    for number, fault in faults.items():
        if fault.file.endswith((".cpp", ".h")):
            planted = by_file[fault.file]
            if number not in refused:
                planted[number] = fault
    functions = {}
    for file, ones in by_file.items():
        text, functions[file] = guards.plant((ROOT / file).read_text(), ones)
        path = folder / "source" / file
        if path.read_text() != text:
            path.write_text(text)
    return {number for ones in functions.values() for _, _, numbers in ones for number in numbers}, functions


def uncompilable(messages, functions):
    """Returns the numbers of the faults in the functions that the compiler refuses."""
    numbers = set()
    for file, changed in functions.items():
        lines = {int(line) for line in re.findall(re.escape(file) + r":(\d+):\d+: (?:fatal )?error", messages)}
        numbers.update(*(ones for first, last, ones in changed if any(first <= line <= last for line in lines)))
    return numbers


def build_guarded(folder, faults, programs):
    """Builds the programs with all faults that can have a guard, by number. Returns their numbers."""
    refused = set()
    while True:
        planted, functions = plant_guarded(folder, faults, refused)
        messages = next(filter(None, (build(folder, program) for program in programs)), "")
        if not messages:
            return planted
        more = uncompilable(messages, functions)
        if not more:
            sys.exit(messages)
        refused |= more


def noticed_with_guards(folder, faults, programs):
    """Returns the numbers of the faults that were noticed while they were planted together."""
    planted = build_guarded(folder, faults, programs)
    tests = [test for program in programs for test in tests_of(folder, program)]

    def is_noticed(number):
        reaching = [test for test in tests if test.reached[number] and test.program in faults[number].programs()]
        for test in sorted(reaching, key=lambda test: test.seconds):
            fails = not ends_with_0(folder, test.command, **{guards.PLANTED: str(number)})
            if fails and ends_with_0(folder, test.command):  # it doesn't fail by chance
                tell(test.program, faults[number])
                return True
        tell("(not yet)", faults[number])
        return False

    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as threads:
        passed = threads.map(lambda test: test.measure(folder), tests)
        failed = [" ".join(test.command) for test, passes in zip(tests, passed) if not passes]
        if failed:
            sys.exit("These must pass without a fault:\n" + "\n".join(failed))
        return {number for number, noticed in zip(planted, threads.map(is_noticed, planted)) if noticed}


def is_noticed_alone(folder, fault):
    """Plants a fault, and builds and runs one program after the other until one notices it."""
    path = folder / "source" / fault.file
    before = path.read_text()
    path.write_text(fault.plant((ROOT / fault.file).read_text()))
    try:
        for program in fault.programs():
            messages = build(folder, program)
            if messages:
                sys.exit("%s\ndoesn't compile: %s" % (messages, fault))
            if not ends_with_0(folder, command_of(folder, program)):
                tell(program, fault)
                return True
        tell("NOT NOTICED", fault)
        return False
    finally:
        path.write_text(before)


def main():
    if len(sys.argv) not in (2, 3) or (sys.argv[1].startswith("-") and sys.argv[1:] != ["--check"]):
        sys.exit(__doc__)
    faults = read_faults(pathlib.Path(__file__).with_name("faults.txt"))
    for fault in faults:
        fault.plant((ROOT / fault.file).read_text())
    if sys.argv[1:] == ["--check"]:
        return
    folder = pathlib.Path(sys.argv[1]).resolve()
    os.environ.update(PYTHONPATH=str(folder / "python"), PYTHONDONTWRITEBYTECODE="1")
    if os.path.isdir("/dev/shm"):
        tempfile.tempdir = "/dev/shm"  # files in memory: the tests take a tenth of the time
    if len(faults) >= guards.SIZE:
        sys.exit("Make SIZE in guards.py larger.")
    chosen = dict(enumerate((fault for fault in faults if sys.argv[2:] == [] or sys.argv[2] in str(fault)), start=1))
    programs = sorted({program for fault in chosen.values() for program in fault.programs()})
    update_copy(folder / "source")
    configure(folder, programs)
    noticed = noticed_with_guards(folder, chosen, programs)
    noticed |= {number for number in chosen.keys() - noticed if is_noticed_alone(folder, chosen[number])}
    print("%d of %d faults noticed" % (len(noticed), len(chosen)))
    sys.exit(0 if noticed and len(noticed) == len(chosen) else 1)


if __name__ == "__main__":
    main()
