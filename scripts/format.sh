#!/usr/bin/env bash
# Formats the C++ sources; with --check it changes nothing and fails when a file is not formatted.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$top"
mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run -Werror)
project_files '*.h' '*.cpp' | xargs -0 -r clang-format-14 "${mode[@]}"
