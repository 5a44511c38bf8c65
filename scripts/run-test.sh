#!/usr/bin/env bash
# Runs one GoogleTest program under Wine: run-test.sh PROGRAM [ARGUMENT...]
# A crash can end a program with exit code 0 there, so success is the code and the closing line together.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
output=$(mktemp)
trap 'rm -f "$output"' EXIT
"$here/wine-run.sh" "$@" </dev/null 2>&1 | tee "$output"
grep -q '\[  PASSED  \]' "$output" || { echo "run-test: the program ended before its tests did" >&2; exit 1; }
