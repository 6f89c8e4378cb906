#!/bin/sh
# Runs `xelto-host bench` for a few rounds on a simulated laptop and passes only when the
# host prints its whole table and ends with exit code 0: a host that crashes while the
# process exits (after the service, the bench's own vendor handles and the fake drivers have
# been torn down) fails here even though every row was printed.
#
# On a laptop with ADLX the last thing the service does is terminate it, from its own unload
# at process exit, which comes after ADLX's library has been detached. Wine swallows a fault
# in a DLL's detach code, so a crash there often still ends with code 0: the simulated
# driver's log must also show that ADLXTerminate ran to its answer.
#   tests/bench/bench-exit-test.sh BIN_DIR PROFILE ROUNDS
set -u
bin=$1
profile=$2
rounds=$3
run="$(cd "$(dirname "$0")/../../cmake" && pwd)/wine-run.sh"
output=$(mktemp)
trap 'rm -f "$output"' EXIT
cd "$bin" || exit 1
"$run" lumaven-sim.exe install "$profile" >"$output" 2>&1 || { cat "$output"; echo "could not install $profile"; exit 1; }
# Into a file, not a pipe: a wineserver started here would hold a pipe open after the host ends.
timeout -k 5 240 "$run" xelto-host.exe --quiet bench "$rounds" >"$output" 2>&1
code=$?
tail -3 "$output"
grep -q '^start-up (factory + startup_task)' "$output" || { echo "FAILED: the table is incomplete (exit code $code)"; exit 1; }
[ "$code" -eq 0 ] || { echo "FAILED: the table is complete, but xelto-host exited with code $code"; exit 1; }
if "$run" lumaven-sim.exe show 2>/dev/null | grep -q 'amdadlx64.dll: present'; then
  last=$("$run" lumaven-sim.exe log 2>/dev/null | grep '"lib":"amdadlx64.dll"' | tail -1)
  case $last in
    *'"call":"ADLXTerminate"'*'"result":0'*) ;;
    *) echo "FAILED: exit code 0, but ADLX's last record is not a finished ADLXTerminate: ${last:-none}"; exit 1 ;;
  esac
fi
echo "xelto-host bench $rounds on $profile: whole table, exit code 0"
