#!/usr/bin/env python3
"""Runs clang-tidy over source files, several in one translation unit, and checks that each compiles alone.

    tidy.py DATABASE_FOLDER SOURCE...

clang-tidy spends most of its time on the standard library's headers. Many sources share one generated file, compiled
with the flags of all of them, so those headers are read once per group, and checks see through calls from one source
into another. Two sources that use the same private name can't share a group. If clang-tidy reports anything for a
group, even that it doesn't compile, its sources are checked one by one, and the outcome of that counts. What only shows
in the group is printed as a hint.
"""

import concurrent.futures
import json
import os
import shlex
import subprocess
import sys

import source_groups

# clang-tidy spends as much time on included headers as on a dozen of our sources, so its groups are larger than those
# of compilers.
LARGEST_GROUP = 60
# Sources in this folder only have to compile. One of them replaces functions of the C library, so reserved names are
# allowed.
PARSED_ONLY = os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "bench", "")
# Clang finds reserved names in a moment; clang-tidy's own check takes longer than any other.
WARNINGS = ["-Wreserved-identifier", "-Wreserved-macro-identifier"]


def flags_of(entry):
    """Returns the compiler's arguments that change what a source means."""
    command = entry["command"].replace("-isystem ", "-isystem")
    return [word for word in shlex.split(command) if word.startswith(("-D", "-I", "-isystem", "-std", "-W"))
            and not word.startswith("-DVXFILEIO_BUILD")]


def tidy(source, flags):
    """Runs clang-tidy and returns whether it found nothing, and what it printed."""
    run = subprocess.run(["clang-tidy", "--quiet", source, "--", *flags], capture_output=True, text=True, check=False)
    return run.returncode == 0, run.stdout


def parse(source, flags):
    """Parses a source alone, so that it can't rely on an include of another one. Returns the same as `tidy`."""
    warnings = [] if source.startswith(PARSED_ONLY) else WARNINGS
    run = subprocess.run(["clang++", "-fsyntax-only", *flags, *warnings, source], capture_output=True, text=True,
                         check=False)
    return run.returncode == 0, run.stderr


def tidy_group(number, members, flags, folder):
    """Checks one group; returns whether nothing was found in its sources, and the text to print."""
    together = os.path.join(folder, f"group_{number}.cpp")
    with open(together, "w", encoding="utf-8") as file:
        file.writelines(f'#include "{source}"\n' for source in members)
    passed, text = tidy(together, dict.fromkeys(flag for source in members for flag in flags[source]))
    if passed:
        return True, ""
    alone = [tidy(source, flags[source]) for source in members]
    if all(ok for ok, _ in alone):
        return True, f"{together}: nothing in its sources one by one, but together:\n{text}"
    return False, "".join(found for _, found in alone)


def main():
    build, sources = sys.argv[1], sorted(sys.argv[2:])
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        database = {entry["file"]: entry for entry in json.load(file)}
    folder = os.path.join(build, "tidy")
    os.makedirs(folder, exist_ok=True)
    flags = {source: flags_of(database[source]) for source in sources}
    groups = source_groups.groups_of([source for source in sources if not source.startswith(PARSED_ONLY)],
                                     LARGEST_GROUP)
    # The groups, which take longest, come first.
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        tasks = [pool.submit(tidy_group, number, group, flags, folder) for number, group in enumerate(groups)]
        tasks += [pool.submit(parse, source, flags[source]) for source in sources]
        failed = False
        for task in tasks:
            passed, text = task.result()
            failed |= not passed
            print(text, end="", flush=True)
    print(f"clang-tidy checked {sum(map(len, groups))} sources in {len(groups)} groups; {len(sources)} compile alone")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
