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
same "points" "$(quonhost landxml info "$site" | sed -n 's/^points  *\([0-9]*\).*/\1 points/p')" \
  "$(($(wc -l <"$samples/points.csv") - 1)) points"
same "faces" "$(quonhost landxml info "$site" | sed -n 's/^surface .* \([0-9]* faces\),.*/\1/p')" \
  "$(($(wc -l <"$samples/faces.csv") - 1)) faces"

say "points 1-3, 100 and 101 of it"
quonhost landxml points "$site" --points "1-3, 100, 101"

say "all of its points, back as comma-separated values"
quonhost landxml points "$site" --csv >"$scratch/points.csv"
diff "$samples/points.csv" "$scratch/points.csv" || die "the points that came back differ from the survey"
echo "   every number and code is the same, byte for byte"
say "a site with an alignment: the survey, and the road's axis of a straight, two spirals, an arc and a straight"
python3 - "$scratch/site.xml" "$scratch/road.xml" <<'PYTHON'
import math, sys
text = open(sys.argv[1], encoding="utf-8").read()
place, angle = [412302.0, 5321400.0], math.radians(78.7)
def go(kind, length, first=0.0, last=0.0):
    """A piece whose curvature changes from `first` to `last`, walked in small steps."""
    global angle
    start, before, steps = list(place), angle, 2000
    for step in range(steps):
        part = (step + 0.5) / steps
        heading = before + length * (first * part + (last - first) * part * part / 2)
        place[0] += length / steps * math.cos(heading)
        place[1] += length / steps * math.sin(heading)
    angle = before + length * (first + last) / 2
    at = lambda p: f"{p[1]:.4f} {p[0]:.4f}"
    ends = f"<Start>{at(start)}</Start>{{}}<End>{at(place)}</End>"
    if kind == "Line":
        return f'<Line length="{length}">{ends.format("")}</Line>'
    if kind == "Curve":
        center = [start[0] - math.sin(before) / first, start[1] + math.cos(before) / first]
        return f'<Curve rot="ccw" radius="{1 / first}">{ends.format(f"<Center>{at(center)}</Center>")}</Curve>'
    chord = [place[0] - start[0], place[1] - start[1]]
    reach = (chord[0] * math.sin(angle) - chord[1] * math.cos(angle)) / math.sin(angle - before)
    meet = [start[0] + reach * math.cos(before), start[1] + reach * math.sin(before)]
    radius = lambda curvature: f"{1 / curvature}" if curvature else "INF"
    return (f'<Spiral length="{length}" radiusStart="{radius(first)}" radiusEnd="{radius(last)}" rot="ccw" '
            f'spiType="clothoid">{ends.format(f"<PI>{at(meet)}</PI>")}</Spiral>')
bend = 1 / 195
axis = "".join([go("Line", 40), go("Spiral", 50, 0, bend), go("Curve", 25, bend, bend), go("Spiral", 50, bend, 0),
                go("Line", 40)])
alignments = f'<Alignments><Alignment name="Road axis" length="205" staStart="0"><CoordGeom>{axis}</CoordGeom></Alignment></Alignments>'
open(sys.argv[2], "w", encoding="utf-8").write(text.replace("</LandXML>", alignments + "</LandXML>"))
PYTHON
xmllint --noout "$scratch/road.xml" || die "xmllint does not read the document"
quonhost landxml info "$(windows_path "$scratch/road.xml")" | grep -E '^(points|surface|alignment)'

say "plotting it"
picture=$top/build/demo.svg
quonhost landxml plot "$(windows_path "$scratch/road.xml")" "$(windows_path "$picture")"
xmllint --noout "$picture" || die "xmllint does not read the picture"
grep -q '>Road axis<' "$picture" || die "the alignment is not in the picture"
echo "   the picture is build/demo.svg: $(wc -c <"$picture") bytes, any browser shows it"
say "done"
