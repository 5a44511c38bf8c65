#!/usr/bin/env bash
# Installs the build into a fresh prefix, builds a small program against the installed package alone, and runs it.
# run.sh BUILD-TREE SCRATCH-FOLDER
set -euo pipefail
build=$1
scratch=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../.." && pwd)

rm -rf "$scratch"
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cmake -S "$here/consumer" -B "$scratch/consumer" -G Ninja \
  --toolchain "$top/cmake/toolchain-mingw64.cmake" \
  -DCMAKE_FIND_ROOT_PATH="/usr/x86_64-w64-mingw32;$scratch/prefix" \
  -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/consumer"
cp "$scratch"/prefix/bin/*.dll "$scratch/consumer/"
"$top/scripts/wine-run.sh" "$scratch/consumer/consumer.exe"
