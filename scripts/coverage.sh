#!/usr/bin/env bash
# Measures which lines and branches of the library the tests run, and writes the table for each subsystem into
# docs/testing.md: coverage.sh [CTEST-OPTION...]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$top/scripts/setup.sh"
build mingw-coverage all
find "$top/build/mingw-coverage" -name '*.gcda' -delete
say "testing"
# One program at a time: two that end together would lose each other's counts. A failed test is reported; what ran, ran.
ctest --test-dir "$top/build/mingw-coverage" -j 1 "$@" || say "tests failed: the table tells what was run all the same"
say "counting"
python3 "$top/scripts/coverage-table.py" x86_64-w64-mingw32-gcov-posix "$top/build/mingw-coverage" "$top" \
  "$top/docs/testing.md" "$top/build/untested-lines.txt"
say "docs/testing.md has the table, build/untested-lines.txt each line and branch that no test runs"
