#!/usr/bin/env bash
# Runs clang-tidy over the library's sources with the compile commands of a build tree: tidy.sh [BUILD-TREE]
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
build=${1:-$top/build/mingw-debug}

# clang finds Debian's mingw-w64 only in the layout of a cross sysroot.
sysroot=$top/build/clang-sysroot
mkdir -p "$sysroot/lib/gcc/x86_64-w64-mingw32"
ln -sfn /usr/lib/gcc/x86_64-w64-mingw32/12-posix "$sysroot/lib/gcc/x86_64-w64-mingw32/12"
ln -sfn /usr/x86_64-w64-mingw32 "$sysroot/x86_64-w64-mingw32"

cd "$top"
git ls-files -co --exclude-standard -z -- {paths,traversal,support,points,geometry,xml,messaging,monitoring,module}/'*.cpp' |
  xargs -0 -r -n 2 -P 2 clang-tidy-14 --quiet -p "$build" \
    --extra-arg-before=--target=x86_64-w64-windows-gnu --extra-arg-before=--sysroot="$sysroot" \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-unused-command-line-argument
