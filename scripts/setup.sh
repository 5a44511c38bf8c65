#!/usr/bin/env bash
# Installs what the project needs from Debian's packages and makes the Wine prefix: setup.sh [FURTHER-PACKAGE...]
# Safe to run again: nothing that is there is installed anew.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

packages=(
  g++-mingw-w64-x86-64-posix binutils-mingw-w64-x86-64  # the compiler, its C++ library and tools
  cmake ninja-build git python3
  googletest          # sources, cross-compiled by our own build
  libcli11-dev        # command line of the host (headers only)
  nlohmann-json3-dev  # JSON output of the host (headers only)
  wine wine64         # runs what was built
  clang-format-14     # the style, checked by the tests
  clang-tidy-14       # the lint, checked by the tests
  clang-14 lld-14 llvm-14 libwine-dev libc++-14-dev  # the checks of the MSVC interface, by the tests
  doxygen doxygen-awesome-css  # the manual, built by the tests, and its theme
  gdb-mingw-w64 gdb-mingw-w64-target  # the debugger whose printers are tested, and its server for Windows
  libxml2-utils       # xmllint, reads the XML documents that the tests wrote
  librsvg2-bin        # rsvg-convert, paints the pictures that the tests look at
  procps              # finds Wine's server for the benchmarks
  # peers of the benchmarks (headers only)
  libboost1.81-dev librapidxml-dev libconcurrentqueue-dev libasio-dev libfmt-dev libspdlog-dev
  "$@"
)

missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done

if [ ${#missing[@]} -gt 0 ]; then
  command -v apt-get >/dev/null || die "apt-get is missing: this needs Debian 12"
  as_root=()
  if [ "$(id -u)" != 0 ]; then
    command -v sudo >/dev/null || die "packages are missing (${missing[*]}): run as root or install sudo"
    as_root=(sudo)
  fi
  say "installing ${missing[*]}"
  mkdir -p "$top/build"
  log=$top/build/apt.log
  "${as_root[@]}" apt-get update >"$log" 2>&1 || die "apt-get update failed; see build/apt.log"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" \
    >>"$log" 2>&1 || { tail -n 5 "$log" >&2; die "apt-get install failed; see build/apt.log"; }
fi

"$top/scripts/wine-prefix.sh"
