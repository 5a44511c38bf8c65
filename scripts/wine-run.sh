#!/usr/bin/env bash
# Runs a Windows program under Wine in the project's own prefix: wine-run.sh PROGRAM [ARGUMENT...]
# WINEPREFIX chooses another prefix; without it the prefix is build/wine in the source tree.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export WINEPREFIX=${WINEPREFIX:-$top/build/wine}
export LC_ALL=C.UTF-8  # file names of any script, whatever the caller's locale
export WINEDEBUG=${WINEDEBUG:--all}
exec wine "$@"
