#!/usr/bin/env bash
# Fetches what only the benchmarks need and Debian has as source packages: the benchmark library, and peers whose libraries
# are not built for mingw.
set -euo pipefail
exec "$(dirname "${BASH_SOURCE[0]}")/source-packages.sh" benchmark pugixml croaring
