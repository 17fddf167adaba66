#!/usr/bin/python3
"""Checks that the tables of the two pages on the formats are those of the forms, which print_forms prints, and that each
form names its tags after its members.

    check_forms.py PRINT_FORMS

Prints one line for each disagreement and ends with 1 if there is any.
"""

import re
import subprocess
import sys

from read_xml import PAGES, rows_of

MARKS = "/Settings/PropertyAnalyzer/AnalyzeSettings"
RECORDING = "/Results/Task/Recordings/Recording"

# The headings of the tables whose headings aren't just the element's tag.
HEADINGS = {
    f"{RECORDING}/NormalizedResponses/Response": "Response of a recording",
    f"{RECORDING}/Wells/Well/Responses/Response": "Response of a well",
    f"{RECORDING}/Wells/Well/NormalizedResponses/Response": "Response of a well",
}
# What the text under the heading states instead of the table, and which elements have no table at all.
IN_TEXT = {f"{RECORDING}/Wells", "/Settings/PropertyAnalyzer/AnalyzingDateString"}
WITHOUT_TABLE = {"/Settings", "/Settings/PropertyQualityCheck", "/Results/Task"}
# What the pages call types that have sections of their own.
TYPES = {"list of Well": "wells", "object": "marks"}
RESPONSES = {f"{RECORDING}/NormalizedResponses": "response means"}

# The examples that compare what they read, and the members that each leaves out on purpose: the date is that of saving,
# and a settings file has compounds without their stock plate.
NOT_COMPARED = {
    "examples/plate_run/SettingsFile.cpp": {"AnalyzingDate", "StockPlateID", "StockPlateRow"},
    "examples/plate_run/ResultsFile.cpp": set(),
    "examples/plate_run/XmlHeaderCheck.cpp": set(),
}


def page_of(path):
    return "results-file.md" if path.startswith("/Results") else "settings-file.md"


def section_of(page, heading):
    text = (PAGES / page).read_text("utf-8").split(f"\n### {heading}\n", 1)[1]
    return re.split(r"\n##+ ", text, maxsplit=1)[0]


def words_of_page():
    """The list of words, as one line."""
    return " ".join(section_of("settings-file.md", "Words").split())


def type_of(path, kind):
    if kind == "list of Response":
        return RESPONSES.get(path, "responses")
    return TYPES.get(kind, kind)


def objects(rows):
    """The elements with children: path, and the rows of these."""
    found = {}
    for row in rows:
        found.setdefault(row[0].rsplit("/", 1)[0], []).append(row)
    return found


def check_table(path, children):
    page, heading = page_of(path), HEADINGS.get(path, path.rsplit("/", 1)[1])
    expected, actual = [], rows_of(page, heading)
    for child, kind, default, entry, _ in children:
        tag = f"`{child.rsplit('/', 1)[1]}`"
        if child in IN_TEXT:
            if tag not in section_of(page, heading):
                yield f"{heading} in {page} doesn't mention {tag}"
            continue
        expected.append([tag, type_of(child, kind), default or "empty"])
        meaning = next((row[3] for row in actual if row[0] == tag), "")
        if kind.startswith("list of ") and entry and f"`{entry}`" not in meaning:
            yield f"{tag} under {heading} in {page} doesn't mention its entries, `{entry}`"
    for row in expected:
        if row not in [other[:3] for other in actual]:
            yield f"the table of {heading} in {page} lacks | {' | '.join(row)} |"
    for row in actual:
        if row[:3] not in expected:
            yield f"the table of {heading} in {page} has | {' | '.join(row[:3])} |, which no form has"
    if not expected or [row[0] for row in expected] != [row[0] for row in actual]:
        yield f"the table of {heading} in {page} isn't in the order of the file"


def check_marks(found):
    """The marks have one table for all their levels, without the list that is the only child."""
    expected = {"`Tasks`"} | {
        f"`{row[0].rsplit('/', 1)[1]}` of `{path.rsplit('/', 1)[1]}`"
        for path, children in found.items() if path.startswith(f"{MARKS}/") for row in children}
    actual = {row[0] for row in rows_of("settings-file.md", "AnalyzeSettings")}
    for tag in sorted(expected ^ actual):
        yield f"the table of AnalyzeSettings in settings-file.md {'lacks' if tag in expected else 'has'} {tag}"


def check_words(rows):
    page = words_of_page()
    for path, *_, words in rows:
        if words and words not in page:
            yield f"the words of {path} aren't those of settings-file.md: {words}"


def check_members():
    """A field's tag is its member's name. Two fields whose members are swapped would be read as they are written."""
    compared = {path: (PAGES.parent / path).read_text("utf-8") for path in NOT_COMPARED}
    for header in PAGES.parent.glob("vxfileio/*/forms/*.h"):
        text = header.read_text("utf-8")
        for tag, name, member in re.findall(r'\{"(\w+)",(?:\s+"\w+",)?\s+&(\w+)::(\w+)\}', text):
            if tag != member:
                yield f"{header.name} stores the member {member} as {tag}"
            alias = re.search(rf"using {name} = (\w+);", text)
            yield from not_compared(alias[1] if alias else name, member, compared)


def not_compared(name, member, compared):
    """An example that compares objects of a class names all members that files have."""
    for path, text in compared.items():
        named = NOT_COMPARED[path] | set(re.findall(r"\w\.(\w+)", text))
        if re.search(rf"\(const {name}& \w\)", text) and member not in named:
            yield f"{path} doesn't compare {name}::{member}; compare it, or add it to NOT_COMPARED in check_forms.py"


def disagreements(rows):
    yield from check_members()
    found = objects(rows)
    for path, children in found.items():
        if path and path not in WITHOUT_TABLE and not path.startswith(MARKS):
            yield from check_table(path, children)
        for child in children if path in WITHOUT_TABLE - {"/Settings"} else ():
            tag = f"`{child[0].rsplit('/', 1)[1]}`"
            if tag not in section_of(page_of(path), path.rsplit("/", 1)[1]):
                yield f"{path} in {page_of(path)} doesn't mention {tag}"
    sections = [row[0] for row in found["/Settings"]]
    table = re.findall(r"^\| `(Property\w+)` \|", (PAGES / "settings-file.md").read_text("utf-8"), re.MULTILINE)
    if [f"/Settings/{tag}" for tag in table] != sections:
        yield "the table of sections in settings-file.md isn't that of the forms"
    yield from check_marks(found)
    yield from check_words(rows)


if __name__ == "__main__":
    output = subprocess.run(sys.argv[1:2], check=True, capture_output=True, text=True).stdout
    forms = [line.split("\t") for line in output.splitlines()]
    lines = list(disagreements(forms))
    print("\n".join(lines) or f"{len(forms)} elements agree with the pages")
    sys.exit(bool(lines))
