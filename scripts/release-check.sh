#!/usr/bin/env bash
# What a release needs, checked as far as a machine can: release-check.sh
# Ends with the list of what is left for people.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"
cd "$top"

version=$(sed -nE 's/^project\(QuonWin32Utils VERSION ([0-9.]+).*/\1/p' CMakeLists.txt)
[ -n "$version" ] || die "CMakeLists.txt names no version"
say "release $version"

[ -z "$(git status --porcelain)" ] || die "there are changes that are not committed"
! git rev-parse -q --verify "refs/tags/v$version" >/dev/null || die "there is a tag v$version already: raise the version"
grep -qE "^## $version( |$)" CHANGELOG.md || die "CHANGELOG.md has no heading \"## $version\""
! sed -n '/^## Unreleased/,/^## [0-9]/p' CHANGELOG.md | grep -q '^- ' || die "CHANGELOG.md still lists something as unreleased"
python3 scripts/exports.py history module/QuonWin32Utils.def --version "$version"

scripts/test.sh
scripts/demo.sh
build mingw-release all
cmake --build --preset mingw-release --target docs
(cd build/mingw-release && cpack -G ZIP -B package >/dev/null)
say "the package is $(echo build/mingw-release/package/*.zip)"

cat <<END
Left to do:
  1. Build the preset msvc on Windows with Visual Studio and the real MFC, and run the application's own tests with it.
  2. scripts/bench.sh on a quiet machine; look at docs/performance.md and commit the results.
  3. Look at the manual in build/mingw-release/docs/html.
  4. git tag -a v$version -m "$version", and publish the package with the changelog's entry.
END
