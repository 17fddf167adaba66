#!/usr/bin/env python3
"""Checks that includes follow the tables of rooms in CONTRIBUTING.md, that no files include each other in a circle, and
that every test is built.

    check_includes.py [ROOT]

A table of rooms has the heads "Room" and "May include". Each row names a folder and the rooms that its files may include.
Names may be shortened to their last part, such as `base`; "nothing" and "everything" are words. Every source file below
the folders in TREES belongs to the row that names its folder, or else the nearest folder above. The rows themselves must
not allow a circle either. A test, tests/FOLDER/NAMETest.cpp, must be listed in a CMakeLists.txt below tests. ROOT is
the top folder; by default the one that this script is in.
"""
import pathlib
import re
import sys

TREES = ("vxfileio", "recovery", "verify", "capi", "python", "tools", "examples")


def read_rules(page):
    """Returns the rooms that each room may include, as {room: set of rooms}."""
    rows, heads = {}, None
    for line in page.splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if not line.startswith("|"):
            heads = None
        elif heads is None:
            heads = cells
        elif heads[0] == "Room" and heads[-1] == "May include" and not set(cells[0]) <= set("-"):
            rows[cells[0].strip("`")] = cells[-1]

    def rooms_in(cell):
        if cell == "nothing":
            return set()
        if cell == "everything":
            return set(rows)
        names = re.findall(r"`([^`]+)`", cell)
        found = {name: [room for room in rows if room == name or room.endswith("/" + name)] for name in names}
        for name, matches in found.items():
            if len(matches) != 1:
                sys.exit(f"CONTRIBUTING.md: '{name}' is {'no room' if not matches else 'more than one room'}")
        return {matches[0] for matches in found.values()}

    return {room: rooms_in(cell) - {room} for room, cell in rows.items()}


def read_includes(root):
    """Returns the files of this tree that each file includes, as {file: list of files}."""
    files = [path for tree in TREES for suffix in ("*.h", "*.cpp") for path in sorted((root / tree).rglob(suffix))]
    names = {str(path.relative_to(root)) for path in files}
    return {str(path.relative_to(root)): [name for name in re.findall(r'(?m)^#include ["<]([^">]+)', path.read_text())
                                          if name in names] for path in files}


def room_of(file, rules):
    folder = pathlib.PurePosixPath(file).parent
    return next((str(f) for f in [folder, *folder.parents] if str(f) in rules), None)


def circle_in(arrows):
    """Returns one circle of arrows as a list of places, or None."""
    done, path = set(), []

    def visit(place):
        if place in path:
            return path[path.index(place):] + [place]
        if place in done:
            return None
        path.append(place)
        found = next(filter(None, map(visit, sorted(arrows.get(place, ())))), None)
        path.pop()
        done.add(place)
        return found

    return next(filter(None, map(visit, sorted(arrows))), None)


def problems_of(rules, includes):
    for file, included in includes.items():
        room = room_of(file, rules)
        if room is None:
            yield f"{file}: no table in CONTRIBUTING.md has a row for its folder"
            continue
        for name in included:
            other = room_of(name, rules)
            if other not in (None, room) and other not in rules[room]:
                yield f"{file}: includes {name}, but {room} may not include {other}"
    for what, arrows in (("files", includes), ("rooms", rules)):
        circle = circle_in(arrows)
        if circle:
            yield f"{what} in a circle: " + " -> ".join(circle)


def unbuilt_tests(root):
    """Yields a sentence for each test that nothing builds."""
    listed = {(page.parent / name).resolve() for page in (root / "tests").rglob("CMakeLists.txt")
              for name in re.findall(r"[\w./]+\.cpp", page.read_text(encoding="utf-8"))}
    for test in sorted((root / "tests").rglob("*Test.cpp")):
        if test not in listed:
            yield f"{test.relative_to(root)}: no CMakeLists.txt lists it, so it isn't built; add it to tests/CMakeLists.txt"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]).resolve()
    rules = read_rules((root / "CONTRIBUTING.md").read_text(encoding="utf-8"))
    includes = read_includes(root)
    problems = [*problems_of(rules, includes), *unbuilt_tests(root)]
    print("\n".join(problems + [f"{len(includes)} files in {len(rules)} rooms, {len(problems)} problems"]))
    return 1 if problems or not rules or not includes else 0


sys.exit(main())
