#!/usr/bin/env python3
"""Runs the console sessions of Markdown pages and compares what they print with what the pages say.

    check_sessions.py [--update | --sanitized | --list] FOLDER_OF_VXFILE PAGE...

A session is a block that begins with ```console; its lines that begin with "$ " are commands, the others their output.
Each session runs in a folder of its own that has the files below. PAGE:LINE is the session that begins in a line of a
page. --list prints them. --update writes the real output into the pages. --sanitized skips commands that limit the
address space, because sanitizers need terabytes of it. The program's version is shown as VERSION on the pages, so that
a release doesn't change them.
"""
import argparse
import concurrent.futures
import itertools
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
    "poke": "../tools/poke.sh",
}


def run(command, folder, programs, version):
    environment = dict(os.environ, PATH=f"{programs}:{os.environ['PATH']}", NO_COLOR="1", LC_ALL="C.UTF-8")
    # timeout(1) also ends processes that the shell has started. Its processes can't use the user's terminal: pty.spawn
    # would wait forever if that was its input.
    done = subprocess.run(["timeout", "60", "bash", "-c", command], cwd=folder, env=environment,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
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
    """Returns the sessions of PAGE, or the one of PAGE:LINE. Ends the program if there is none."""
    page, _, wanted = name.partition(":")
    sessions, in_session = [], False
    for number, line in enumerate(pathlib.Path(page).read_text(encoding="utf-8").splitlines(), 1):
        if line == "```console":
            sessions.append(Session(page, number))
        elif in_session and line != "```":
            sessions[-1].said.append(line)
        in_session = line == "```console" or (in_session and line != "```")
    chosen = [session for session in sessions if wanted in ("", str(session.line))]
    return chosen or sys.exit(f"{name}: there is no session; --list prints them")


def update(session, real):
    """Writes what the commands of a session print now into its page. Changes the numbers of later lines."""
    page = pathlib.Path(session.page)
    lines = page.read_text(encoding="utf-8").splitlines()
    lines[session.line:session.line + len(session.said)] = real
    page.write_text("\n".join(lines) + "\n", encoding="utf-8")


def report(session, real):
    """Prints the first line of a session that differs from what its commands print now. Returns whether one does."""
    pairs = itertools.zip_longest(session.said, real, fillvalue="(nothing)")
    for number, (a, b) in enumerate(pairs, session.line + 1):
        if a != b:
            print(f"{session.page}:{number}: the page says\n    {a}\nbut the program\n    {b}")
            return True
    return False


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
    sessions = {str(session): session for name in arguments.pages for session in sessions_of(name)}  # each once
    if arguments.list:
        print(*sessions, sep="\n")
        return 0
    skipped = "ulimit -v" if arguments.sanitized else None
    version = version_of(programs)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as threads:
        played = threads.map(lambda session: session.play(programs, version, skipped), sessions.values())
        pairs = list(zip(sessions.values(), played))
    wrong = 0
    if arguments.update:
        for pair in sorted(pairs, key=lambda pair: pair[0].line, reverse=True):
            update(*pair)
    else:
        wrong = sum(report(*pair) for pair in pairs)
    commands = sum(line.startswith("$ ") for session in sessions.values() for line in session.said)
    print(f"{commands} commands in {len(sessions)} sessions")
    return 1 if wrong else 0


sys.exit(main())
