#!/usr/bin/env python3
"""Records what the main commands of the console host print into the manual: record-terminal.py RUNNER PROGRAM [--check]

RUNNER starts a Windows program (scripts/wine-run.sh), PROGRAM is quonhost.exe. The commands stand in the pages behind
"$ quonhost" between the markers of a recording; each recording runs in a folder of its own, with the sample survey, a list
of names and a small tree. With --check nothing is written, and a page that differs is a failure.
"""
import difflib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
PAGES = ("README.md", "docs/host.md")
RECORDING = re.compile(r"(<!-- recorded -->\n```text\n)(.*?)(^```\n)", re.DOTALL | re.MULTILINE)
PROMPT = "$ quonhost "


def fill(folder):
    for name in ("points.csv", "faces.csv"):
        shutil.copy(TOP / "host/samples" / name, folder)
    (folder / "names.txt").write_text("Plan 10\nplan 2\nPlan 1\nСхема 12\nСхема 3\n", encoding="utf-8")
    (folder / "site/plans/старые").mkdir(parents=True)
    (folder / "site/readme.txt").write_text("site\n")
    (folder / "site/plans/測量.txt").write_text("plan\n")
    (folder / "site/plans/старые/план.txt").write_text("old plan\n")


def run(runner, program, command, folder):
    """What the command prints, its errors and its exit code if that is not 0."""
    arguments = shlex.split(command[len(PROMPT):])
    done = subprocess.run([runner, program, *arguments], cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, encoding="utf-8", timeout=300)
    return done.stdout + (f"[exit code {done.returncode}]\n" if done.returncode else "")


def record(runner, program, commands):
    with tempfile.TemporaryDirectory() as name:
        fill(Path(name))
        return "".join(command + "\n" + run(runner, program, command, name) for command in commands)


def again(runner, program, page):
    """The text of a page, and what it is with its commands run again."""
    text = (TOP / page).read_text(encoding="utf-8")

    def fill_in(match):
        commands = [line for line in match[2].splitlines() if line.startswith(PROMPT)]
        return match[1] + record(str(Path(runner).resolve()), str(Path(program).resolve()), commands) + match[3]

    if not RECORDING.search(text):
        sys.exit(f"{page} holds no recording")
    return text, RECORDING.sub(fill_in, text)


def main(runner, program, check=False):
    stale = []
    for page in PAGES:
        text, recorded = again(runner, program, page)
        if not check:
            (TOP / page).write_text(recorded, encoding="utf-8")
        elif recorded != text:
            sys.stdout.writelines(difflib.unified_diff(text.splitlines(True), recorded.splitlines(True), page,
                                                       "what the commands print"))
            stale.append(page)
    if stale:
        sys.exit(f"{', '.join(stale)}: the commands print something else: run scripts/record-terminal.py")


if __name__ == "__main__":
    main(*sys.argv[1:3], "--check" in sys.argv[3:])
