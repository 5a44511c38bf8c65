#!/usr/bin/env bash
# Fetches upstream archives of Debian's source packages into build/sources: source-packages.sh NAME[=PATTERN]...
# PATTERN names the files that are taken out of a large archive. The archives are checked against Debian's index; nothing of
# the machine's package configuration is touched. Safe to run again.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

sources=$top/build/sources
missing=()
for wanted in "$@"; do [ -e "$sources/${wanted%%=*}/.complete" ] || missing+=("$wanted"); done
[ ${#missing[@]} -gt 0 ] || exit 0

say "fetching sources of ${missing[*]%%=*}"
apt=$sources/apt
mkdir -p "$apt/lists/partial"
# The mirror that the machine itself uses, if its lists say which one has this release.
mirror=${QUON_DEBIAN_MIRROR:-$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Codename: bookworm' | head -n 1)}
mirror=${mirror:-http://deb.debian.org/debian}
cat >"$apt/sources.list" <<END
deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $mirror bookworm main
END
options=(-o "Dir::Etc::sourcelist=$apt/sources.list" -o Dir::Etc::sourceparts=- -o "Dir::State::lists=$apt/lists"
         -o "Dir::Cache::srcpkgcache=" -o "Dir::Cache::pkgcache=" -o APT::Sandbox::User=root)
apt-get "${options[@]}" update >"$sources/apt.log" 2>&1 || die "apt-get update failed; see build/sources/apt.log"

for wanted in "${missing[@]}"; do
  name=${wanted%%=*} pattern=
  [ "$name" = "$wanted" ] || pattern=${wanted#*=}
  # 'address' file size hash
  read -r address file _ hash < <(apt-get "${options[@]}" source --print-uris "$name" 2>>"$sources/apt.log" |
                                  grep -E "\.orig\.tar\.[a-z0-9]+ ") || die "Debian has no source package $name"
  rm -rf "${sources:?}/$name"
  mkdir -p "$sources/$name"
  address=${address//\'/}
  /usr/lib/apt/apt-helper "${options[@]}" download-file "$address" "$sources/$file" "$hash" >>"$sources/apt.log" 2>&1 ||
    die "cannot fetch $address; see build/sources/apt.log"
  tar -xf "$sources/$file" -C "$sources/$name" --strip-components=1 ${pattern:+--wildcards "$pattern"}
  [ -z "$pattern" ] || rm "$sources/$file"
  printf '%s\n' "$file" | sed -E 's/^[^_]*_([^+]*).*\.orig\..*/\1/; s/\.orig$//' >"$sources/$name/.complete"
done
