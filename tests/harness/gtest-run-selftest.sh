#!/bin/sh
# Proves that the test runner (cmake/gtest-run.sh) fails every way a GoogleTest program can
# end badly under Wine, and passes the one that ends well. Run by CTest as harness_selftest.
#   tests/harness/gtest-run-selftest.sh PATH/harness_probe.exe
set -u
probe=$1
runner="$(cd "$(dirname "$0")/../../cmake" && pwd)/gtest-run.sh"
problems=0
output=$(mktemp)
trap 'rm -f "$output"' EXIT

# expect TEST EXIT_CODE TEXT...: runs one probe test through the runner and checks its
# verdict: the exit code and each text (a grep pattern) in what the runner printed.
expect() {
  test=$1
  want=$2
  shift 2
  # Into a file, not a pipe: a wineserver started by the probe would hold a pipe open for
  # seconds after the probe has ended.
  "$runner" "$probe" "--gtest_filter=Probe.$test" >"$output" 2>&1
  code=$?
  missing=""
  for text in "$@"; do
    grep -q "$text" "$output" || missing="$missing \"$text\""
  done
  if [ "$code" -eq "$want" ] && [ -z "$missing" ]; then
    echo "ok: Probe.$test: exit code $code, $*"
  else
    echo "WRONG: Probe.$test: exit code $code (want $want), output lacks$missing:"
    tail -5 "$output"
    problems=$((problems + 1))
  fi
}

expect Passes 0 "1 tests, all passed"
expect Fails 1 "1 of 1 tests failed"
expect CrashesOnNullRead 1 "no GoogleTest report"
expect ExitsEarlyWithZero 1 "no GoogleTest report"
expect TerminatesWithZero 1 "no GoogleTest report"
expect CrashesAtExit 1 "process exit code is [1-9]"
expect 'Passes:Probe.Fails' 1 "1 of 2 tests failed"

# A hang ends at the runner's own time limit, as a failure that shows where the probe stood.
LUMAVEN_SUITE_LIMIT=5
export LUMAVEN_SUITE_LIMIT
expect Hangs 1 "hung: still running after 5 s" "Backtracing for thread .*harness_probe.exe"
unset LUMAVEN_SUITE_LIMIT

[ "$problems" -eq 0 ] && echo "harness self-test: every bad ending was reported as failed"
exit "$problems"
