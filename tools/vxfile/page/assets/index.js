"use strict";
// Searches and sorts the table of plates.
document.documentElement.className = "js";

document.addEventListener("DOMContentLoaded", () => {
  const table = document.getElementById("plates");
  const rows = [...table.tBodies[0].rows];
  const count = document.getElementById("count");
  const order = new Intl.Collator("en", { numeric: true });

  function search(event) {
    const words = event.target.value.toLowerCase().split(/\s+/).filter(word => word);
    for (const row of rows) row.hidden = !words.every(word => row.textContent.toLowerCase().includes(word));
    const shown = rows.filter(row => !row.hidden).length;
    count.textContent = shown === 0 ? "No plate has these words" : `${shown} of ${rows.length} plates`;
  }

  function sort(head) {
    const isAscending = head.getAttribute("aria-sort") !== "ascending";
    for (const other of head.parentElement.cells) if (other.hasAttribute("aria-sort")) other.setAttribute("aria-sort", "none");
    head.setAttribute("aria-sort", isAscending ? "ascending" : "descending");
    const text = row => row.cells[head.cellIndex].textContent;
    rows.sort((a, b) => (isAscending ? 1 : -1) * order.compare(text(a), text(b)));
    table.tBodies[0].append(...rows);
  }

  document.getElementById("search").addEventListener("input", search);
  for (const button of table.tHead.querySelectorAll("button"))
    button.addEventListener("click", () => sort(button.closest("th")));
});
