#!/usr/bin/env bash
# Runs one GoogleTest program under Wine: run-test.sh PROGRAM [ARGUMENT...]
# A crash can end a program with exit code 0 there, so success is the code and the closing line together.
#
# Its output goes into a file and is shown from there: Wine's desktop process, which the first window starts, inherits the
# output and lives as long as there are windows in the prefix, and a pipe would not end before it does.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
output=$(mktemp)
program=
trap 'rm -f "$output"; [ -z "$program" ] || kill "$program" 2>/dev/null || true' EXIT
"$here/wine-run.sh" "$@" </dev/null >"$output" 2>&1 &
program=$!
tail -n +1 -f -s 0.1 --pid="$program" "$output"
wait "$program"
grep -q '\[  PASSED  \]' "$output" || { echo "run-test: the program ended before its tests did" >&2; exit 1; }
