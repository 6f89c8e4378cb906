#!/bin/sh
# Runs lumaven-bench for a few rounds on a simulated laptop and passes only when it prints
# its whole table and ends with exit code 0: a process that crashes while it exits (after the
# service, the bench's own vendor handles and the fake drivers have been torn down) fails
# here even though every row was printed.
#
# The bench keeps the service loaded to the end, as a host does, so the loader detaches the
# vendor libraries the service loaded (ADLX stays loaded between commands) before the
# service itself. Nothing may call into them after that: the simulated drivers refuse and
# log any call that comes after their own detach, and Wine swallows a fault in a DLL's
# detach code, so the exit code alone would not tell. The drivers' log must hold no refused call.
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
timeout -k 5 240 "$run" lumaven-bench.exe "$rounds" >"$output" 2>&1
code=$?
tail -3 "$output"
grep -q '^start-up (factory + startup_task)' "$output" || { echo "FAILED: the table is incomplete (exit code $code)"; exit 1; }
[ "$code" -eq 0 ] || { echo "FAILED: the table is complete, but lumaven-bench exited with code $code"; exit 1; }
log=$("$run" lumaven-sim.exe log 2>/dev/null)
refused=$(printf '%s\n' "$log" | grep '"refused"')
[ -z "$refused" ] || { printf 'FAILED: exit code 0, but the drivers refused calls:\n%s\n' "$refused"; exit 1; }
if "$run" lumaven-sim.exe show 2>/dev/null | grep -q 'amdadlx64.dll: present'; then
  # Otherwise ADLX was never loaded and nothing above says anything about the exit.
  printf '%s\n' "$log" | grep -q '"call":"ADLXInitialize"' || { echo "FAILED: the run never initialised ADLX"; exit 1; }
fi
echo "lumaven-bench $rounds on $profile: whole table, exit code 0"
