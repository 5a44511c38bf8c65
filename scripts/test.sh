#!/usr/bin/env bash
# Installs what is missing, builds the debug preset and runs every test: test.sh [CTEST-OPTION...]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$top/scripts/setup.sh"
"$top/scripts/benchmark-sources.sh"
options=()
[ -z "${CI:-}" ] || options+=(-DQUON_WARNINGS_AS_ERRORS=ON)
build mingw-debug all "${options[@]}"
say "testing"
cd "$top"
exec ctest --preset mingw-debug "$@"
