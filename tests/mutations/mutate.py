"""Plants small faults in a copy of the sources, one at a time, and checks that the tests notice.

usage: mutate.py BUILD_FOLDER [WORD]
       mutate.py --check               plants nothing; checks that each fault still has its place

The faults are in faults.txt next to this script; with a WORD, only those whose file or text contains it. Each begins
with a line "@ FILE". Lines with "-" are text that occurs exactly once in that file, lines with "+" replace it. It is an
error if the text no longer occurs or the fault doesn't compile: the list must be updated. So is a fault that no test
notices.
"""

import os
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT = 300  # seconds; if a fault makes a test hang, it counts as noticed

# The test programs for each folder, those most likely to notice first.
PROGRAMS = {
    "base": ["base_test", "settings_test", "rawdata_test"],
    "access": ["access_test"],
    "frame": ["rawdata_test", "settings_test", "results_test"],
    "helpers": ["helpers_test", "rawdata_test", "xmlarchive_test", "results_test", "faults_test"],
    "rawdata": ["rawdata_test", "access_test", "layout_test", "reference_test", "faults_test", "vxfile_test",
                "sessions", "pytest"],
    "xmlarchive": ["xmlarchive_test", "settings_test", "reference_test", "faults_test"],
    "settings": ["settings_test", "reference_test", "results_test", "forms"],
    "results": ["results_test", "reference_test", "forms", "tables", "c_interface", "sessions"],
    "export": ["export_test", "results_test", "faults_test"],
    "capi": ["c_interface", "bindings"],
    "python": ["pytest"],
    "recovery": ["recover_test", "sessions", "faults_test"],
    "verify": ["vxfile_test", "sessions", "recover_test"],
    "vxfile": ["vxfile_test", "sessions", "samples", "tables", "catalog", "tool_faults_test"],
}

# Checks by script: the targets that each one needs, and its command. {} is the build folder; paths are those of the
# sources.
SCRIPTS = {
    "sessions": ("vxfile", ["tests/tools/check_sessions.py", "{}/bin", "docs/vxfile.md", "tests/tools/golden.md"]),
    "samples": ("vxfile", ["tests/tools/samples_numpy.py", "{}/bin/vxfile", "tests/reference"]),
    "catalog": ("vxfile", ["tests/tools/catalog.py", "{}/bin/vxfile", "tests/reference"]),
    "tables": ("vxfile", ["tests/tools/table_readers.py", "{}/bin/vxfile", "tests/reference/xml"]),
    "c_interface": ("capi_c_test", ["-c", "import subprocess, sys; sys.exit(subprocess.call(sys.argv[1:]))",
                                    "{}/bin/capi_c_test", "tests/reference", "{}/tests/capi/capi_c_test"]),
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


def build(folder, targets):
    built = run("cmake", "--build", folder, "--parallel", "--target", "vxfileio", *targets.split())
    if built.returncode:
        sys.exit(built.stdout)


def command_of(folder, program):
    """Builds what a program needs. Returns the command that runs it."""
    targets, words = SCRIPTS.get(program, (program, None))
    build(folder, targets)
    if words is None:
        return [str(folder / "bin" / program), "--gtest_brief=1", "--gtest_fail_fast"]
    return ["/usr/bin/python3", *(word.format(folder) for word in words)]


def failing_program(folder, programs):
    """Builds and runs one program after the other. Returns the first that doesn't pass, or None."""
    for program in programs:
        command = command_of(folder, program)
        try:
            if subprocess.run(command, cwd=folder / "source", stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              timeout=TIMEOUT).returncode:
                return program
        except subprocess.TimeoutExpired:
            return program
    return None


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


def make_copy(folder, programs):
    """Copies the sources. These tests must pass."""
    update_copy(folder / "source")
    configured = run("cmake", "-S", folder / "source", "-B", folder, "-DCMAKE_BUILD_TYPE=Debug",
                     "-DVXFILEIO_BUILD_TOOLS=ON", "-DVXFILEIO_BUILD_EXAMPLES=ON",
                     f"-DVXFILEIO_BUILD_PYTHON={'pytest' in programs}",
                     "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -D_GLIBCXX_ASSERTIONS", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON")
    if configured.returncode:
        sys.exit(configured.stdout)
    program = failing_program(folder, programs)
    if program:
        sys.exit(program + " must pass before faults are planted")


def is_noticed(folder, fault):
    path = folder / "source" / fault.file
    before = path.read_text()
    path.write_text(fault.plant(before))
    try:
        program = failing_program(folder, fault.programs())
        print("%-16s %s" % (program or "NOT NOTICED", fault), flush=True)
        return program is not None
    except SystemExit:
        print("doesn't compile: %s" % fault)
        raise
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
        os.environ["TMPDIR"] = "/dev/shm"  # files in memory: the tests take a tenth of the time
    chosen = [fault for fault in faults if sys.argv[2:] == [] or sys.argv[2] in str(fault)]
    make_copy(folder, sorted({program for fault in chosen for program in fault.programs()}))
    noticed = [is_noticed(folder, fault) for fault in chosen]
    print("%d of %d faults noticed" % (sum(noticed), len(noticed)))
    sys.exit(0 if all(noticed) and noticed else 1)


if __name__ == "__main__":
    main()
