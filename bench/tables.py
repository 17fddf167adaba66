"""Tables of the measurements, for docs/performance.md and the terminal."""
import os
import platform
import re
import statistics
import subprocess
from datetime import date

from workloads import LIMIT, OURS

PEERS = ["libhdf5-dev", "libedf-dev", "libpugixml-dev", "libtinyxml2-dev", "libexpat1-dev", "libxlsxwriter-dev"]


def first_match(path, pattern):
    with open(path, encoding="utf-8") as file:
        found = re.search(pattern, file.read(), re.MULTILINE)
    return found[1].strip() if found else "unknown"


def output_of(*command):
    return subprocess.run(command, capture_output=True, text=True, check=False).stdout.strip()


def machine(folder):
    """Describes the machine, system, compiler and peers."""
    memory = int(first_match("/proc/meminfo", r"^MemTotal:\s*(\d+)"))
    versions = (output_of("dpkg-query", "-W", "-f", "${Version}", peer) for peer in PEERS)
    peers = [f"{peer.removeprefix('lib').removesuffix('-dev')} {version}" for peer, version in zip(PEERS, versions)]
    return {
        "Date": date.today().isoformat(),
        "Processor": f"{first_match('/proc/cpuinfo', r'^model name.*: (.*)')}, {os.cpu_count()} cores",
        "Memory": f"{memory / (1 << 20):.0f} GiB",
        "System": f"{platform.system()} {platform.release().split('-')[0]}, "
                  f"{output_of('findmnt', '-n', '-f', '-o', 'FSTYPE', '-T', folder)}",
        "Compiler": output_of("g++", "--version").split("\n")[0],
        "Peers": ", ".join(peers),
    }


def rows_to_text(rows):
    """Formats a table. The first row is its head; all columns except the first are right-aligned."""
    widths = [max(len(row[i]) for row in rows) for i in range(len(rows[0]))]
    lines = ["| " + " | ".join([row[0].ljust(widths[0])] + [cell.rjust(width) for cell, width in
                                                            zip(row[1:], widths[1:])]) + " |" for row in rows]
    rule = "|" + "|".join(["-" * (widths[0] + 2)] + ["-" * (width + 1) + ":" for width in widths[1:]]) + "|"
    return "\n".join([lines[0], rule, *lines[1:]])


def milliseconds(seconds):
    return f"{1000 * seconds:,.0f} ms" if seconds >= 0.1 else f"{1000 * seconds:.3g} ms"


def count(value):
    if value is None:
        return "?"
    return f"{value:,.0f}" if value >= 100 else f"{value:.3g}"


def is_peer(name, program):
    return name not in (LIMIT, OURS) and not program.get("ours")


def workload_table(outcome):
    programs = outcome["programs"]
    medians = {name: statistics.median(program["seconds"]) for name, program in programs.items()}
    peers = [medians[name] for name, program in programs.items() if is_peer(name, program) and not program["less"]]
    operation = outcome["operation"]
    rows = [["Program", "Median", "Spread", "To the limit", "To the best peer", "Memory", f"Calls per {operation}",
             f"Allocations per {operation}"]]
    for name, program in programs.items():
        median = medians[name]
        low, high = (100 * (edge(program["seconds"]) / median - 1) for edge in (min, max))
        rows.append([
            name + (" *" if program["less"] else ""), milliseconds(median), f"{low:+.0f} {high:+.0f} %",
            f"{median / medians[LIMIT]:.2f}", f"{median / min(peers):.2f}" if peers and name == OURS else "",
            f"{program['KiB'] / 1024:.2f} MiB", count(program["calls"]), count(program["allocations"])])
    title = f"{outcome['title']}: {outcome['operations']:,} {operation}s, {outcome['rounds']} rounds."
    return f"{title.replace(' 1 ' + operation + 's', ' 1 ' + operation)}\n\n{rows_to_text(rows)}\n"


def losses_table(outcomes):
    """Lists the peers that are faster than the library, with their part of its time."""
    rows = [["Workload", "Faster", "Part of our time"]]
    for outcome in outcomes.values():
        medians = {name: statistics.median(program["seconds"]) for name, program in outcome["programs"].items()}
        for name, median in sorted(medians.items(), key=lambda item: item[1]):
            program = outcome["programs"][name]
            if is_peer(name, program) and median < medians[OURS]:
                star = " *" if program["less"] else ""
                rows.append([outcome["title"], name + star, f"{median / medians[OURS]:.2f}"])
    return rows_to_text(rows) + "\n"


def growth_table(outcomes):
    rows = [["Workload", "Limit, 1", "4", "16", "VX-FileIO, 1", "4", "16"]]
    for outcome in outcomes.values():
        cells = []
        for name in (LIMIT, OURS):
            once, *more = outcome["secondsPerMiB"][name]
            cells += [f"{1e6 * once:,.0f} us"] + [f"{grown / once:.2f}" for grown in more]
        rows.append([outcome["title"], *cells])
    return rows_to_text(rows) + "\n"


def write_page(path, outcome):
    """Writes each table between its markers: `<!-- table NAME -->` and `<!-- end -->`."""
    made = {name: workload_table(table) for name, table in outcome["workloads"].items()}
    made["machine"] = "".join(f"- {key}: {value}\n" for key, value in outcome["machine"].items())
    made["losses"] = losses_table(outcome["workloads"])
    if outcome["growth"]:
        made["growth"] = growth_table(outcome["growth"])

    def fill(found):
        return f"{found[1]}\n\n{made[found[2]]}\n<!-- end -->" if found[2] in made else found[0]

    with open(path, encoding="utf-8") as file:
        page = re.sub(r"(<!-- table (\S+) -->).*?<!-- end -->", fill, file.read(), flags=re.DOTALL)
    with open(path, "w", encoding="utf-8") as file:
        file.write(page)
