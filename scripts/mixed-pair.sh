#!/bin/sh
# The mixed pair: a host and a service built by two compilers that share one C++ runtime (the
# MinGW libstdc++ with posix threads, linked statically into each) must work together, since
# std::function and std::wstring cross the contract. Runs the scenario suite, which drives
# LumavenService.dll in process and through the reference host xelto-host.exe, with the host
# side (scenario_tests.exe, xelto-host.exe, lumaven-bench.exe, lumaven-exit-host.exe,
# XeltoLog.dll, the simulated laptop) of one build and the LumavenService.dll of the other, both ways:
#   clang-host-gcc-service   Clang's host side, GCC's service
#   gcc-host-clang-service   GCC's host side, Clang's service
# Needs both build trees (scripts/build.sh mingw, scripts/build.sh clang). Each pair runs in
# its own folder build-mixed/NAME/bin and Wine prefix build-mixed/wineprefix, and passes only
# on GoogleTest's own report (cmake/gtest-run.sh). Prints one line per pair; exits non-zero
# when either fails.
#
#   scripts/mixed-pair.sh [GoogleTest arguments...]
set -u
cd "$(dirname "$0")/.."
root=$(pwd)
gcc_tree=$root/build
clang_tree=$root/build-clang
mixed=$root/build-mixed
host_files="scenario_tests.exe xelto-host.exe lumaven-bench.exe lumaven-exit-host.exe XeltoLog.dll lumaven-sim.exe sim profiles demo"

for tree in "$gcc_tree" "$clang_tree"; do
  for file in $host_files LumavenService.dll; do
    if [ ! -e "$tree/bin/$file" ]; then
      echo "mixed pair: $tree/bin/$file is missing; build both trees first" >&2
      exit 2
    fi
  done
done
# Two identical DLLs would make the pair prove nothing.
if cmp -s "$gcc_tree/bin/LumavenService.dll" "$clang_tree/bin/LumavenService.dll"; then
  echo "mixed pair: both trees hold the same LumavenService.dll" >&2
  exit 2
fi

export WINEPREFIX="$mixed/wineprefix"
"$root/cmake/make-wineprefix.sh" "$WINEPREFIX" >/dev/null || { echo "mixed pair: no Wine prefix" >&2; exit 2; }

# pair NAME HOST_TREE SERVICE_TREE [GoogleTest arguments...]
pair() {
  name=$1
  host=$2
  service=$3
  shift 3
  bin=$mixed/$name/bin
  rm -rf "$bin"
  mkdir -p "$bin"
  for file in $host_files; do
    cp -R "$host/bin/$file" "$bin/"
  done
  cp "$service/bin/LumavenService.dll" "$bin/"
  log=$mixed/$name/scenario.log
  if (cd "$bin" && "$root/cmake/gtest-run.sh" scenario_tests.exe "$@") >"$log" 2>&1; then
    echo "mixed pair: $name: $(tail -1 "$log")"
  else
    echo "mixed pair: $name: FAILED (the last lines of $log):"
    tail -30 "$log"
    failed=1
  fi
}

failed=0
pair clang-host-gcc-service "$clang_tree" "$gcc_tree" "$@"
pair gcc-host-clang-service "$gcc_tree" "$clang_tree" "$@"
exit $failed
