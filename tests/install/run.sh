#!/usr/bin/env bash
# Installs the build into a fresh prefix, builds the README's example against the installed package alone, and runs it.
# run.sh BUILD-TREE SCRATCH-FOLDER
set -euo pipefail
build=$1
scratch=$2
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
top=$(cd "$here/../.." && pwd)
fail() { echo "install test: $*" >&2; exit 1; }

example=$(sed -n '/^```cpp$/,/^```$/p' "$top/README.md" | sed '/^```/d')
[[ $(<"$here/consumer/main.cpp") == "$example"* ]] || fail "the README's example is not what is compiled here"

rm -rf "$scratch"
cmake --install "$build" --prefix "$scratch/prefix" >/dev/null
cmake -S "$here/consumer" -B "$scratch/consumer" -G Ninja \
  --toolchain "$top/cmake/toolchain-mingw64.cmake" \
  -DCMAKE_FIND_ROOT_PATH="/usr/x86_64-w64-mingw32;$scratch/prefix" \
  -DCMAKE_PREFIX_PATH="$scratch/prefix" >/dev/null
cmake --build "$scratch/consumer"
cp "$scratch"/prefix/bin/*.dll "$scratch/consumer/"

mkdir -p "$scratch/site/old"
touch "$scratch/site/plan.xml" "$scratch/site/plan.bak" "$scratch/site/old/survey.bak"
folder="Z:${scratch//\//\\}\\site"
"$top/scripts/wine-run.sh" "$scratch/consumer/consumer.exe" "$folder" || fail "the consumer failed"
left=$(cd "$scratch/site" && find . -type f)
[ "$left" = ./plan.xml ] || fail "left are: $left"

# The ZIP has what a user looks for.
(cd "$build" && cpack -G ZIP -B "$scratch/package" >/dev/null) || fail "cpack failed"
list=$(python3 -m zipfile -l "$scratch"/package/*.zip | awk '{ print $1 }')
for file in bin/QuonWin32Utils.dll bin/QuonFramework.dll bin/quonhost.exe lib/libQuonWin32Utils.dll.a \
  include/QuonWin32Utils/paths/QuonPath.h lib/cmake/QuonWin32Utils/QuonWin32UtilsConfig.cmake \
  share/doc/QuonWin32Utils/manual/index.md share/doc/QuonWin32Utils/examples/worker/main.cpp \
  share/QuonWin32Utils/debug/QuonWin32Utils.natvis share/QuonWin32Utils/debug/quon_gdb.py; do
  grep -q "/$file\$" <<<"$list" || fail "the package lacks $file"
done
