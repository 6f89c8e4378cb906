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

# expect TEST EXIT_CODE TEXT: runs one probe test through the runner and checks its verdict.
expect() {
  # Into a file, not a pipe: a wineserver started by the probe would hold a pipe open for
  # seconds after the probe has ended.
  "$runner" "$probe" "--gtest_filter=Probe.$1" >"$output" 2>&1
  code=$?
  if [ "$code" -eq "$2" ] && grep -q "$3" "$output"; then
    echo "ok: Probe.$1: exit code $code, \"$3\""
  else
    echo "WRONG: Probe.$1: exit code $code (want $2), output lacks \"$3\":"
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

# A hang never ends in a pass: the caller's time limit (CTest's TIMEOUT) ends it.
timeout -k 5 10 "$runner" "$probe" --gtest_filter=Probe.Hangs >/dev/null 2>&1
code=$?
if [ "$code" -eq 124 ] || [ "$code" -eq 137 ]; then
  echo "ok: Probe.Hangs: still running after 10 s, stopped by the time limit"
else
  echo "WRONG: Probe.Hangs: exit code $code, want the time limit's 124"
  problems=$((problems + 1))
fi
# The stopped program may outlive its Unix parent inside the prefix's wineserver.
wineserver -k 2>/dev/null

[ "$problems" -eq 0 ] && echo "harness self-test: every bad ending was reported as failed"
exit "$problems"
