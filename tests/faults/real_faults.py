"""real_faults.py PLAY_FILES FOLDER: real system faults while PLAY_FILES writes or reads below FOLDER.

A tracer makes one system call after another fail, or kills the process there; a limit keeps files from growing. After
each fault, complete data must still be there, and the program must have reported what is missing.
"""
import os
import re
import resource
import shutil
import signal
import subprocess
import sys

FILES = {"raw": "run.vxd", "settings": "run.vxs", "results": "run.vxr", "export": "run.xls"}
REPLACED = ("settings", "results")
OLD = b"what was there before"
SEGMENTS = 6
# The system calls that the library makes. Some have other names on other systems.
CALLS = ("open,openat", "close", "fstat,newfstatat,lstat", "readlink", "pwritev,pwritev2", "pread64", "ftruncate",
         "fchmod", "fdatasync", "fsync", "rename", "unlink")
FAULTS = ("error=ENOSPC", "error=EIO", "error=EINTR", "signal=KILL")


class Plays:
    def __init__(self, program, folder):
        self.program = program
        self.folder = folder
        self.count = 0
        self.whole = {}
        for kind in FILES:
            self.start(kind, None)
            assert self.run("write", kind).returncode == 0, kind
            self.whole[kind] = self.files()

    def start(self, kind, old=OLD):
        shutil.rmtree(self.folder, ignore_errors=True)
        os.makedirs(self.folder)
        if old is not None:
            with open(self.path(kind), "wb") as file:
                file.write(old)

    def path(self, kind):
        return os.path.join(self.folder, FILES[kind])

    def files(self):
        found = {}
        for name in os.listdir(self.folder):
            with open(os.path.join(self.folder, name), "rb") as file:
                found[name] = re.sub(rb"<AnalyzingDate>.*</AnalyzingDateString>", b"", file.read())
        return found

    def run(self, verb, kind, before=(), **options):
        self.count += 1
        return subprocess.run([*before, self.program, verb, kind, self.folder], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, timeout=60, check=False, **options)

    def check(self, kind, done, what, once=True):
        """Compares the files with what the program reported."""
        told = done.stdout.decode("latin-1").strip()
        killed = done.returncode in (-signal.SIGKILL, 128 + signal.SIGKILL)
        assert killed or done.returncode in (0, 1, 2), (what, done)
        assert killed or (done.returncode == 0) == (told == ""), (what, done)
        found = self.files()
        if kind in REPLACED:
            content = found[FILES[kind]]
            is_new = content == self.whole[kind][FILES[kind]]
            assert is_new or content == OLD, (what, "neither the old nor the new file")
            assert killed or is_new == (told == "" or ", flushing the folder of " in told), (what, told)
            assert killed or len(found) == 1, (what, "left behind", list(found))
        elif kind == "export":
            for name, content in self.whole[kind].items():
                assert killed or found.get(name) == content or name in told, (what, name, told)
        elif done.returncode != 2:
            self.check_segments(done, killed, told, what, once)

    def check_segments(self, done, killed, told, what, once):
        read = self.run("read", "raw")
        content = read.stdout.decode("latin-1").strip()
        assert read.returncode in (0, 2), (what, read)
        if read.returncode == 2:
            assert told or killed, (what, content)
            return
        segments = [int(word) for word in content.split()]
        assert segments == sorted(set(segments)), (what, content)
        missing = re.search(r"; segments missing: (\d+)", told)
        if killed:
            assert len(segments) % 3 == 0, (what, content)
        elif once:
            assert len(segments) == SEGMENTS - int(missing[1] if missing else 0), (what, content, told)


def injected(plays, verb, kind, calls, fault):
    """Runs the program again and again, with the fault at a later one of these calls each time, until there is none."""
    number, met = 0, True
    while met:
        number += 1
        if verb == "write":
            plays.start(kind)
        done = plays.run(verb, kind, ["strace", "-qq", "-e", f"trace={calls}", "-e", f"inject={calls}:{fault}:when={number}"])
        met = b"(INJECTED)" in done.stderr or b"killed by SIGKILL" in done.stderr
        yield f"{kind}: {fault} at {calls} number {number}", done


def traced(plays):
    before = plays.count
    for kind in FILES:
        for calls in CALLS:
            for fault in FAULTS:
                for what, done in injected(plays, "write", kind, calls, fault):
                    plays.check(kind, done, what)
        if kind == "export":
            continue
        plays.start(kind, None)
        plays.run("write", kind)
        whole = plays.run("read", kind).stdout
        for calls in CALLS:
            for what, done in injected(plays, "read", kind, calls, "error=EIO"):
                assert done.returncode in (0, 2), (what, done)
        assert plays.run("read", kind).stdout == whole
    print(f"{plays.count - before} runs in which a tracer made each system call fail, or killed the process there")


def with_limits(plays):
    count = 0
    for kind in FILES:
        largest = max(len(content) for content in plays.whole[kind].values())
        for size in range(0, largest + largest // 30, max(largest // 30, 1)):
            plays.start(kind)
            done = plays.run("write", kind, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)))
            plays.check(kind, done, f"{kind}: files of {size} bytes at most", once=False)
            assert size >= largest or done.returncode == 1 and b"File too large" in done.stdout, (kind, size, done)
            count += 1
    print(f"{count} runs with a file size limit")


def works(command):
    return subprocess.run(command, capture_output=True, check=False).returncode == 0


def main():
    plays = Plays(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]))
    with_limits(plays)
    if works(["strace", "-qq", "-e", "trace=none", "true"]):
        traced(plays)
    else:
        print("Tracing is not possible here. faults_test made every call fail between library and system instead.")


main()
