#!/usr/bin/env bash
# Fetches what only the benchmarks need and Debian has as source packages: the benchmark library, and peers whose libraries
# are not built for mingw. Only the upstream archives, checked against Debian's index, into build/sources; nothing of the
# machine's package configuration is touched. Safe to run again.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

sources=$top/build/sources
wanted=(benchmark pugixml croaring)

missing=()
for name in "${wanted[@]}"; do [ -e "$sources/$name/.complete" ] || missing+=("$name"); done
[ ${#missing[@]} -gt 0 ] || exit 0

say "fetching sources of ${missing[*]}"
apt=$sources/apt
mkdir -p "$apt/lists/partial"
cat >"$apt/sources.list" <<END
deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] ${QUON_DEBIAN_MIRROR:-http://deb.debian.org/debian} bookworm main
END
options=(-o "Dir::Etc::sourcelist=$apt/sources.list" -o Dir::Etc::sourceparts=- -o "Dir::State::lists=$apt/lists"
         -o "Dir::Cache::srcpkgcache=" -o "Dir::Cache::pkgcache=" -o APT::Sandbox::User=root)
apt-get "${options[@]}" update >"$sources/apt.log" 2>&1 || die "apt-get update failed; see build/sources/apt.log"

for name in "${missing[@]}"; do
  # 'address' file size hash
  read -r address file _ hash < <(apt-get "${options[@]}" source --print-uris "$name" 2>>"$sources/apt.log" |
                                  grep -E "\.orig\.tar\.[a-z0-9]+ ") || die "Debian has no source package $name"
  rm -rf "${sources:?}/$name"
  mkdir -p "$sources/$name"
  address=${address//\'/}
  /usr/lib/apt/apt-helper "${options[@]}" download-file "$address" "$sources/$file" "$hash" >>"$sources/apt.log" 2>&1 ||
    die "cannot fetch $address; see build/sources/apt.log"
  tar -xf "$sources/$file" -C "$sources/$name" --strip-components=1
  printf '%s\n' "$file" | sed -E 's/^[^_]*_([^+]*).*\.orig\..*/\1/; s/\.orig$//' >"$sources/$name/.complete"
done
