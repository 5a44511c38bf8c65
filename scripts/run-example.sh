#!/usr/bin/env bash
# Runs an example and compares what it prints with a file: run-example.sh PROGRAM EXPECTED
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
"$here/wine-run.sh" "$1" </dev/null 2>&1 | tr -d '\r' | diff --label expected --label printed -u "$2" -
