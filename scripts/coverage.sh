#!/bin/sh
# How much of the service and of the logging library the suites run, and a floor it may not
# fall below. Builds the Debug tree (build-debug/, preset debug: assertions on and gcov's
# counters), runs its suites under Wine (the test preset debug: unit, scenario, fault, OS-fault
# and the request fuzzer, with a tenth of the fuzzed requests), and writes with gcovr
#   build-debug/coverage/service/index.html   the service (src/), line by line
#   build-debug/coverage/logging/index.html   the host logging library (host/logging/)
# and one summary line each: lines, functions, and branches counted without the branches
# that only throw and those the compiler made unreachable. Fails when a suite fails or when
# the lines or branches of either fall below the floor in scripts/coverage-floor.txt.
#
# Each test process writes its counters as it ends, through Wine's view of the build folder
# (Z:), into the .gcda files beside the objects; every run starts from zero. Lines that run
# while a module unloads, after gcov has written its counters, show as not run.
#
#   scripts/coverage.sh [CTest arguments...]   e.g. -R unit_tests for one suite's share
#                                              (the floor is then not checked)
set -u
cd "$(dirname "$0")/.."
scripts/setup.sh || exit 1
root=$(pwd)
tree=$root/build-debug
report=$tree/coverage
floor=$root/scripts/coverage-floor.txt

# A tree configured before the preset had the counters is configured again.
grep -q -- '--coverage' "$tree/CMakeCache.txt" 2>/dev/null || cmake --preset debug >/dev/null || exit 1
scripts/build.sh debug >/dev/null || exit 1
find "$tree" -name '*.gcda' -delete
rm -rf "$report"
mkdir -p "$report/service" "$report/logging"

LUMAVEN_FUZZ_REQUESTS=${LUMAVEN_FUZZ_REQUESTS:-10000} ctest --preset debug "$@"
suites=$?

if [ -z "$(find "$tree" -name '*.gcda' -print -quit)" ]; then
  echo "coverage: no counters were written (no .gcda file under $tree)" >&2
  exit 1
fi

# figure NAME KIND: the percentage of KIND (lines, functions, branches) run, to two decimals,
# from the counts gcovr printed ("lines: 98.7% (1173 out of 1189)"), so that one line less
# shows.
figure() {
  sed -n "s/^$2: .*(\([0-9]*\) out of \([0-9]*\)).*/\1 \2/p" "$report/$1/summary.txt" |
    awk '{ if ($2 == 0) print "100.00"; else printf "%.2f\n", int(10000 * $1 / $2) / 100 }'
}

failed=0
# report NAME FILTER: gcovr over the sources FILTER names, read with the cross compiler's gcov.
report() {
  name=$1
  filter=$2
  # The counters are searched for in this tree only, and never inside a Wine prefix: a prefix
  # links back to the home folder and through drive Z: to the whole file system, where other
  # trees' counters (and /proc) are.
  if ! gcovr --root "$root" --object-directory "$tree" --gcov-executable x86_64-w64-mingw32-gcov \
    --exclude-directories '.*/wineprefix$' --exclude-directories '.*/dosdevices$' \
    --filter "$filter" --exclude-throw-branches --exclude-unreachable-branches \
    --html-details "$report/$name/index.html" --print-summary "$tree" >"$report/$name/summary.txt" \
    2>"$report/$name/gcovr.log"; then
    cat "$report/$name/gcovr.log" >&2
    failed=1
    return
  fi
  echo "coverage: $name ($filter): lines $(figure "$name" lines)%, functions $(figure "$name" functions)%," \
    "branches $(figure "$name" branches)% (without throw-only and unreachable branches); $report/$name/index.html"
}

# below NAME KIND: fails when the figure is under the floor's ("NAME KIND PERCENT" lines).
below() {
  wanted=$(awk -v n="$1" -v k="$2" '$1 == n && $2 == k { print $3 }' "$floor")
  got=$(figure "$1" "$2")
  if [ -z "$wanted" ]; then
    echo "coverage: FAILED: scripts/coverage-floor.txt has no floor for $1 $2" >&2
    return 0
  fi
  if awk -v got="$got" -v wanted="$wanted" 'BEGIN { exit !(got + 0 < wanted + 0) }'; then
    echo "coverage: FAILED: $1 $2 $got% is below the floor of $wanted% (scripts/coverage-floor.txt)" >&2
    return 0
  fi
  return 1
}

report service 'src/'
report logging 'host/logging/'
[ "$failed" -eq 0 ] || exit 1
if [ $# -gt 0 ]; then
  echo "coverage: a part of the suites ran (CTest arguments given); the floor is not checked"
else
  for name in service logging; do
    for kind in lines branches; do
      if below "$name" "$kind"; then
        failed=1
      fi
    done
  done
fi
[ "$suites" -eq 0 ] || { echo "coverage: some suites failed (see above)" >&2; exit 1; }
exit "$failed"
