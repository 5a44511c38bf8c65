#!/usr/bin/env bash
# Runs one benchmark program once with its smallest sizes: benchmark-smoke.sh PROGRAM
# Success is the exit code and the closing line together, as a crash can end a program with exit code 0 under Wine.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
output=$("$here/wine-run.sh" "$1" --smoke --benchmark_min_time=0.0001 </dev/null 2>&1) || { echo "$output"; exit 1; }
echo "$output"
grep -q '^benchmarks done' <<<"$output" || { echo "benchmark-smoke: the program ended before its work did" >&2; exit 1; }
