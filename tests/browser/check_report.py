#!/usr/bin/python3
"""Opens pages of vxfile report in Chromium, uses them as people do, and compares their numbers with an XML parser.

    check_report.py PROGRAMS OUTPUT

PROGRAMS is the folder of vxfile and plate_run. Pages and pictures go to the folder OUTPUT: open them and look.
"""

import math
import pathlib
import re
import subprocess
import sys
import urllib.parse
import xml.etree.ElementTree as ElementTree

from selenium.webdriver.common.keys import Keys

import plates
from browser import Browser

PROGRAMS, OUTPUT = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])


def make_page(name, results, settings=None, raw=None):
    """Runs vxfile report. Returns the page and the exit status."""
    page = OUTPUT / f"{name}.html"
    command = [PROGRAMS / "vxfile", "report", results, "-o", page, "--force"]
    command += ["--settings", settings] if settings else []
    command += ["--raw", raw] if raw else []
    status = subprocess.run(command, stderr=subprocess.DEVNULL, timeout=120).returncode
    assert status < 2, f"{name}: vxfile report failed"
    return page


def made_up(name, results, settings=None):
    """Returns the page of a plate that was put together by plates.py."""
    (OUTPUT / f"{name}.vxr").write_bytes(results)
    if settings:
        (OUTPUT / f"{name}.vxs").write_bytes(settings)
    return make_page(name, OUTPUT / f"{name}.vxr", OUTPUT / f"{name}.vxs" if settings else None)


def demo_plate():
    folder = OUTPUT / "plate"
    subprocess.run([PROGRAMS / "plate_run", folder], check=True, stdout=subprocess.DEVNULL)
    return folder


# ---- What every page must do -----------------------------------------------------------------------------------------

UNRESOLVED = """
const bad = [];
for (const element of document.querySelectorAll('[href], [src], [aria-labelledby]')) {
  for (const name of ['href', 'src']) if (element.hasAttribute(name)) bad.push(element.outerHTML);
  for (const id of (element.getAttribute('aria-labelledby') ?? '').split(' ').filter(id => id))
    if (!document.getElementById(id)) bad.push(id);
}
const ids = [...document.querySelectorAll('[id]')].map(element => element.id);
return bad.concat(ids.filter((id, i) => ids.indexOf(id) !== i));
"""

CONTRAST = """
function channels(colour) { return colour.match(/[\\d.]+/g).map(Number); }
function luminance(colour) {
  const [r, g, b] = channels(colour).slice(0, 3).map(c => c / 255).map(c => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4);
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
}
function backOf(element) {
  for (let e = element; e; e = e.parentElement) {
    const colour = getComputedStyle(e).backgroundColor;
    if (channels(colour)[3] !== 0) return colour;
  }
  return 'rgb(255,255,255)';
}
let least = 99;
for (const element of document.querySelectorAll('td, th, dt, dd, p, caption, summary, figcaption, .buttons span, legend')) {
  if (!element.textContent.trim() || element.closest('.chart')) continue;
  const [a, b] = [luminance(getComputedStyle(element).color), luminance(backOf(element))];
  least = Math.min(least, (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05));
}
return least;
"""


def check_common(browser, page):
    browser.open(page)
    assert browser.run("return document.documentElement.lang") == "en"
    assert browser.run("return document.title") != ""
    assert browser.run(UNRESOLVED) == []
    assert browser.run("return document.querySelectorAll('svg:not([aria-labelledby]), img:not([alt])').length") == 0
    assert browser.complaints() == [], "the console has complaints"
    assert browser.requests() == [], "the page asked for something"
    for scheme in ("light", "dark"):
        with browser.scheme(scheme):
            browser.open(page)
            assert browser.run(CONTRAST) >= 4.5, f"low contrast, {scheme}"
    text = page.read_bytes()
    assert str(OUTPUT).encode() not in text, "the page names a folder"


# ---- The demo --------------------------------------------------------------------------------------------------------


def table_of(browser, selector):
    """Returns a table as {head of row: [texts]}, also if it isn't shown."""
    rows = browser.run("return [...document.querySelector(arguments[0]).rows].map(r => [...r.cells].map(c => c.textContent))",
                       selector)
    return {row[0]: row[1:] for row in rows[1:]}


def values_in_file(path):
    """Returns {(kind, response): {label: [value or None of each recording]}} and {response: [mean of each recording]}."""
    recordings = ElementTree.parse(path).getroot().find("Results/Task/Recordings").findall("Recording")
    values, means = {}, {}
    for number, recording in enumerate(recordings):
        for mean in recording.find("NormalizedResponses"):
            fields = [float(mean.findtext(tag)) for tag in ("normMean", "normStdDev", "Samples")]
            means.setdefault(mean.findtext("Label"), {})[number] = fields
        for well in recording.find("Wells"):
            for kind, tag in (("as measured", "Responses"), ("normalised", "NormalizedResponses")):
                for response in well.find(tag) if well.find(tag) is not None else []:
                    wells = values.setdefault((response.findtext("Label"), kind), {})
                    row = wells.setdefault(well.findtext("WellLabel"), [None] * len(recordings))
                    row[number] = float(response.findtext("Value"))
    return values, means


def check_numbers(browser, page, results):
    browser.open(page)
    values, means = values_in_file(results)
    measures = browser.run("return JSON.parse(document.getElementById('data').textContent).measures")
    assert len(measures) == len(values)
    for number, measure in enumerate(measures):
        kind = "normalised" if measure["normalized"] else "as measured"
        wells = values[measure["response"], kind]
        shown = table_of(browser, f"#values-{number}")
        for label, row in shown.items():
            real = wells.get(label, [None] * len(row))
            assert [None if text == "–" else float(text) for text in row] == real, (measure, label)
        if measure["normalized"]:
            rows = list(table_of(browser, f"#curve-{number} .means").values())
            assert [[float(text) for text in row] for row in rows] == [means[measure["response"]][i] for i in range(len(rows))]
        for recording in range(len(next(iter(shown.values())))):
            cells = browser.run("return [...document.querySelectorAll(`#${arguments[0]} [data-w]`)].map(c => c.textContent)",
                                f"map-{number}-{recording}")
            assert len(cells) == 24
            for text in cells:
                label, value = text.split()[:2]
                real = wells.get(label, [None] * 99)[recording]
                value = None if value == "–" else float(value.removesuffix("deselected"))
                assert value == real or math.isclose(value, real, rel_tol=0.05, abs_tol=0.006), (text, real)


def check_states(browser, page):
    browser.open(page)
    texts = browser.run("return [...document.querySelectorAll('.plate.chosen [data-w]')].map(c => [c.textContent, c.className])")
    assert ["C2 –", "missing"] in texts
    assert [name for text, name in texts if text.endswith("deselected")] == ["out"]


def shown_well(browser):
    return browser.run("return document.getElementById('well').textContent")


def check_clicks_and_keys(browser, page):
    browser.open(page)
    browser.driver.find_element("css selector", ".plate.chosen [data-w='7']").click()
    label = browser.run("return document.querySelector('.plate.chosen [data-w=\"7\"] i').textContent")
    assert shown_well(browser) == f"Well {label}" == "Well C2"
    assert browser.run("return document.getElementById('averages').textContent") == "No data."
    assert browser.run("return document.querySelectorAll('.plate.chosen [tabindex=\"0\"]').length") == 1
    selected = lambda: browser.driver.switch_to.active_element
    browser.driver.find_element("css selector", ".plate.chosen .selected").send_keys(Keys.ARROW_UP)
    assert shown_well(browser) == "Well B2"
    selected().send_keys(Keys.ARROW_LEFT)
    assert shown_well(browser) == "Well B1"
    selected().send_keys(Keys.ARROW_LEFT)
    assert shown_well(browser) == "Well B1"
    check_choices(browser)
    check_zoom(browser)
    assert browser.complaints() == []


def check_choices(browser):
    caption = lambda: browser.run("return document.querySelector('.plate.chosen caption').textContent")
    curve = lambda: browser.run("return document.querySelector('.choice.chosen .curve title').textContent")
    assert caption() == "QT-Interval, normalised, 3 µM"
    assert browser.run("return document.querySelectorAll('.plate.chosen').length") == 1
    dose = browser.driver.find_element("css selector", "input[name=dose]:checked")
    dose.send_keys(Keys.ARROW_LEFT)
    assert caption() == "QT-Interval, normalised, 1 µM"
    kind = browser.driver.find_element("css selector", "input[name=kind]:checked")
    kind.send_keys(Keys.ARROW_RIGHT)
    assert caption() == "QT-Interval, as measured, 1 µM ticks"
    assert curve().startswith("QT-Interval, as measured by dose")
    assert browser.run("return document.querySelector('.choice.chosen .curve .one').getAttribute('d')").count("L") == 7


def check_zoom(browser):
    marks = "return [...document.querySelectorAll('#trace .dygraph-axis-label-x')].map(e => e.textContent).join()"
    before = browser.run(marks)
    chart = browser.driver.find_element("id", "trace")
    chart.send_keys("+", "+")
    assert browser.run(marks) != before
    chart.send_keys("0")
    assert browser.run(marks) == before


def check_print(browser, page):
    browser.open(page)
    pdf = OUTPUT / "plate.pdf"
    pdf.write_bytes(browser.print_to_pdf())
    text = subprocess.run(["pdftotext", "-layout", pdf, "-"], check=True, stdout=subprocess.PIPE, text=True).stdout
    for word in ("Example compound", "QT-Interval, normalised, 3 µM", "A1", "H3", "deselected", "n=22",
                 "Recorded signal at 3 µM", "plate.vxd"):
        assert word in text, f"the printed page lacks {word}"


def check_without_scripts(browser, page):
    with browser.without_scripts():
        browser.open(page)
        shown = browser.run("return [...document.querySelectorAll('table')].filter(t => t.closest('details') || "
                            "t.getClientRects().length > 0).length")
        assert shown == browser.run("return document.querySelectorAll('table').length") > 50
        assert "need scripts" in browser.run("return document.body.innerText")


def take_pictures(browser, page):
    for name, scheme, width in (("laptop", "light", 1280), ("dark", "dark", 1280), ("narrow", "light", 420)):
        with browser.scheme(scheme):
            browser.open(page, width)
            browser.screenshot(OUTPUT / f"report-{name}.png")


def check_demo(browser):
    folder = demo_plate()
    page = make_page("demo", folder / "plate.vxr", folder / "plate.vxs", folder / "plate.vxd")
    again = make_page("again", folder / "plate.vxr", folder / "plate.vxs", folder / "plate.vxd")
    assert page.read_bytes() == again.read_bytes(), "two runs differ"
    check_common(browser, page)
    check_numbers(browser, page, folder / "plate.vxr")
    check_states(browser, page)
    check_clicks_and_keys(browser, page)
    check_print(browser, page)
    check_without_scripts(browser, page)
    take_pictures(browser, page)
    bare = make_page("bare", folder / "plate.vxr")
    check_common(browser, bare)
    check_numbers(browser, bare, folder / "plate.vxr")


# ---- Other plates ----------------------------------------------------------------------------------------------------


def count(browser, selector):
    return browser.run("return document.querySelectorAll(arguments[0]).length", selector)


def check_other_plates(browser):
    page = made_up("empty", plates.results([], []))
    check_common(browser, page)
    assert "no responses" in browser.run("return document.body.textContent")

    page = made_up("one", plates.results(["B2"], [1000]))
    check_common(browser, page)
    assert count(browser, "#map-0-0 [data-w]") == 1

    labels = plates.labels_of(6, 9)
    page = made_up("plate54", plates.results(labels, [0, 1000, 2000]), plates.settings("Ostrel6x9", 6, 9, labels))
    check_common(browser, page)
    assert count(browser, "#map-0-0 tr") == 7 and count(browser, "#map-0-0 [data-w]") == 54
    assert count(browser, "#map-0-0 .out") == 7
    means = list(table_of(browser, "#curve-0 .means").values())
    assert [round(float(row[0]), 4) for row in means] == [1.2643, 1.3643, 1.4643], "computed, as the file has none"
    assert [row[2] for row in means] == ["47", "47", "47"]

    doses = [2000, 0, 1000]
    page = made_up("unsorted", plates.results(["A1"], doses, lambda w, d: 1 + doses[d]))
    check_common(browser, page)
    path = browser.run("return document.querySelector('.choice.chosen .curve .one').getAttribute('d')")
    ys = [float(point.split()[1]) for point in re.split("[ML]", path)[1:]]  # from the top
    assert ys == sorted(set(ys), reverse=True) and len(ys) == 3, "the line doesn't rise with the dose"

    values = {0: "nan", 1: "inf", 2: "-inf"}
    page = made_up("strange", plates.results(["A1", "A2", "A3", "A4"], [0, 2**64 - 1], lambda w, d: values.get(w, 1.5)))
    check_common(browser, page)
    assert [row[0] for row in table_of(browser, "#values-0").values()] == ["nan", "inf", "-inf", "1.5"]


def check_hostile_labels(browser):
    page = made_up("hostile", plates.results(plates.HOSTILE, [0, 1000], compound="<img src=x onerror=alert(1)>"))
    check_common(browser, page)
    heads = list(table_of(browser, "#values-0"))
    assert heads == plates.HOSTILE
    assert count(browser, "img") == 0 and count(browser, "script") == 4
    for number in range(len(plates.HOSTILE)):
        browser.run("const s = document.getElementById('well-choice'); s.value = arguments[0]; "
                    "s.dispatchEvent(new Event('change'))", str(number))
        assert shown_well(browser) == f"Well {heads[number]}"
    bytes_of_page = plates.results(["A1"], [0]).replace(b"<WellLabel>A1", b"<WellLabel>\xff\xfe\x01A1")
    check_common(browser, made_up("broken", bytes_of_page))


def check_full_plate(browser):
    labels = plates.labels_of(8, 12)
    doses = [0] + [1000 * 3**n for n in range(7)]
    page = made_up("full", plates.results(labels, doses), plates.settings("8x12", 8, 12, labels))
    check_common(browser, page)
    assert page.stat().st_size < 3_000_000
    milliseconds = browser.run("return performance.getEntriesByType('navigation')[0].domContentLoadedEventEnd")
    print(f"a full plate: {page.stat().st_size} bytes, shown after {milliseconds:.0f} ms")


def check_index(browser):
    """Two plates in a folder: one with everything, one hostile."""
    folder = OUTPUT / "folder"
    folder.mkdir()
    for name in ("plate.vxr", "plate.vxs", "plate.vxd"):
        (folder / name).write_bytes((OUTPUT / "plate" / name).read_bytes())
    (folder / "z<b>.vxr").write_bytes(plates.results(plates.HOSTILE, [0, 1000], compound="<i>9</i>"))
    pages = OUTPUT / "pages"
    command = [PROGRAMS / "vxfile", "report", folder, "-o", pages]
    assert subprocess.run(command, stdout=subprocess.DEVNULL, timeout=120).returncode < 2
    browser.open(pages / "index.html")
    links = browser.run("return [...document.querySelectorAll('a')].map(a => a.href)")
    assert len(links) == 2 and all(pathlib.Path(urllib.parse.unquote(urllib.parse.urlparse(a).path)).is_file() for a in links)
    first = lambda: browser.run("return [...document.querySelectorAll('#plates > tbody > tr')].filter(r => !r.hidden)"
                                ".map(r => r.cells[1].textContent)")
    assert first() == ["plate.vxr", "z<b>.vxr"]
    assert "1.27" in browser.run("return document.querySelector('#plates tbody tr').textContent")
    assert count(browser, "#plates > tbody > tr:first-child .mini [class]") == 22
    browser.driver.find_element("css selector", "#plates th:nth-child(2) button").send_keys(Keys.ENTER, Keys.ENTER)
    assert first() == ["z<b>.vxr", "plate.vxr"]
    assert browser.run("return document.querySelector('[aria-sort=descending]').textContent.trim()") == "Results"
    search = browser.driver.find_element("id", "search")
    search.send_keys("example")
    assert first() == ["plate.vxr"]
    search.send_keys("zzz")
    assert browser.run("return document.getElementById('count').textContent") == "No plate has these words"
    assert browser.complaints() == [] and browser.requests() == []
    browser.open(pages / "index.html")
    assert browser.run(CONTRAST) >= 4.5
    colours = browser.run("return [...document.querySelectorAll('.mini [class]')].map(c => getComputedStyle(c).backgroundColor)")
    assert len(set(colours)) > 8, "the small map has no colours"
    browser.screenshot(OUTPUT / "index.png")
    browser.driver.find_element("link text", "plate.vxr").click()
    assert shown_well(browser) == "Well A1"


def main():
    OUTPUT.mkdir(parents=True, exist_ok=True)
    browser = Browser()
    try:
        for check in (check_demo, check_other_plates, check_hostile_labels, check_full_plate, check_index):
            check(browser)
            print(f"{check.__name__}: passed", flush=True)
    finally:
        browser.close()


main()
