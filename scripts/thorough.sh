#!/usr/bin/env bash
# The long checks, hours of them, one program at a time: thorough.sh [PHASE...]; test.sh --thorough runs it behind the
# usual tests. Phases: guard, models, sanitize, soak; without any, all of them.
#
#   guard     every test with guard pages behind the library's own blocks
#   models    the comparisons with models, QUON_TEST_CASES (1000000) rounds each
#   sanitize  every test in a build that ends at undefined behaviour
#   soak      QUON_SOAK_SECONDS (600) of each soak
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/common.sh"

[ $# -gt 0 ] || set -- guard models sanitize soak
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

# run_tests PHASE PRESET NAME-PATTERN: with no limit but this one for a program, in seconds.
run_tests() {
  local phase=$1 preset=$2 pattern=$3 name program
  "$top/scripts/wine-prefix.sh"
  while read -r name program <&3; do
    [[ $name =~ $pattern ]] || continue
    if timeout "${QUON_PROGRAM_SECONDS:-7200}" "$top/scripts/run-test.sh" "$program" >"$logs/$phase-$name.log" 2>&1; then
      say "$phase: $name passed"
    else
      say "$phase: $name FAILED; see build/thorough/$phase-$name.log"
      failed+=("$phase: $name")
    fi
  done 3< <(test_programs "$preset")
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
        '^(paths|points|block_pool|geometry|strings|natural_compare|trace_log|messaging|hostile_input)_test$'
      ;;
    sanitize)
      build mingw-sanitize all
      run_tests sanitize mingw-sanitize '^'
      ;;
    soak)
      build mingw-debug all
      QUON_SOAK_SECONDS=${QUON_SOAK_SECONDS:-600} run_tests soak mingw-debug 'soak'
      ;;
    *) die "no such phase: $phase" ;;
  esac
done

[ ${#failed[@]} = 0 ] || die "failed: $(printf '%s; ' "${failed[@]}")"
say "thorough: all passed"
