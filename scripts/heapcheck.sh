#!/bin/sh
# Runs every suite once with Wine's heap checking on (WINEDEBUG=warn+heap) and counts the
# heap warnings each one prints, with the GoogleTest test that was running when it came.
#   scripts/heapcheck.sh [SUITE-REGEX]     e.g. scripts/heapcheck.sh 'unit|scenario'
# Logs go to build/heapcheck/<suite>.log. Exit code 1 when any suite printed a heap warning
# or failed. Programs the suites start (xelto-host, lumaven-sim) inherit the setting; their
# output is captured by the tests, so a warning there shows as a failed test.
set -u
cd "$(dirname "$0")/.."
scripts/build.sh >/dev/null || exit 2
export LUMAVEN_WINEDEBUG=warn+heap
# The checking heap holds freed blocks back before it reuses them, so the soak's private bytes
# swing by some ten MiB either way in a run that leaks nothing (the ordinary runs keep the
# 1 MiB bound); this run is about heap misuse, not growth.
export LUMAVEN_SOAK_PRIVATE_BYTES_BOUND=33554432
logs=build/heapcheck
mkdir -p "$logs"
pattern="${1:-.}"
problems=0
heap_warning=':\(warn\|err\):heap:'

# The check's own check: a probe that frees a block twice and one that writes to a freed
# block must each be reported, or a quiet run proves nothing. (Wine 8 reports these two
# kinds, and passing a bad pointer to the heap; it does not see a write just past the end of
# a block.)
export WINEPREFIX="$PWD/build/wineprefix"
for probe in FreesTwice WritesAfterFree; do
  log="$logs/probe-$probe.log"
  cmake/wine-run.sh build/bin/harness_probe.exe "--gtest_filter=Probe.$probe" >"$log" 2>&1
  if ! grep -q "$heap_warning" "$log"; then
    echo "heap checking is not on: Probe.$probe (a heap misuse on purpose) was not reported; see $log"
    exit 2
  fi
  printf '%-20s reported, as it must be\n' "Probe.$probe"
done
for suite in $(ctest --test-dir build -N | sed -n 's/^ *Test *#[0-9]*: //p' | grep -v '^wineprefix$' | grep -E "$pattern"); do
  log="$logs/$suite.log"
  ctest --test-dir build -R "^$suite\$" -V >"$log" 2>&1
  status=$?
  warnings=$(grep -c "$heap_warning" "$log")
  printf '%-20s heap warnings: %s%s\n' "$suite" "$warnings" "$([ $status -ne 0 ] && echo ', suite FAILED')"
  # Each warning with the test that was running: the test names its subject (the service,
  # the logging library, the host or a simulated driver).
  awk '/\[ RUN      \]/ { test = $NF } /:(warn|err):heap:/ { print "    " (test == "" ? "(outside a test)" : test) ": " $0 }' "$log"
  [ "$warnings" -eq 0 ] && [ $status -eq 0 ] || problems=1
done
exit $problems
