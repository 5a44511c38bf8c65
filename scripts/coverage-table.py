#!/usr/bin/env python3
"""Writes the table of coverage for each subsystem between two markers of a document.

coverage-table.py GCOVR-JSON DOCUMENT
"""
import collections
import json
import sys

BEGIN = "<!-- coverage -->"
END = "<!-- /coverage -->"


def count(path):
    """Subsystem -> [lines run, lines, branches taken, branches]."""
    totals = collections.defaultdict(lambda: [0, 0, 0, 0])
    with open(path, encoding="utf-8") as stream:
        files = json.load(stream)["files"]
    for entry in files:
        sums = totals[entry["file"].split("/")[0]]
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            sums[0] += line["count"] > 0
            sums[1] += 1
            for branch in line.get("branches", []):
                sums[2] += branch["count"] > 0
                sums[3] += 1
    return totals


def share(part, whole):
    return "-" if whole == 0 else f"{100 * part / whole:.1f} % of {whole}"


def table(totals):
    rows = ["| Subsystem | Lines | Branches |", "|---|---|---|"]
    everything = [0, 0, 0, 0]
    for name in sorted(totals):
        sums = totals[name]
        everything = [a + b for a, b in zip(everything, sums)]
        rows.append(f"| `{name}/` | {share(*sums[:2])} | {share(*sums[2:])} |")
    rows.append(f"| all | {share(*everything[:2])} | {share(*everything[2:])} |")
    return "\n".join(rows)


def main():
    source, document = sys.argv[1:]
    with open(document, encoding="utf-8") as stream:
        text = stream.read()
    before, rest = text.split(BEGIN)
    after = rest.split(END)[1]
    with open(document, "w", encoding="utf-8") as stream:
        stream.write(f"{before}{BEGIN}\n{table(count(source))}\n{END}{after}")


main()
