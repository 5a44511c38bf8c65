#!/usr/bin/env python3
"""Draws the sample survey with the console host: make-sample-plot.py RUNNER PROGRAM [OUT.svg]

RUNNER starts a Windows program (scripts/wine-run.sh), PROGRAM is quonhost.exe. Without OUT.svg the picture of the manual
is replaced.
"""
import subprocess
import sys
import tempfile
from pathlib import Path

TOP = Path(__file__).resolve().parent.parent
SAMPLES = TOP / "host/samples"


def windows_path(path):
    """A Unix path as a program under Wine sees it: drive Z: is the root."""
    return "Z:" + str(Path(path).resolve()).replace("/", "\\")


def main(runner, program, target=TOP / "docs/pictures/sample-survey.svg"):
    with tempfile.TemporaryDirectory() as folder:
        survey = Path(folder) / "survey.xml"
        for command in (["export", SAMPLES / "points.csv", survey, "--faces", SAMPLES / "faces.csv", "--project",
                         "Sample survey"], ["plot", survey, target]):
            arguments = [windows_path(a) if isinstance(a, Path) else a for a in command]
            subprocess.run([runner, program, "landxml", *arguments], check=True)


if __name__ == "__main__":
    main(*sys.argv[1:3], *map(Path, sys.argv[3:]))
