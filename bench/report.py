#!/usr/bin/env python3
"""Prints the figures of build/bench/results.json as a table; with a second argument also writes
them as a document.

usage: bench/report.py RESULTS [DOCUMENT]
"""

import json
import sys
from pathlib import Path
from statistics import median

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parent))

from rows import ROWS  # noqa: E402

INTRODUCTION = """# Performance

Written by `./dev bench`. A ratio is our amount over the other's, so that less is better. The two are
measured in turn, round by round; the median and the minimum of the rounds' ratios are shown. A row
with several figures shows the largest of them; all of them stand below it. Every number of every
round is in `build/bench/results.json`.
"""
CLOCKS = """Wall time is from before the start of a process to after its end, CPU its user and system time.
"""
PRIMING = """Before each run of a process that writes, a file of the size of the output is written and removed,
for both sides: in a virtual machine pages that the host took back cost microseconds each at the first
touch, and the side that runs first would pay for both.
"""


def value(measure, number):
    if measure == "MiB":
        return f"{number:+.1f} MiB"
    if measure == "%":
        return f"{number:.1f} %"
    return f"{number:.3f}" if number < 0.095 else f"{number:.2f}"


def amount(numbers, unit):
    """The median of what was measured: "12.3 ms"."""
    if not numbers:
        return ""
    middle = median(numbers)
    if unit == "s" and middle < 1:
        return f"{1000 * middle:.2f} ms"
    return f"{middle:.0f} bytes" if unit == "bytes" else f"{middle:.4g} {unit}"


def table(aligned, *lines):
    return "".join("| " + " | ".join(cells) + " |\n" for cells in (lines[0], aligned, *lines[1:]))


def measured(results):
    """[(row, its results)] in the order of the table."""
    found = {entry["row"]: entry for entry in results["rows"]}
    return [(row, found[row.name]) for row in ROWS if row.name in found]


def summary(rows):
    lines = [("What", "Against", "Median", "Minimum")]
    for row, entry in rows:
        worst = max(entry["figures"], key=lambda figure: figure["median"])
        lines.append((row.what, row.against, value(row.measure, worst["median"]),
                      value(row.measure, worst["minimum"])))
    return lines


def figures(rows):
    lines = [("Figure", "statecut", "Other", "Median", "Minimum")]
    for row, entry in rows:
        for figure in entry["figures"]:
            name = f"{row.name}, {figure['name']}" if figure["name"] else row.name
            lines.append((name, amount(figure["ours"], figure["unit"]),
                          amount(figure["other"], figure["unit"]),
                          value(row.measure, figure["median"]), value(row.measure, figure["minimum"])))
    return lines


def document(results):
    rows = measured(results)
    parts = [INTRODUCTION, "\n## Run\n\n", *(f"- {fact}\n" for fact in results["facts"]),
             "\n## Table\n\n", table(("---", "---", "---:", "---:"), *summary(rows)),
             "\n## Reasons\n\n",
             *(f"- **{row.what}** against {row.against} (`{row.name}`): {row.why}\n"
               for row, _ in rows if row.why),
             "\n## All figures\n\nAmounts are medians.\n\n",
             table(("---", "---:", "---:", "---:", "---:"), *figures(rows)),
             "\n## How each figure was taken\n\n", CLOCKS, PRIMING, "\n"]
    for row, entry in rows:
        notes = "".join(f" *{note}.*" for note in entry["notes"])
        parts.append(f"- `{row.name}`: {row.how}{notes}\n")
    return "".join(parts)


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__.split("\n\n")[1].strip())
    results = json.loads(Path(sys.argv[1]).read_text())
    for cells in figures(measured(results)):
        print(f"{cells[0]:34}" + "".join(f"{cell:>16}" for cell in cells[1:]))
    if len(sys.argv) == 3:
        Path(sys.argv[2]).write_text(document(results))


if __name__ == "__main__":
    main()
