#!/usr/bin/env bash
# Runs an example under Wine and compares what it prints with what it should: run.sh PROGRAM EXPECTED
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
printed=$("$here/../scripts/wine-run.sh" "$1" </dev/null | tr -d '\r')
diff -u "$2" - <<<"$printed"
