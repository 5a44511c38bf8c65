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

# Test programs that compile a source of the library once more do so with a header that GCC has precompiled, which clang
# cannot read: only the library's own compile commands count.
commands=$top/build/tidy
mkdir -p "$commands"
python3 - "$build/compile_commands.json" "$commands/compile_commands.json" <<'END'
import json, sys
entries = [entry for entry in json.load(open(sys.argv[1])) if "cmake_pch" not in entry["command"]]
json.dump(entries, open(sys.argv[2], "w"))
END

cd "$top"
# A configuration that does not parse would be passed over with a warning, and everything would pass.
configuration=$(clang-tidy-14 --dump-config 2>&1)
grep -q 'WarningsAsErrors: *.\*' <<<"$configuration" || die ".clang-tidy does not parse"
project_files {base,paths,traversal,support,points,geometry,xml,messaging,monitoring,module}/'*.cpp' |
  xargs -0 -r -n 2 -P 2 clang-tidy-14 --quiet -p "$commands" \
    --extra-arg-before=--target=x86_64-w64-windows-gnu --extra-arg-before=--sysroot="$sysroot" \
    --extra-arg=-Wno-unknown-warning-option --extra-arg=-Wno-unused-command-line-argument
