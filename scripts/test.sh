#!/bin/sh
# The README's test command and CI's (.ci/run): builds everything with both compilers, GCC
# into build/ and Clang with LLD into build-clang/, with warnings as errors; runs every suite
# under Wine against each build; runs the mixed pair (scripts/mixed-pair.sh: each compiler's
# host with the other's service), clang-tidy (scripts/tidy.sh) and the format check
# (scripts/format.sh --check). A stage whose build failed skips its suites; every other stage
# runs even after a failure. Ends with each stage's result and time and one line PASS or FAIL;
# the exit code is non-zero on any failure.
#
#   scripts/test.sh [CTest arguments...]   passed to both builds' CTest runs, e.g. -R unit_tests
set -u
cd "$(dirname "$0")/.."
scripts/setup.sh || exit 1

failed=""
summary=""
begin=$(date +%s)
# stage NAME COMMAND...: runs the command and records its result and time.
stage() {
  name=$1
  shift
  echo "== $name"
  start=$(date +%s)
  if "$@"; then
    result=passed
  else
    result=FAILED
    failed="$failed, $name"
  fi
  seconds=$(($(date +%s) - start))
  echo "== $name: $result ($seconds s)"
  summary="$summary$(printf '  %-26s %-8s %5d s' "$name" "$result" "$seconds")
"
  [ "$result" = passed ]
}
skipped() {
  failed="$failed, $1 (skipped)"
  summary="$summary$(printf '  %-26s %-8s' "$1" skipped)
"
}

# The reliability suite runs shorter counts here (the same code paths: a fifth of the fuzzed
# requests and soak commands, a third of the commands per host thread) so that the whole
# command stays within half an hour on a 2-core machine; scripts/reliability.sh runs the
# usual counts, and with --full the long ones.
short_reliability="LUMAVEN_FUZZ_REQUESTS=20000 LUMAVEN_SOAK_COMMANDS=4000 LUMAVEN_THREAD_COMMANDS=100"
if stage "build GCC" scripts/build.sh mingw -DLUMAVEN_WARNINGS_AS_ERRORS=ON; then
  stage "suites GCC" env $short_reliability ctest --preset mingw "$@"
else
  skipped "suites GCC"
fi
if stage "build Clang" scripts/build.sh clang -DLUMAVEN_WARNINGS_AS_ERRORS=ON; then
  stage "suites Clang" env $short_reliability ctest --preset clang "$@"
else
  skipped "suites Clang"
fi
stage "mixed pair" scripts/mixed-pair.sh
stage "clang-tidy" scripts/tidy.sh

stage "format" scripts/format.sh --check

echo
echo "test.sh: stages"
printf '%s' "$summary"
total=$(($(date +%s) - begin))
if [ -z "$failed" ]; then
  echo "test.sh: PASS: both compilers, every suite, the mixed pair, clang-tidy and the format ($total s)"
  exit 0
fi
echo "test.sh: FAIL:${failed#,} ($total s)"
exit 1
