"""Texts and tables for people."""

from html import escape
from typing import Any, Iterable, Sequence

MOST_ROWS = 30


def printable(value: Any) -> str:
    """Returns a value as text without surrogate escapes, so that any encoding of Unicode can hold it."""
    return str(value).encode("utf-8", "surrogateescape").decode("utf-8", "replace")


def table(caption: str, heads: Sequence[str], rows: Sequence[Iterable[Any]], most_rows: int = MOST_ROWS) -> str:
    """Returns an HTML table. Escapes all texts. Leaves out rows beyond `most_rows`, and says so."""
    def line(tag: str, cells: Iterable[Any]) -> str:
        return "<tr>" + "".join(f"<{tag}>{escape(printable(cell))}</{tag}>" for cell in cells) + "</tr>"

    parts = [f"<table><caption>{escape(printable(caption))}</caption><thead>", line("th", heads), "</thead><tbody>"]
    parts += [line("td", row) for row in rows[:most_rows]]
    if len(rows) > most_rows:
        parts.append(f'<tr><td colspan="{len(heads)}">and {len(rows) - most_rows} more</td></tr>')
    return "".join(parts) + "</tbody></table>"
