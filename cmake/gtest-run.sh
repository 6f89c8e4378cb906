#!/bin/sh
# Runs one GoogleTest program under Wine and passes only when GoogleTest itself reports that
# every test it was asked to run has run and none failed.
#
#   cmake/gtest-run.sh PROGRAM.exe [GoogleTest arguments...]
#
# The exit code alone proves nothing under Wine: a process that crashes, calls exit(0) in
# the middle of a test or is terminated may still end with code 0. So the program writes
# GoogleTest's XML report, and the run passes only when
#   - the report exists (it is written after the last test, so a process that died early
#     leaves none),
#   - it counts exactly the tests that --gtest_list_tests names for the same arguments,
#   - it counts no failures and no errors,
#   - and the process exit code is 0 (a crash at exit, after the report, still fails).
# A run still going after LUMAVEN_SUITE_LIMIT seconds (default 840, under CTest's TIMEOUT of
# 900) has hung: the stack of every thread of every process in the prefix is printed, the
# suite's and those of any program a test started, the prefix's processes are stopped and the
# run fails. CTest's own timeout would kill it without a word about where it stood.
set -u
if [ $# -lt 1 ]; then
  echo "usage: $0 PROGRAM.exe [GoogleTest arguments...]" >&2
  exit 2
fi
program=$1
shift
here=$(cd "$(dirname "$0")" && pwd)
wine_run="$here/wine-run.sh"
name=$(basename "$program" .exe)
limit=${LUMAVEN_SUITE_LIMIT:-840}

fail() {
  echo "gtest-run: $name: FAILED: $*" >&2
  exit 1
}

# Reports go into gtest-reports/ under the working directory (a relative path, which
# Wine resolves there), one per program, replaced by every run.
report_dir=gtest-reports
mkdir -p "$report_dir"
report="$report_dir/$name.xml"
rm -f "$report"

# Into a file, not a pipe: a wineserver started by this program would hold a pipe open
# for seconds after the program has ended.
listing="$report_dir/$name.list"
"$wine_run" "$program" --gtest_list_tests "$@" >"$listing" 2>&1 || fail "could not list its tests (exit code $?): $(cat "$listing")"
expected=$(grep -c '^  [^ ]' "$listing")
# A filter that matches nothing would pass every check below with nothing run.
[ "$expected" -gt 0 ] || fail "no test matches the arguments: $*"

"$wine_run" "$program" "--gtest_output=xml:$report" "$@" &
suite=$!
# A background job ignores the terminal's Ctrl-C: pass an interruption of the runner on.
trap 'kill "$suite" 2>/dev/null; exit 130' INT
trap 'kill "$suite" 2>/dev/null; exit 143' TERM
# Each sleep's wait also reaps the suite once it has ended, so kill -0 then fails.
ticks=0
while kill -0 "$suite" 2>/dev/null; do
  if [ "$ticks" -ge $((limit * 5)) ]; then
    echo "gtest-run: $name: still running after $limit s; the stacks of the prefix's processes:" >&2
    timeout -k 5 120 "$wine_run" winedbg --command "bt all" >&2
    "$wine_run" --server -k 2>/dev/null
    wait "$suite"
    fail "hung: still running after $limit s (the stacks are above)"
  fi
  sleep 0.2
  ticks=$((ticks + 1))
done
wait "$suite"
code=$?

[ -f "$report" ] || fail "no GoogleTest report: the process ended before GoogleTest finished (exit code $code)"
summary=$(grep -m1 '<testsuites ' "$report")
attribute() {
  printf '%s\n' "$summary" | sed -n "s/.* $1=\"\([0-9]*\)\".*/\1/p"
}
tests=$(attribute tests)
failures=$(attribute failures)
errors=$(attribute errors)
[ -n "$tests" ] && [ -n "$failures" ] && [ -n "$errors" ] || fail "unreadable GoogleTest report: $summary"
[ "$tests" -eq "$expected" ] || fail "GoogleTest reported $tests tests, the program lists $expected"
[ "$failures" -eq 0 ] && [ "$errors" -eq 0 ] || fail "$failures of $tests tests failed, $errors errors"
[ "$code" -eq 0 ] || fail "all $tests tests passed, but the process exit code is $code (a crash at exit?)"
echo "gtest-run: $name: $tests tests, all passed"
