#!/bin/sh
# The README's test command and CI's (.ci/run): builds everything with both compilers, GCC
# into build/ and Clang with LLD into build-clang/, with warnings as errors, and a GCC Debug
# build with the libraries' assertions on and gcov's counters into build-debug/; runs every
# suite under Wine against the two release builds, and the unit, scenario, fault, OS-fault
# and request-fuzz suites against the Debug build, whose coverage of the service and the
# logging library may not fall below scripts/coverage-floor.txt (scripts/coverage.sh); runs
# the mixed pair (scripts/mixed-pair.sh: each compiler's
# host with the other's service), clang-tidy (scripts/tidy.sh), the RapidJSON policy check
# (scripts/check-rapidjson.sh) and the format check (scripts/format.sh --check).
#
# Two lanes run side by side, so that one tree's suites (mostly one core, waiting on Wine)
# overlap the other tree's build: GCC, then Debug; Clang, then clang-tidy. Each stage's output
# goes to build-logs/ and is printed whole when the stage ends. A stage whose build failed
# skips its suites; every other stage runs even after a failure. Ends with each stage's result
# and time and one line PASS or FAIL; the exit code is non-zero on any failure.
#
#   scripts/test.sh [CTest arguments...]   passed to every build's CTest run, e.g. -R unit_tests
set -u
cd "$(dirname "$0")/.."
scripts/setup.sh || exit 1

logs=build-logs
rm -rf "$logs"
mkdir -p "$logs"
begin=$(date +%s)

# stage LANE NAME COMMAND...: runs the command with its output in the lane's log of the
# stage, then prints that log and records the result and time.
stage() {
  lane=$1
  name=$2
  shift 2
  log="$logs/$(echo "$name" | tr ' ' '-').log"
  start=$(date +%s)
  if "$@" >"$log" 2>&1; then
    result=passed
  else
    result=FAILED
  fi
  seconds=$(($(date +%s) - start))
  {
    echo "== $name"
    cat "$log"
    echo "== $name: $result ($seconds s)"
  } >"$log.done"
  cat "$log.done"
  printf '  %-26s %-8s %5d s\n' "$name" "$result" "$seconds" >>"$logs/summary-$lane"
  [ "$result" = passed ]
}
skipped() {
  printf '  %-26s %-8s\n' "$2" skipped >>"$logs/summary-$1"
}

# The reliability suite runs shorter counts here (the same code paths: a fifth of the fuzzed
# requests and soak commands, a third of the commands per host thread) so that the whole
# command stays within half an hour on a 2-core machine; scripts/reliability.sh runs the
# usual counts, and with --full the long ones. The Debug tree fuzzes a tenth.
short_reliability="LUMAVEN_FUZZ_REQUESTS=20000 LUMAVEN_SOAK_COMMANDS=4000 LUMAVEN_THREAD_COMMANDS=100"
debug_reliability="LUMAVEN_FUZZ_REQUESTS=10000"

gcc_lane() {
  if stage 1 "build GCC" scripts/build.sh mingw -DLUMAVEN_WARNINGS_AS_ERRORS=ON; then
    stage 1 "suites GCC" env $short_reliability ctest --preset mingw "$@"
  else
    skipped 1 "suites GCC"
  fi
  if stage 1 "build Debug" scripts/build.sh debug -DLUMAVEN_WARNINGS_AS_ERRORS=ON; then
    stage 1 "suites Debug, coverage" env $debug_reliability scripts/coverage.sh "$@"
  else
    skipped 1 "suites Debug, coverage"
  fi
}
clang_lane() {
  if stage 2 "build Clang" scripts/build.sh clang -DLUMAVEN_WARNINGS_AS_ERRORS=ON; then
    stage 2 "suites Clang" env $short_reliability ctest --preset clang "$@"
  else
    skipped 2 "suites Clang"
  fi
  stage 2 "clang-tidy" scripts/tidy.sh
}

gcc_lane "$@" &
gcc_pid=$!
clang_lane "$@" &
clang_pid=$!
wait $gcc_pid
wait $clang_pid
stage 3 "mixed pair" scripts/mixed-pair.sh
stage 3 "RapidJSON policy" scripts/check-rapidjson.sh
stage 3 "format" scripts/format.sh --check

echo
echo "test.sh: stages"
cat "$logs/summary-1" "$logs/summary-2" "$logs/summary-3"
total=$(($(date +%s) - begin))
failed=$(cat "$logs/summary-1" "$logs/summary-2" "$logs/summary-3" | awk '$NF != "s" || $(NF-2) != "passed" {
  sub(/^ +/, ""); sub(/ +(FAILED|skipped).*/, ""); printf ", %s", $0 }')
if [ -z "$failed" ]; then
  echo "test.sh: PASS: both compilers and the Debug build, every suite, the mixed pair, clang-tidy, the RapidJSON policy and the format ($total s)"
  exit 0
fi
echo "test.sh: FAIL:${failed#,} ($total s)"
exit 1
