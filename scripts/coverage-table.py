#!/usr/bin/env python3
"""Reads what a build with --coverage has counted and writes, between two markers of a document, a table of the lines and
branches that ran in each subsystem; the lines that did not run go to a file of their own.

coverage-table.py GCOV BUILD-FOLDER SOURCE-FOLDER DOCUMENT UNTESTED-LINES
"""
import collections
import json
import pathlib
import subprocess
import sys

BEGIN = "<!-- coverage -->"
END = "<!-- /coverage -->"
SUBSYSTEMS = ("base", "geometry", "messaging", "module", "monitoring", "paths", "points", "support", "traversal", "xml")


class Line:
    def __init__(self):
        self.count = 0
        self.branches = {}

    def add(self, line):
        """A line of a header or template is counted by several objects: the counts belong together."""
        self.count += line["count"]
        # What only an exception takes is no branch that the source has.
        for index, branch in enumerate(b for b in line["branches"] if not b["throw"]):
            self.branches[index] = self.branches.get(index, 0) + branch["count"]


def read(gcov, build, source):
    files = collections.defaultdict(lambda: collections.defaultdict(Line))
    for notes in sorted(build.rglob("*.gcno")):
        run = subprocess.run([gcov, "--json-format", "--branch-probabilities", "--stdout", str(notes)],
                             cwd=notes.parent, capture_output=True, check=True)
        for text in run.stdout.decode().splitlines():
            for entry in json.loads(text)["files"]:
                path = (pathlib.Path("/") / entry["file"]).resolve()
                if not path.is_relative_to(source) or path.relative_to(source).parts[0] not in SUBSYSTEMS:
                    # Headers are reached through links in the build tree, which resolve to the sources.
                    continue
                for line in entry["lines"]:
                    files[path.relative_to(source)][line["line_number"]].add(line)
    return files


def sums(files):
    totals = collections.defaultdict(lambda: [0, 0, 0, 0])
    for path, lines in files.items():
        sums_of = totals[path.parts[0]]
        for line in lines.values():
            sums_of[0] += line.count > 0
            sums_of[1] += 1
            sums_of[2] += sum(count > 0 for count in line.branches.values())
            sums_of[3] += len(line.branches)
    return totals


def share(part, whole):
    return "-" if whole == 0 else f"{100 * part / whole:.1f} % of {whole}"


def table(totals):
    rows = ["| Subsystem | Lines | Branches |", "|---|---|---|"]
    everything = [sum(column) for column in zip(*totals.values())]
    for name in sorted(totals):
        rows.append(f"| `{name}/` | {share(*totals[name][:2])} | {share(*totals[name][2:])} |")
    rows.append(f"| all | {share(*everything[:2])} | {share(*everything[2:])} |")
    return "\n".join(rows)


def untested(files, source):
    for path in sorted(files):
        text = (source / path).read_text(encoding="utf-8").splitlines()
        for number in sorted(files[path]):
            line = files[path][number]
            missing = sum(count == 0 for count in line.branches.values())
            if line.count == 0:
                yield f"{path}:{number}: {text[number - 1].strip()}"
            elif missing:
                yield f"{path}:{number}: ({missing} of {len(line.branches)} branches) {text[number - 1].strip()}"


def main():
    gcov, build, source, document, lines = sys.argv[1:]
    source = pathlib.Path(source).resolve()
    files = read(gcov, pathlib.Path(build).resolve(), source)
    pathlib.Path(lines).write_text("\n".join(untested(files, source)) + "\n", encoding="utf-8")
    document = pathlib.Path(document)
    before, rest = document.read_text(encoding="utf-8").split(BEGIN)
    after = rest.split(END)[1]
    document.write_text(f"{before}{BEGIN}\n{table(sums(files))}\n{END}{after}", encoding="utf-8")


main()
