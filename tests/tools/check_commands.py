#!/usr/bin/env python3
"""Checks that each command of vxfile is complete: listed, described, shown in a session and tested by planted faults.

    check_commands.py VXFILE

Every source `commands/NAMECommand.cpp` must be a command that VXFILE knows, have a row in the table and a section `## name`
in docs/vxfile.md, run in a session of that page or of golden.md, have a fault in tests/mutations/faults.txt, and be in
CHANGELOG.md. If it has --json, it must run in a session with that, and docs/vxfile.md must describe its object.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
COMMANDS = "tools/vxfile/shell/commands"


def problems_of(name, source, program, page, golden, faults, changes):
    told = subprocess.run([program, name, "--help"], capture_output=True, text=True, check=False)
    if told.returncode != 0:
        yield f"vxfile has no command '{name}'; add it to the list in tools/CMakeLists.txt"
    if f"\n| `{name}` | " not in page:
        yield f"the table of commands in docs/vxfile.md has no row for `{name}`"
    if not re.search(rf"`(vxfile )?{name}`", changes):
        yield f"CHANGELOG.md doesn't mention `vxfile {name}`"
    if f"\n## {name}\n" not in page:
        yield f"docs/vxfile.md has no section '## {name}'"
    if not re.search(rf"(?m)^\$ .*vxfile {name}\b", page + golden):
        yield f"no session in docs/vxfile.md or tests/tools/golden.md runs 'vxfile {name}'"
    has_json = re.search(r"(?m)^  --json ", told.stdout)
    if has_json and not re.search(rf"(?m)^\$ .*vxfile {name}\b.*--json\b", page + golden):
        yield f"no session in docs/vxfile.md or tests/tools/golden.md runs 'vxfile {name}' with --json"
    if has_json and not re.search(rf"\b(Objects|object)\s+of\s+`{name}`\s+ha(ve|s)\b", page):
        yield f"docs/vxfile.md doesn't describe the object that --json prints; begin with 'Objects of `{name}` have' under JSON"
    if f"@ {COMMANDS}/{source}\n" not in faults:
        yield f"tests/mutations/faults.txt has no fault for {source}"


def main():
    read = lambda name: (ROOT / name).read_text(encoding="utf-8")
    texts = [read(name) for name in ("docs/vxfile.md", "tests/tools/golden.md", "tests/mutations/faults.txt", "CHANGELOG.md")]
    sources = sorted(path.name for path in (ROOT / COMMANDS).glob("*Command.cpp"))
    problems = []
    for source in sources:
        name = source.removesuffix("Command.cpp").lower()
        problems += [f"{COMMANDS}/{source}: {problem}" for problem in
                     problems_of(name, source, sys.argv[1], *texts)]
    print("\n".join(problems + [f"{len(sources)} commands, {len(problems)} problems"]))
    return 1 if problems or not sources else 0


sys.exit(main())
