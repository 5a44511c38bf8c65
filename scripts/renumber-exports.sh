#!/usr/bin/env bash
# Numbers all exports anew, from 100 on and without gaps, in both lists: renumber-exports.sh [BUILD]
# BUILD is a configured build tree, build/mingw-debug without an argument. Only before the first release.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$top"
build=${1:-build/mingw-debug}
cmake --build "$build" --target export-objects
python3 scripts/exports.py renumber module/QuonWin32Utils.def "$build"
python3 scripts/abi.py names --write "$build"
cmake --build "$build" --target quon_win32utils
python3 scripts/exports.py check module/QuonWin32Utils.def "$build/bin/QuonWin32Utils.dll"
