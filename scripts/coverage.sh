#!/usr/bin/env bash
# Measures which lines and branches of the library the tests run, and writes the table for each subsystem into
# docs/testing.md: coverage.sh [CTEST-OPTION...]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$top/scripts/setup.sh" gcovr
build mingw-coverage all
find "$top/build/mingw-coverage" -name '*.gcda' -delete
say "testing"
# One program at a time: two that end together would lose each other's counts. A failed test is reported; what ran, ran.
ctest --test-dir "$top/build/mingw-coverage" -j 1 "$@" || say "tests failed: the table tells what was run all the same"
say "counting"
mkdir -p "$top/build/coverage"
gcovr --root "$top" --gcov-executable x86_64-w64-mingw32-gcov-posix --exclude-throw-branches \
  --exclude-unreachable-branches --gcov-ignore-parse-errors \
  --filter "$top/(paths|traversal|monitoring|support|xml|points|geometry|messaging|module)/" \
  --json "$top/build/coverage/coverage.json" --txt "$top/build/coverage/lines.txt" \
  --html-details "$top/build/coverage/index.html" "$top/build/mingw-coverage"
python3 "$top/scripts/coverage-table.py" "$top/build/coverage/coverage.json" "$top/docs/testing.md"
say "docs/testing.md has the table; build/coverage/index.html shows each line"
