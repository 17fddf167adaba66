#!/usr/bin/env python3
"""Runs clang-tidy over source files, several in one translation unit.

    tidy.py DATABASE_FOLDER SOURCE...

clang-tidy spends nine tenths of its time on the standard library's headers. Sources that are compiled alike share one
generated file, so those headers are read once per group, and checks see through calls from one source into another.
Two sources that use the same private name can't share a group. If clang-tidy reports anything for a group, even that it
doesn't compile, its sources are checked one by one, and the outcome of that counts. What only shows in the group is
printed as a hint.
"""

import concurrent.futures
import json
import os
import re
import shlex
import subprocess
import sys

LARGEST_GROUP = 12
# A name that is defined at the beginning of a line, which is where clang-format puts what namespaces hold.
DEFINITION = re.compile(r"^(?=[a-zA-Z])(?!using|namespace|return|#)[^\n=;{}]*?\b(\w+)(?:<[^\n;{}]*>)?\s*(?:[({=;\[]|:(?!:))",
                        re.MULTILINE)


def flags_of(entry):
    """Returns the compiler's arguments without the source and the object file."""
    words = shlex.split(entry["command"])[1:]
    return tuple(word for before, word in zip([""] + words, words)
                 if word not in ("-c", "-o", entry["file"]) and before != "-o" and not word.startswith("-DVXFILEIO_BUILD"))


def private_names(source):
    """Returns the names that a source keeps to itself, and perhaps a few that it doesn't."""
    with open(source, encoding="utf-8") as file:
        text = file.read()
    parts = re.findall(r"^namespace \{\n(.*?)^\}  // namespace", text, re.MULTILINE | re.DOTALL)
    aliases = re.findall(r"^using (\w+) =", text, re.MULTILINE)
    return set(DEFINITION.findall("\n".join(parts))) | set(aliases)


def groups_of(sources, database):
    """Divides sources into groups that compile together: the same flags, no private name twice."""
    groups = []  # (flags, sources, names)
    for source in sources:
        names, flags = private_names(source), flags_of(database[source])
        for group_flags, members, taken in groups:
            if group_flags == flags and len(members) < LARGEST_GROUP and not names & taken:
                members.append(source)
                taken |= names
                break
        else:
            groups.append((flags, [source], names))
    return groups


def tidy(source, flags):
    """Runs clang-tidy and returns whether it found nothing, and what it printed."""
    run = subprocess.run(["clang-tidy", "--quiet", source, "--", *flags], capture_output=True, text=True, check=False)
    return run.returncode == 0, run.stdout


def check(number, group, folder):
    """Checks one group; returns whether nothing was found in its sources, and the text to print."""
    flags, members, _ = group
    together = os.path.join(folder, f"group_{number}.cpp")
    with open(together, "w", encoding="utf-8") as file:
        file.writelines(f'#include "{source}"\n' for source in members)
    passed, text = tidy(together, flags)
    if passed:
        return True, ""
    alone = [tidy(source, flags) for source in members]
    if all(ok for ok, _ in alone):
        return True, f"{together}: nothing in its sources one by one, but together:\n{text}"
    return False, "".join(found for _, found in alone)


def main():
    build, sources = sys.argv[1], sorted(sys.argv[2:])
    with open(os.path.join(build, "compile_commands.json"), encoding="utf-8") as file:
        database = {entry["file"]: entry for entry in json.load(file)}
    folder = os.path.join(build, "tidy")
    os.makedirs(folder, exist_ok=True)
    groups = groups_of(sources, database)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        failed = False
        for passed, text in pool.map(lambda numbered: check(*numbered, folder), enumerate(groups)):
            failed |= not passed
            print(text, end="", flush=True)
    print(f"clang-tidy checked {len(sources)} sources in {len(groups)} groups")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
