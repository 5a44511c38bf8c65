#!/usr/bin/env bash
# The long checks, hours of them: thorough.sh [PHASE...]; test.sh --thorough runs it after the usual tests. Phases: guard,
# models, sanitize, soak, abi; without any, all of them.
#
#   guard     every test with guard pages behind the library's own blocks
#   models    the comparisons with models, QUON_TEST_CASES (1000000) rounds each
#   sanitize  every test in a build that ends at undefined behaviour
#   soak      QUON_SOAK_SECONDS (600) of each soak, all of them at once
#   abi       the test programs in MSVC's ABI, with LLVM's standard library (fetches 130 MB of sources)
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

[ $# -gt 0 ] || set -- guard models sanitize soak abi
logs=$top/build/thorough
mkdir -p "$logs"
failed=()

# test_programs PRESET: name and program of every test that is a GoogleTest program.
test_programs() {
  ctest --test-dir "$top/build/$1" --show-only=json-v1 | python3 -c '
import json, sys
for test in json.load(sys.stdin)["tests"]:
    command = test.get("command", [])
    if command and command[0].endswith("run-test.sh"):
        print(test["name"], command[1])'
}

# run_program PHASE NAME PROGRAM [ARGUMENT...]: with no limit but this one, in seconds, and its output in a log.
run_program() {
  local phase=$1 name=$2 start=$SECONDS
  shift 2
  if timeout "${QUON_PROGRAM_SECONDS:-7200}" "$top/scripts/run-test.sh" "$@" >"$logs/$phase-$name.log" 2>&1; then
    say "$phase: $name passed in $((SECONDS - start)) s"
  else
    say "$phase: $name FAILED; see build/thorough/$phase-$name.log"
    return 1
  fi
}

# run_tests PHASE PRESET NAME-PATTERN: the test programs one after the other.
run_tests() {
  local phase=$1 preset=$2 pattern=$3 name program
  "$top/scripts/wine-prefix.sh"
  while read -r name program <&3; do
    [[ $name =~ $pattern ]] || continue
    run_program "$phase" "$name" "$program" || failed+=("$phase: $name")
  done 3< <(test_programs "$preset")
}

# tests_in PROGRAM: the names of its tests.
tests_in() {
  "$top/scripts/wine-run.sh" "$1" --gtest_list_tests </dev/null | tr -d '\r' |
    awk '/^[^ ]/ { suite = $1 } /^ / { print suite $1 }'
}

# run_soaks PRESET: all soaks at the same time, each in a process of its own.
run_soaks() {
  local name program soak pid
  local -A running=()
  "$top/scripts/wine-prefix.sh"
  while read -r name program; do
    [[ $name =~ soak ]] || continue
    for soak in $(tests_in "$program"); do
      run_program soak "$soak" "$program" --gtest_filter="$soak" &
      running[$!]=$soak
    done
  done < <(test_programs "$1")
  [ ${#running[@]} != 0 ] || die "there are no soaks"
  for pid in "${!running[@]}"; do
    wait "$pid" || failed+=("soak: ${running[$pid]}")
  done
}

for phase in "$@"; do
  case $phase in
    guard)
      build mingw-debug all
      QUON_GUARD_PAGES=1 run_tests guard mingw-debug '^'
      ;;
    models)
      build mingw-debug all
      QUON_TEST_CASES=${QUON_TEST_CASES:-1000000} run_tests models mingw-debug \
        '^(paths|traversal|points|block_pool|block_pool_region|geometry|strings|natural_compare|trace_log|progress_timer|messaging|xml_com|xml_values|hostile_input)_test$'
      ;;
    sanitize)
      build mingw-sanitize all
      run_tests sanitize mingw-sanitize '^'
      ;;
    soak)
      build mingw-debug all
      QUON_SOAK_SECONDS=${QUON_SOAK_SECONDS:-600} run_soaks mingw-debug
      ;;
    abi)
      build mingw-debug all
      "$top/scripts/abi-sources.sh"
      "$top/scripts/wine-prefix.sh"
      "$top/scripts/abi.py" behaviour "$top/build/mingw-debug" >"$logs/abi-behaviour.log" 2>&1 || failed+=("abi: behaviour")
      tail -n 1 "$logs/abi-behaviour.log"
      ;;
    *) die "no such phase: $phase" ;;
  esac
done

[ ${#failed[@]} = 0 ] || die "failed: $(printf '%s; ' "${failed[@]}")"
say "thorough: all passed"
