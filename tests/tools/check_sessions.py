#!/usr/bin/env python3
"""Runs the console sessions of Markdown pages and compares what they print with what the pages say.

    check_sessions.py [--update | --sanitized] FOLDER_OF_VXFILE PAGE...

A session is a block that begins with ```console; its lines that begin with "$ " are commands, the others their output.
They run in a separate folder that has the files below. --update writes the real output into the pages. --sanitized skips
commands that limit the address space, because sanitizers need terabytes of it. The program's version is shown as VERSION on
the pages, so that a release doesn't change them.
"""
import argparse
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


def play(lines, folder, programs, skipped):
    """Returns the lines of a page with what its commands print now, but for those with the text `skipped`."""
    version = version_of(programs)
    played, in_session, output = [], False, None
    for line in lines:
        if in_session and (line.startswith("$ ") or line == "```") and output is not None:
            played += output
            output = None
        if in_session and line.startswith("$ "):
            output = None if skipped and skipped in line else run(line[2:], folder, programs, version)
        if line == "```" or not in_session or line.startswith("$ ") or output is None:
            played.append(line)
        in_session = line == "```console" or (in_session and line != "```")
    return played


def main():
    parser = argparse.ArgumentParser(allow_abbrev=False, description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    option = parser.add_mutually_exclusive_group()
    option.add_argument("--update", action="store_true")
    option.add_argument("--sanitized", action="store_true")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("pages", nargs="+")
    arguments = parser.parse_args()
    skipped = "ulimit -v" if arguments.sanitized else None
    programs = arguments.folder.resolve()
    wrong = 0
    for page in arguments.pages:
        said = pathlib.Path(page).read_text(encoding="utf-8").splitlines()
        with tempfile.TemporaryDirectory() as folder:
            for name, source in FILES.items():
                shutil.copyfile(REFERENCE / source, pathlib.Path(folder) / name)
            real = play(said, folder, programs, skipped)
        commands = sum(line.startswith("$ ") for line in said)
        if arguments.update:
            pathlib.Path(page).write_text("\n".join(real) + "\n", encoding="utf-8")
        elif real != said or commands == 0:
            wrong += 1
            for number, (a, b) in enumerate(zip(said + [""] * len(real), real + [""] * len(said)), 1):
                if a != b:
                    print(f"{page}:{number}: the page says\n    {a}\nbut the program\n    {b}")
                    break
        print(f"{page}: {commands} commands")
    return 1 if wrong else 0


sys.exit(main())
