#!/usr/bin/python3
"""Reads settings files (.vxs) and results files (.vxr) with Python's own XML parser, and prints what is in them.

It shares no code with the library. What the elements contain is taken from the tables of docs/settings-file.md and
docs/results-file.md.

    read_xml.py FILE...
"""

import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

PAGES = pathlib.Path(__file__).resolve().parents[3] / "docs"


def rows_of(page, heading):
    """Returns the rows of the table under a heading of a page, as lists of cells."""
    section = re.split(r"\n##+ ", (PAGES / page).read_text("utf-8").split(f"\n### {heading}\n", 1)[1], maxsplit=1)[0]
    return [[cell.strip() for cell in line.strip("|").split(" | ")] for line in section.splitlines()
            if line.startswith("| `")]


def default_of(kind, text):
    if text == "empty":
        return "" if kind == "text" else []
    if kind.startswith("list of "):
        return [int(number) for number in text.split(", ")]
    if kind in ("text", "word", "character"):
        return " " if text == "blank" else text.strip("`")
    return {"bool": lambda number: number == "1", "double": float}.get(kind, int)(text)


def fields_in(page, heading):
    """Returns each field of an element: its tag, its type, its value if the tag is missing."""
    return [(tag.strip("`"), kind, default_of(kind, default)) for tag, kind, default, _ in rows_of(page, heading)]


HEADER = fields_in("settings-file.md", "Header")
SECTIONS = {tag: fields_in("settings-file.md", tag) for tag in (
    "PropertyControl", "PropertyNotebook", "PropertyRobot", "PropertyRecordPlate", "PropertyWashIn",
    "PropertyRecording", "PropertyAnalyzer")}
QUALITY_CHECK = fields_in("settings-file.md", "QC")
PLATE_WELL = fields_in("settings-file.md", "Well")
RESULTS_WELL = fields_in("results-file.md", "Well")
RESPONSE = fields_in("results-file.md", "Response of a well")
RESPONSE_MEAN = fields_in("results-file.md", "Response of a recording")
RECORDING = fields_in("results-file.md", "Recording")

OLDER_NAMES = {"PropRecording": "PropertyRecording"}
FIRST_VERSION_WITH_MARKS = 3

# Readers sort tasks in this order, regardless of their order in the file.
TASKS = ("Notebook", "Compounds", "Viability", "CompoundTest", "Dilute", "Washout", "Washin", "Pipet", "Series", "Analyze",
         "PreQC", "PostQC", "Reportsheet", "Inspect", "Nil")

# ---- Values ----------------------------------------------------------------------------------------------------------


def text_of(element):
    """References in our files mean bytes; the parser returns them as the Latin-1 characters of these bytes."""
    return element.text or ""


def values_of(element, kind):
    return [CONVERSIONS[kind](child) for child in element]


CONVERSIONS = {
    "text": text_of,
    "word": text_of,
    "character": lambda element: text_of(element)[:1],
    "bool": lambda element: int(text_of(element)) == 1,
    "double": lambda element: float(text_of(element)),
    "samples": lambda element: [float(text) for text in text_of(element.find("Ave")).split(";")[:-1]],
    "wells": lambda element: [fields_of(child, PLATE_WELL) for child in element],
    "responses": lambda element: [fields_of(child, RESPONSE) for child in element],
    "response means": lambda element: [fields_of(child, RESPONSE_MEAN) for child in element],
    "marks": lambda element: list(marks_of(element)),
    **{kind: lambda element: int(text_of(element)) for kind in ("int32", "uint16", "uint32", "int64", "uint64")},
}


def fields_of(element, table):
    """Yields the fields of an element as (tag, type, value)."""
    found = {child.tag: child for child in element}
    for tag, kind, default in table:
        if tag not in found or (kind in ("double", "int64") and not text_of(found[tag])):
            yield tag, kind, default
        elif kind.startswith("list of "):
            yield tag, kind, values_of(found[tag], kind.removeprefix("list of "))
        else:
            yield tag, kind, CONVERSIONS[kind](found[tag])


def tasks_of(element):
    return sorted(element.iter("Task"), key=lambda task: TASKS.index(task.findtext("TaskName")))


def by_id(wells):
    return sorted(wells, key=lambda well: int(well.findtext("WellID")))


def marks_of(element):
    for task in tasks_of(element):
        yield f"{task.findtext('TaskName')}: {len(task.find('Recordings'))} recordings"
        for number, recording in enumerate(task.find("Recordings")):
            for well in by_id(recording.find("Wells")):
                marks = " ".join(f"{mark.tag} {mark.text}" for mark in well.find("Responses"))
                yield (f"{task.findtext('TaskName')} {number} well {well.findtext('WellID')}: "
                       f"Analyze {well.findtext('Analyze')} {marks}")


def made_marks(plate):
    """Yields the marks that a reader generates for files without marks."""
    series = [values_of(child, "uint64") for child in plate if child.tag == "Series"][0]
    yield f"Series: {len(series)} recordings"
    for number, _ in enumerate(series):
        for well in by_id(plate.find("Wells")):
            if int(well.findtext("State")) in (0, 2):
                yield (f"Series {number} well {well.findtext('WellID')}: Analyze 1 "
                       "Na-Amplitude Automatic Na-Slope Automatic QT-Interval Automatic")


# ---- The text twin ---------------------------------------------------------------------------------------------------


def show(value):
    if isinstance(value, bool):
        return str(int(value))
    if isinstance(value, float):
        return f"{value:.15g}"
    if isinstance(value, list):
        return "[" + ", ".join(map(show, value)) + "]"
    if isinstance(value, str):
        return '"' + re.sub(r'[^ !#-\[\]-~]', lambda c: f"\\x{ord(c[0]):02x}", value) + '"'
    return str(value)


def shown(name, fields):
    yield name
    for tag, kind, value in fields:
        if kind in ("wells", "responses", "response means"):
            yield f"  {tag}"
            for item in value:
                yield "    " + ", ".join(f"{tag} {show(value)}" for tag, _, value in item)
        elif kind == "marks":
            yield f"  {tag}"
            yield from ("    " + mark for mark in value)
        else:
            yield f"  {tag}: {show(value)}"


def settings_lines(header, settings):
    found = {OLDER_NAMES.get(section.tag, section.tag): section for section in settings}
    nothing = ElementTree.Element("nothing")
    for name, table in SECTIONS.items():
        fields = [list(field) for field in fields_of(found.get(name, nothing), table)]
        for field in fields:
            if field[0] == "VoltageRange":
                field[2] = "\xb1 " + field[2]
            if field[1] == "marks" and int(header.findtext("FileVersion")) < FIRST_VERSION_WITH_MARKS:
                field[2] = list(made_marks(found["PropertyRecordPlate"]))
        yield from shown(name, fields)
    for check in found["PropertyQualityCheck"].find("QualityChecks"):
        yield from shown("QC", fields_of(check, QUALITY_CHECK))


def results_lines(results):
    for task in tasks_of(results):
        yield f"Task {show(task.findtext('TaskName'))}"
        for recording in task.find("Recordings"):
            yield from shown("Recording", fields_of(recording, RECORDING))
            for well in by_id(recording.find("Wells")):
                yield from shown("Well", fields_of(well, RESULTS_WELL))


def twin_lines(path):
    """Yields the content of a file, one line per value."""
    root = ElementTree.parse(path).getroot()
    yield from shown("Header", fields_of(root.find("Header"), HEADER))
    if root.find("Settings") is not None:
        yield from settings_lines(root.find("Header"), root.find("Settings"))
    else:
        yield from results_lines(root.find("Results"))


if __name__ == "__main__":
    for name in sys.argv[1:]:
        print("\n".join(twin_lines(pathlib.Path(name))))
