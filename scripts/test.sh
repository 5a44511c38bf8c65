#!/usr/bin/env bash
# Installs what is missing, builds the debug preset and runs every test: test.sh [--thorough] [CTEST-OPTION...]
# With --thorough the long checks of thorough.sh follow.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

thorough=
if [ "${1:-}" = --thorough ]; then
  thorough=yes
  shift
fi
"$top/scripts/setup.sh"
"$top/scripts/benchmark-sources.sh"
options=()
[ -z "${CI:-}" ] || options+=(-DQUON_WARNINGS_AS_ERRORS=ON)
build mingw-debug all "${options[@]}"
say "testing"
cd "$top"
[ -n "$thorough" ] || exec ctest --preset mingw-debug "$@"
ctest --preset mingw-debug "$@"
exec "$top/scripts/thorough.sh"
