#!/bin/sh
# How much of the service and of the logging library the suites run: builds the coverage tree
# (build-coverage/, preset coverage: the Debug build with gcov's counters), runs the suites
# there under Wine, and writes with gcovr
#   build-coverage/coverage/service/index.html   the service (src/), line by line
#   build-coverage/coverage/logging/index.html   the host logging library (host/logging/)
# and one summary line each: lines, functions, and branches counted without the branches
# that only throw and those the compiler made unreachable.
#
# The counters are written by each test process as it ends, through Wine's view of the
# build folder (Z:), into the .gcda files beside the objects; every run starts from zero.
#
#   scripts/coverage.sh [CTest arguments...]   e.g. -R unit_tests for one suite's share
set -u
cd "$(dirname "$0")/.."
scripts/setup.sh || exit 1
root=$(pwd)
tree=$root/build-coverage
report=$tree/coverage

[ -f "$tree/build.ninja" ] || cmake --preset coverage >/dev/null || exit 1
cmake --build --preset coverage || exit 1
find "$tree" -name '*.gcda' -delete
rm -rf "$report"
mkdir -p "$report/service" "$report/logging"

# The suites' shorter counts, as in the test command. The import coverage test is left out:
# gcov's runtime adds its own imports to the DLL, which the list of reasons does not name.
LUMAVEN_FUZZ_REQUESTS=${LUMAVEN_FUZZ_REQUESTS:-10000} LUMAVEN_SOAK_COMMANDS=${LUMAVEN_SOAK_COMMANDS:-2000} \
  LUMAVEN_THREAD_COMMANDS=${LUMAVEN_THREAD_COMMANDS:-50} GTEST_FILTER=-ImportCoverage.* \
  ctest --preset coverage "$@"
suites=$?

found=$(find "$tree" -name '*.gcda' | wc -l)
if [ "$found" -eq 0 ]; then
  echo "coverage: no counters were written (no .gcda file under $tree)" >&2
  exit 1
fi

# gcovr reads the counters with the cross compiler's own gcov.
summary() {
  name=$1
  filter=$2
  gcovr --root "$root" --object-directory "$tree" --gcov-executable x86_64-w64-mingw32-gcov \
    --filter "$filter" --exclude-throw-branches --exclude-unreachable-branches \
    --html-details "$report/$name/index.html" --print-summary >"$report/$name/summary.txt" 2>"$report/$name/gcovr.log" ||
    { cat "$report/$name/gcovr.log" >&2; return 1; }
  lines=$(sed -n 's/^lines: \([0-9.]*%\).*/\1/p' "$report/$name/summary.txt")
  functions=$(sed -n 's/^functions: \([0-9.]*%\).*/\1/p' "$report/$name/summary.txt")
  branches=$(sed -n 's/^branches: \([0-9.]*%\).*/\1/p' "$report/$name/summary.txt")
  echo "coverage: $name ($filter): lines $lines, functions $functions, branches $branches (without throw-only and unreachable branches); $report/$name/index.html"
}
summary service 'src/' || exit 1
summary logging 'host/logging/' || exit 1
[ "$suites" -eq 0 ] || { echo "coverage: some suites failed (see above); the figures count what ran" >&2; exit 1; }
