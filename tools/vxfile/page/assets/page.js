"use strict";
// Shows what somebody chooses: one of the maps and curves, which are all in the page, and one well, which is drawn from
// the data. Texts become text nodes only, never markup.
document.documentElement.className = "js";

document.addEventListener("DOMContentLoaded", () => {
  const data = JSON.parse(document.getElementById("data").textContent);
  const byId = id => document.getElementById(id);
  const curves = byId("curves").textContent;
  const state = { measure: 0, recording: 0, well: 0, trace: 0 };
  const graphs = {};

  // ---- Small helpers ----

  function make(tag, text, attributes = {}) {
    const element = document.createElement(tag);
    element.textContent = text;
    for (const [name, value] of Object.entries(attributes)) element.setAttribute(name, value);
    return element;
  }

  const ALPHABET = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const VALUE_OF = new Map([...ALPHABET].map((c, i) => [c, i]));

  // Returns the numbers of a packed curve; null for a gap.
  function unpack(curve) {
    const numbers = [];
    const scale = (curve.hi - curve.lo) / 4095;
    for (let i = curve.at; i < curve.at + curve.n; i += 2) {
      const level = VALUE_OF.get(curves[i]) * 64 + VALUE_OF.get(curves[i + 1]);
      numbers.push(Number.isNaN(level) ? null : curve.lo + level * scale);
    }
    return numbers;
  }

  // The colours of doses are those of the scale, less its darkest or lightest end.
  function doseColours() {
    const isDark = matchMedia("(prefers-color-scheme: dark)").matches;
    const scale = document.querySelector(".scale")?.children ?? [];
    const [first, last] = isDark ? [14, 63] : [0, 52];
    const count = Math.max(1, data.recordings.length - 1);
    return data.recordings.map((_, i) => scale.length === 0 ? "#0b6e69" :
      getComputedStyle(scale[Math.round(first + (last - first) * i / count)]).backgroundColor);
  }

  const colourOf = name => getComputedStyle(document.documentElement).getPropertyValue(name).trim();
  const detail = recording => data.recordings[recording].wells[state.well];
  const compact = new Intl.NumberFormat("en", { maximumSignificantDigits: 4, notation: "compact" });
  const labelOf = value => Math.abs(value) >= 1e4 ? compact.format(value) : String(Number(value.toPrecision(4)));

  // ---- Maps and curves ----

  function measureFor(response, isNormalized) {
    const fits = data.measures.findIndex(m => m.response === response && m.normalized === isNormalized);
    return fits >= 0 ? fits : data.measures.findIndex(m => m.response === response);
  }

  function showChoice() {
    for (const element of document.querySelectorAll(".choice.chosen")) element.classList.remove("chosen");
    for (const id of [`map-${state.measure}-${state.recording}`, `legend-${state.measure}`, `curve-${state.measure}`])
      byId(id)?.classList.add("chosen");
    markWell();
  }

  // Marks the chosen well in the map, which has one cell that the Tab key reaches, and draws it into the curve.
  function markWell() {
    const map = document.querySelector(".plate.chosen");
    for (const cell of map?.querySelectorAll("[data-w]") ?? []) {
      const isChosen = Number(cell.dataset.w) === state.well;
      cell.classList.toggle("selected", isChosen);
      cell.setAttribute("aria-selected", isChosen);
      cell.tabIndex = isChosen ? 0 : -1;
    }
    for (const svg of document.querySelectorAll(".choice.chosen .curve")) drawWellInto(svg);
  }

  function drawWellInto(svg) {
    svg.querySelector(".one")?.remove();
    const row = byId(`values-${state.measure}`).rows[state.well + 1];
    const places = svg.dataset.x.split(" ");
    let path = "";
    svg.dataset.lines.split(" ").forEach((line, i) => {
      const value = Number(row.cells[Number(line) + 1].textContent);
      if (!Number.isFinite(value)) return;
      path += `${path ? "L" : "M"}${places[i]} ${Number(svg.dataset.offset) + Number(svg.dataset.factor) * value}`;
    });
    const element = document.createElementNS("http://www.w3.org/2000/svg", "path");
    element.setAttribute("class", "one");
    element.setAttribute("d", path);
    svg.append(element);
  }

  function readChoices() {
    const form = new FormData(byId("choices"));
    state.measure = measureFor(form.get("response"), form.get("kind") === "1");
    state.recording = Number(form.get("dose"));
    showChoice();
  }

  function pressButtons() {
    const measure = data.measures[state.measure];
    const press = (name, value) => {
      for (const input of document.getElementsByName(name)) input.checked = input.value === value;
    };
    press("response", measure.response);
    press("kind", measure.normalized ? "1" : "0");
    press("dose", String(state.recording));
  }

  // ---- Charts of the chosen well ----

  const AXES = () => ({
    x: { axisLabelFormatter: labelOf, valueFormatter: labelOf },
    y: { axisLabelFormatter: labelOf, valueFormatter: labelOf, axisLabelWidth: 56 },
  });

  function draw(id, rows, options) {
    graphs[id]?.destroy();
    delete graphs[id];
    const place = byId(id);
    place.textContent = "";
    if (rows.length === 0) {
      place.append(make("p", "No data.", { class: "quiet" }));
      return;
    }
    graphs[id] = new Dygraph(place, rows, {
      legend: "never", axes: AXES(), axisLineColor: colourOf("--quiet"), gridLineColor: colourOf("--line"),
      highlightCircleSize: 3, animatedZooms: false, ...options });
  }

  // Returns rows of x and one column for each curve, from curves that have points [x, y] in ascending order of x.
  function merged(curves) {
    const rows = new Map();
    curves.forEach((points, i) => {
      for (const [x, y] of points) {
        if (!rows.has(x)) rows.set(x, [x, ...curves.map(() => undefined)]);
        rows.get(x)[i + 1] = y === null ? NaN : y;
      }
    });
    // A missing value joins its neighbours, as undefined becomes null; a gap is NaN.
    return [...rows.values()].sort((a, b) => a[0] - b[0]).map(row => row.map(v => v === undefined ? null : v));
  }

  function drawAverages(colours) {
    const curves = data.recordings.map((_, i) => {
      const average = detail(i).average;
      return average ? unpack(average).map((y, k) => [average.begin + k * average.step, y]) : [];
    });
    draw("averages", merged(curves), { labels: ["time", ...curves.map((_, i) => `dose ${i}`)], colors: colours,
      connectSeparatedPoints: true, strokeWidth: 1.5 });
  }

  function drawIntervals(colours) {
    const curves = data.recordings.map((_, i) => {
      const beats = detail(i).beats;
      return beats ? beats.intervals.map((interval, k) => [k + 1, interval * beats.unit]) : [];
    });
    draw("intervals", merged(curves), { labels: ["beat", ...curves.map((_, i) => `dose ${i}`)], colors: colours,
      connectSeparatedPoints: true, strokeWidth: 1.2, includeZero: true });
  }

  function beatTimes(recording) {
    const beats = detail(recording).beats;
    if (!beats) return [];
    const times = [beats.first];
    for (const interval of beats.intervals) times.push(times[times.length - 1] + interval * beats.unit);
    return times;
  }

  // Each step becomes a line from its least to its greatest value.
  function drawTrace() {
    if (!byId("trace")) return;
    const trace = detail(state.trace).trace;
    const numbers = trace ? unpack(trace) : [];
    const rows = [];
    for (let i = 0; i < numbers.length; i += 2) {
      const time = (i / 2) * trace.step;
      rows.push([time, numbers[i] === null ? null : numbers[i]]);
      if (numbers[i] !== null) rows.push([time, numbers[i + 1]]);
    }
    const beats = beatTimes(state.trace);
    draw("trace", rows, { labels: ["time", "signal"], colors: [colourOf("--accent")], strokeWidth: 1,
      underlayCallback: (canvas, area, graph) => {
        canvas.fillStyle = colourOf("--mark");
        for (const time of beats) canvas.fillRect(graph.toDomXCoord(time - trace.begin) - 0.5, area.y, 1.2, 8);
      } });
    byId("trace-state").textContent = trace ?
      `${beats.length} beats detected; signal in ${trace.unit}; each step of ${trace.step} ticks shows its least and ` +
      "greatest sample" : "no samples of this well";
  }

  // Keys for a chart: arrows move, + and - zoom, 0 shows all.
  function onChartKey(event) {
    const graph = graphs[event.currentTarget.id];
    if (!graph) return;
    const [left, right] = graph.xAxisRange();
    const span = right - left;
    const zoom = { "ArrowLeft": [-0.2, -0.2], "ArrowRight": [0.2, 0.2], "+": [0.2, -0.2], "-": [-0.3, 0.3] }[event.key];
    if (zoom) graph.updateOptions({ dateWindow: [left + zoom[0] * span, right + zoom[1] * span] });
    if (event.key === "0") graph.resetZoom();
    if (zoom || event.key === "0") event.preventDefault();
  }

  function drawKeys(colours) {
    const keys = byId("keys");
    keys.textContent = "";
    data.recordings.forEach((recording, i) => {
      const key = make("span", "");
      const line = make("i", "");
      line.style.background = colours[i];
      key.append(line, recording.name);
      keys.append(key);
    });
  }

  // A table of the chosen well: its values at each dose.
  function drawNumbers() {
    const table = make("table", "", { class: "numbers" });
    table.append(make("caption", `Values of ${data.wells[state.well].label}`));
    const head = table.insertRow();
    for (const text of ["Dose", ...data.measures.map(m => m.response + (m.normalized ? ", normalised" :
      m.unit ? ` (${m.unit})` : "")), "Beats", "Averaged"])
      head.append(make("th", text, { scope: "col" }));
    data.recordings.forEach((recording, i) => {
      const row = table.insertRow();
      row.append(make("th", recording.name, { scope: "row" }));
      data.measures.forEach((_, m) => {
        const cell = byId(`values-${m}`).rows[state.well + 1].cells[i + 1];
        const value = Number(cell.textContent);
        const text = Number.isFinite(value) ? String(Number(value.toPrecision(4))) : cell.textContent;
        row.append(make("td", text + (cell.title ? ` (${cell.title})` : "")));
      });
      row.append(make("td", String(beatTimes(i).length)), make("td", String(detail(i).average?.count ?? 0)));
    });
    byId("well-numbers").replaceChildren(table);
  }

  function drawWell() {
    const well = data.wells[state.well];
    byId("well").textContent = `Well ${well.label}${well.inactive ? " (inactive)" : ""}`;
    byId("well-choice").value = String(state.well);
    const colours = doseColours();
    drawKeys(colours);
    drawAverages(colours);
    drawIntervals(colours);
    drawTrace();
    drawNumbers();
  }

  function chooseWell(well) {
    state.well = well;
    markWell();
    drawWell();
  }

  // ---- Keys and clicks on the plate ----

  // Returns the next cell of a well in a direction; the cell itself at the edge.
  function neighbour(cell, rows, columns) {
    const table = cell.closest("table");
    let row = cell.parentElement.rowIndex;
    let column = cell.cellIndex;
    for (;;) {
      row += rows;
      column += columns;
      const next = table.rows[row]?.cells[column];
      if (!next) return cell;
      if (next.dataset.w !== undefined) return next;
    }
  }

  function onPlateKey(event) {
    const cell = event.target.closest("[data-w]");
    const step = { "ArrowUp": [-1, 0], "ArrowDown": [1, 0], "ArrowLeft": [0, -1], "ArrowRight": [0, 1] }[event.key];
    if (!cell || !(step || event.key === "Enter" || event.key === " ")) return;
    event.preventDefault();
    const next = step ? neighbour(cell, ...step) : cell;
    chooseWell(Number(next.dataset.w));
    next.focus();
  }

  function onPlateClick(event) {
    const cell = event.target.closest("[data-w]");
    if (cell && getSelection().isCollapsed) chooseWell(Number(cell.dataset.w));
  }

  function describePlates() {
    for (const table of document.querySelectorAll(".plate")) {
      table.setAttribute("role", "grid");
      table.addEventListener("click", onPlateClick);
      table.addEventListener("keydown", onPlateKey);
      for (const cell of table.querySelectorAll("[data-w]")) cell.setAttribute("role", "gridcell");
    }
  }

  // ---- Beginning ----

  // Begins with the QT interval, if it was measured, at the greatest dose, and the first well that has a signal there.
  function chooseFirst() {
    state.measure = Math.max(0, measureFor("QT-Interval", true));
    state.recording = Math.max(0, data.recordings.length - 1);
    state.trace = state.recording;
    const found = data.wells.findIndex((_, i) => data.recordings[state.recording]?.wells[i].average);
    state.well = Math.max(0, found);
  }

  function listen() {
    byId("choices")?.addEventListener("change", readChoices);
    byId("choices")?.addEventListener("submit", event => event.preventDefault());
    byId("well-choice").addEventListener("change", event => chooseWell(Number(event.target.value)));
    byId("trace-choice")?.addEventListener("change", event => {
      state.trace = Number(event.target.value);
      drawTrace();
    });
    for (const chart of document.querySelectorAll(".chart")) chart.addEventListener("keydown", onChartKey);
    matchMedia("(prefers-color-scheme: dark)").addEventListener("change", drawWell);
  }

  if (data.wells.length === 0 || data.recordings.length === 0) return;
  chooseFirst();
  describePlates();
  listen();
  if (data.measures.length > 0) {
    pressButtons();
    showChoice();
  }
  if (byId("trace-choice")) byId("trace-choice").value = String(state.trace);
  drawWell();
});
