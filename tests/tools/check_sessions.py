#!/usr/bin/env python3
"""Runs the console sessions of Markdown pages and compares what they print with what the pages say.

    check_sessions.py [--update | --sanitized | --list] FOLDER_OF_VXFILE PAGE...

A session is a block that begins with ```console; its lines that begin with "$ " are commands, the others their output.
Each session runs in a folder of its own that has the files below. PAGE:LINE is the session that begins in a line of a
page. --list prints these. --update writes the real output into the pages. --sanitized skips commands that limit the
address space, because sanitizers need terabytes of it. The program's version is shown as VERSION on the pages, so that
a release doesn't change them.
"""
import argparse
import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

REFERENCE = pathlib.Path(__file__).resolve().parent.parent / "reference"
FILES = {
    "run.vxd": "small_example.vxd",
    "several.vxd": "several_recordings.vxd",
    "series.vxd": "version_1.vxd",
    "cut.vxd": "unfinished.vxd",
    "torn.vxd": "cut_samples.vxd",
    "backwards.vxd": "backwards.vxd",
    "circle.vxd": "circle_of_recordings.vxd",
    "numbers.vxd": "foreign_numbers.vxd",
    "run.vxs": "xml/settings.vxs",
    "edited.vxs": "xml/settings_indented.vxs",
    "run.vxr": "xml/results.vxr",
    "shuffled.vxr": "xml/results_shuffled.vxr",
    "small.xls": "workbooks/small.xls",
    "other.txt": "small_example.txt",
    "two.vxd": "two_tasks.vxd",
    "two.vxr": "two_tasks.vxr",
    "two.vxs": "two_tasks.vxs",
    "bend": "../tools/bend.sh",
}


def run(command, folder, programs, version):
    environment = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", NO_COLOR="1", LC_ALL="C.UTF-8")
    # timeout(1) also ends processes that the shell has started.
    done = subprocess.run(["timeout", "60", "bash", "-c", command], cwd=folder, env=environment,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    output = done.stdout.decode(errors="replace").replace("\r\n", "\n")
    output = output.replace(f"vxfile {version}", "vxfile VERSION").replace(f'"vxfile": "{version}"', '"vxfile": "VERSION"')
    return output.splitlines()


def version_of(programs):
    return subprocess.run([programs / "vxfile", "--version"], stdout=subprocess.PIPE, text=True).stdout.split()[-1]


class Session:
    """A session of a page: its commands with what they print, and the line in which it begins, from 1."""

    def __init__(self, page, line):
        self.page, self.line, self.said = page, line, []

    def __str__(self):
        return f"{self.page}:{self.line}"

    def play(self, programs, version, skipped):
        """Returns its lines with what its commands print now, but for those with the text `skipped`."""
        played, is_skipped = [], False
        with tempfile.TemporaryDirectory() as folder:
            for name, source in FILES.items():
                shutil.copyfile(REFERENCE / source, pathlib.Path(folder) / name)
            for line in self.said:
                if line.startswith("$ "):
                    is_skipped = bool(skipped and skipped in line)
                    played += [line] if is_skipped else [line, *run(line[2:], folder, programs, version)]
                elif is_skipped:
                    played.append(line)
        return played


def sessions_of(name):
    """Returns the sessions of PAGE, or the one of PAGE:LINE."""
    page, _, wanted = name.partition(":")
    sessions, in_session = [], False
    for number, line in enumerate(pathlib.Path(page).read_text(encoding="utf-8").splitlines(), 1):
        if line == "```console":
            sessions.append(Session(page, number))
        elif in_session and line != "```":
            sessions[-1].said.append(line)
        in_session = line == "```console" or (in_session and line != "```")
    return [session for session in sessions if wanted in ("", str(session.line))]


def update(sessions, played):
    """Writes what the sessions of a page print now into it."""
    page = pathlib.Path(sessions[0].page)
    lines = page.read_text(encoding="utf-8").splitlines()
    for session, real in reversed(list(zip(sessions, played))):
        lines[session.line:session.line + len(session.said)] = real
    page.write_text("\n".join(lines) + "\n", encoding="utf-8")


def report(session, real):
    """Prints the first line of a session that differs from what its commands print now. Returns whether one does."""
    longest = max(len(session.said), len(real))
    pairs = zip(session.said + [""] * (longest - len(session.said)), real + [""] * (longest - len(real)))
    for number, (a, b) in enumerate(pairs, session.line + 1):
        if a != b:
            print(f"{session.page}:{number}: the page says\n    {a}\nbut the program\n    {b}")
            return True
    return session.said != real


def main():
    parser = argparse.ArgumentParser(allow_abbrev=False, description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    option = parser.add_mutually_exclusive_group()
    option.add_argument("--update", action="store_true")
    option.add_argument("--sanitized", action="store_true")
    option.add_argument("--list", action="store_true")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("pages", nargs="+")
    arguments = parser.parse_args()
    programs = arguments.folder.resolve()
    pages = {page: sessions_of(page) for page in arguments.pages}
    if arguments.list:
        print(*(session for sessions in pages.values() for session in sessions), sep="\n")
        return 0
    skipped = "ulimit -v" if arguments.sanitized else None
    version = version_of(programs)
    wrong = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as threads:
        for page, sessions in pages.items():
            played = list(threads.map(lambda session: session.play(programs, version, skipped), sessions))
            if arguments.update:
                update(sessions, played)
            else:
                wrong += sum(report(*pair) for pair in zip(sessions, played)) or not sessions
            print(f"{page}: {sum(line.startswith('$ ') for session in sessions for line in session.said)} commands")
    return 1 if wrong else 0


sys.exit(main())
