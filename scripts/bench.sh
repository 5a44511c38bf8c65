#!/usr/bin/env bash
# Measures the library beside its peers: bench.sh [--quick] [AREA...]
# Builds the release preset, prints the figures of each area, keeps them in benchmarks/results and draws the charts of
# docs/performance.md. --quick repeats little, to see whether something changed.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

repetitions=9 time=0.05 areas=()
for argument in "$@"; do
  case $argument in
    --quick) repetitions=3 time=0.02 ;;
    -*) die "unknown option $argument" ;;
    *) areas+=("$argument") ;;
  esac
done

"$top/scripts/setup.sh"
"$top/scripts/benchmark-sources.sh"
build mingw-release benchmarks
bin=$top/build/mingw-release/bin
if [ ${#areas[@]} = 0 ]; then
  for program in "$bin"/benchmark_*.exe; do area=${program##*/benchmark_}; areas+=("${area%.exe}"); done
fi

# All contenders and Wine's server share one processor: on several a call of the system takes twice the time whenever the
# two happen not to be on the same one, and so does a message between two threads.
keep_servers_to() {
  local server
  for server in $(pgrep wineserver); do taskset -acp "$1" "$server" >/dev/null || true; done
}
all_processors=$(taskset -cp $$ | sed 's/.*: //')
processor=${all_processors##*[,-]}
trap 'keep_servers_to "$all_processors"' EXIT

raw=$top/build/benchmarks
mkdir -p "$raw" "$top/benchmarks/results" "$top/docs/pictures"
cd "$raw"
for area in "${areas[@]}"; do
  say "$area"
  # The contenders take turns, so that what else the machine does meets all of them.
  "$top/scripts/wine-prefix.sh"
  keep_servers_to "$processor"
  taskset -c "$processor" "$top/scripts/wine-run.sh" "$bin/benchmark_$area.exe" --benchmark_repetitions=$repetitions \
    --benchmark_min_time=$time --benchmark_enable_random_interleaving=true \
    --benchmark_out="$area.json" --benchmark_out_format=json >"$area.log" 2>&1 </dev/null ||
    { tail -n 5 "$area.log" >&2; die "benchmark_$area failed"; }
  grep -q '^benchmarks done' "$area.log" || die "benchmark_$area ended before its work did"
  result=$top/benchmarks/results/$area.json
  "$top/scripts/benchmark-report.py" "$area" "$area.json" "$result"
done
"$top/scripts/benchmark-report.py" --page "$top/docs/performance.md"
