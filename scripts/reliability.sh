#!/bin/sh
# Runs the reliability suites (fuzzed requests, eight host threads, soak) on the simulated
# Intel and AMD laptops, then repeats their summary lines.
#
#   scripts/reliability.sh                 the usual bounded counts (scripts/test.sh runs shorter ones)
#   scripts/reliability.sh --full          full counts: 100,000 fuzzed requests, 8 threads x
#                                          5,000 operations and a soak of 200,000 commands and
#                                          20,000 events, on each laptop
#   scripts/reliability.sh --seed N ...    repeat a run with the seed it printed
#
# Further arguments go to the test program, e.g. --gtest_filter='*Soak*'. Single counts can
# be set with LUMAVEN_FUZZ_REQUESTS, LUMAVEN_THREAD_COMMANDS (per thread),
# LUMAVEN_SOAK_COMMANDS and LUMAVEN_SOAK_REAPPLIES.
set -e
cd "$(dirname "$0")/.."
while [ $# -gt 0 ]; do
  case "$1" in
    --full) export LUMAVEN_FULL=1; shift ;;
    --seed) export LUMAVEN_SEED="$2"; shift 2 ;;
    *) break ;;
  esac
done
scripts/build.sh >/dev/null
root=$(pwd)
export WINEPREFIX="$root/build/wineprefix"
cmake/make-wineprefix.sh "$WINEPREFIX" >/dev/null
log="$root/build/reliability.log"
( cd build/bin && "$root/cmake/gtest-run.sh" reliability_tests.exe "$@"; echo $? >"$log.status" ) 2>&1 | tee "$log"
status=$(cat "$log.status")
echo
echo "== summary (also in $log)"
grep '^\[reliability\]' "$log" || true
exit "$status"
