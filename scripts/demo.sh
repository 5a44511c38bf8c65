#!/usr/bin/env bash
# Installs what is missing, builds the release preset and shows the library at its main work, through the console host,
# on real input: the C++ headers of the installed compiler and a survey. What the host reports is compared with what the
# operating system says; a difference ends the demonstration with a failure.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

"$top/scripts/setup.sh"
build mingw-release quonhost
bin=$top/build/mingw-release/bin
quonhost() { "$top/scripts/wine-run.sh" "$bin/quonhost.exe" "$@"; }
# A Unix path as the programs under Wine see it: drive Z: is the root.
windows_path() { printf 'Z:%s' "${1//\//\\}"; }
same() { [ "$2" = "$3" ] || die "$1: the library says \"$2\", the operating system \"$3\""; echo "   $2 (the operating system agrees)"; }

headers=$(dirname "$(x86_64-w64-mingw32-g++-posix -print-file-name=include)")/include/c++
[ -d "$headers" ] || die "the compiler's C++ headers are not at $headers"

say "well-known folders"
quonhost folders

say "a path taken apart"
quonhost split 'C:/projects\site//survey.xml' --relative-to 'C:\projects\plans\'

say "walking $headers"
same "folders" "$(quonhost tree "$(windows_path "$headers")" --totals)" "$(find "$headers" -type d | wc -l) folders"
same "files" "$(quonhost tree "$(windows_path "$headers")" --files --totals)" \
  "$(find "$headers" -type f -printf '%s\n' | awk '{ n++; s += $1 } END { printf "%d files, %d bytes", n, s }')"

part=$headers/bits
scratch=$(mktemp -d)
watcher=
trap '[ -z "$watcher" ] || kill "$watcher" 2>/dev/null || true; rm -rf "$scratch"' EXIT
say "mirroring $part"
quonhost copy "$(windows_path "$part")" "$(windows_path "$scratch/mirror")"
same "mirrored files" "$(quonhost tree "$(windows_path "$scratch/mirror")" --files --totals)" \
  "$(find "$part" -type f -printf '%s\n' | awk '{ n++; s += $1 } END { printf "%d files, %d bytes", n, s }')"
diff -r "$part" "$scratch/mirror" || die "the mirror differs from the original"
echo "   every file is the same, byte for byte"

survey=$scratch/survey.xml
say "watching $survey while it is rewritten"
printf '<LandXML/>\n' >"$survey"
"$top/scripts/wine-run.sh" "$bin/quonhost.exe" watch "$(windows_path "$survey")" >"$scratch/events" &
watcher=$!
# Until both events are there: the watch is set up some time after the program has started.
for ((count = 1; count <= 120; count++)); do
  sleep 0.5
  printf '<LandXML version="1.%d"/>%*s\n' "$count" "$count" '' >"$survey"
  ! { grep -qF " size " "$scratch/events" && grep -qF " write " "$scratch/events"; } || break
done
kill -INT "$watcher"  # as Ctrl+C
wait "$watcher"
watcher=
sed 's/^/   /' "$scratch/events"
for event in size write; do
  grep -qF " $event " "$scratch/events" || die "nobody saw a new $event of the file"
done

say "removing the mirror"
quonhost remove "$(windows_path "$scratch/mirror")"
[ ! -e "$scratch/mirror" ] || die "the mirror is still there"
echo "   gone"

samples=$top/host/samples
site=$(windows_path "$scratch/site.xml")
say "exporting the survey of host/samples as LandXML, with its surface"
quonhost landxml export "$(windows_path "$samples/points.csv")" "$site" \
  --faces "$(windows_path "$samples/faces.csv")" --project "Sample site"
xmllint --noout "$scratch/site.xml" || die "xmllint does not read the document"
quonhost landxml info "$site"
same "points" "$(quonhost landxml info "$site" | sed -n 's/^points  *\(.*\)/\1 points/p')" \
  "$(($(wc -l <"$samples/points.csv") - 1)) points"
same "faces" "$(quonhost landxml info "$site" | sed -n 's/^surface .* \([0-9]* faces\),.*/\1/p')" \
  "$(($(wc -l <"$samples/faces.csv") - 1)) faces"

say "points 1-3, 100 and 101 of it"
quonhost landxml points "$site" --points "1-3, 100, 101"

say "all of its points, back as comma-separated values"
quonhost landxml points "$site" --points 1-9999 --csv >"$scratch/points.csv"
diff "$samples/points.csv" "$scratch/points.csv" || die "the points that came back differ from the survey"
echo "   every number and code is the same, byte for byte"
say "done"
