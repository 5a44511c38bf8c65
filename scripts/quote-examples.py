#!/usr/bin/env python3
"""Puts files of the project into the pages that quote them: quote-examples.py [--check]

A page says where a block comes from, and the block behind it is replaced by the file:

    <!-- quoted from examples/points/main.cpp -->
    ```cpp
    ...
    ```

With --check nothing is written, and a page that differs from its files is a failure.
"""
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
LANGUAGES = {".cpp": "cpp", ".txt": "text", ".sh": "sh", ".cmake": "cmake"}
QUOTE = re.compile(r"<!-- quoted from (?P<file>\S+) -->\n```\w*\n.*?^```\n", re.DOTALL | re.MULTILINE)


def quote(match):
    file = TOP / match["file"]
    return f"<!-- quoted from {match['file']} -->\n```{LANGUAGES[file.suffix]}\n{file.read_text().rstrip()}\n```\n"


def main(check):
    quoted, stale = set(), []
    for page in [TOP / "README.md", *sorted((TOP / "docs").glob("*.md"))]:
        text = page.read_text()
        quoted.update(match["file"] for match in QUOTE.finditer(text))
        filled = QUOTE.sub(quote, text)
        if filled != text:
            stale.append(page)
            if not check:
                page.write_text(filled)
    unquoted = [path for path in sorted((TOP / "examples").glob("*/main.cpp")) if str(path.relative_to(TOP)) not in quoted]
    for path in unquoted:
        print(f"no page quotes {path.relative_to(TOP)}", file=sys.stderr)
    if check:
        for page in stale:
            print(f"{page.relative_to(TOP)} differs from what it quotes: run scripts/quote-examples.py", file=sys.stderr)
    return 1 if unquoted or (check and stale) else 0


if __name__ == "__main__":
    sys.exit(main("--check" in sys.argv[1:]))
