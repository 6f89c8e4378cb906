#!/bin/sh
# Builds what is missing, then times every command, a display-power event and the start-up
# against the bare calls they cannot avoid, on each shipped simulated laptop in turn, and
# prints one table per laptop. Compare the ratios, not the times: the machine is shared.
# Usage: scripts/bench.sh [ROUNDS]   (default 21)
set -e
cd "$(dirname "$0")/.."
rounds="${1:-21}"
scripts/build.sh >/dev/null
root=$(pwd)
export WINEPREFIX="$root/build/bench-prefix"
cmake/make-wineprefix.sh "$WINEPREFIX" >/dev/null
bin="$root/build/bin"
run() { (cd "$bin" && "$root/cmake/wine-run.sh" "$@"); }

failed=0
for laptop in intel-laptop amd-laptop; do
  run lumaven-sim.exe install "profiles/$laptop.json" >/dev/null
  status=0
  table=$(run lumaven-bench.exe "$rounds") || status=$?
  printf '\n== %s\n' "$laptop"
  printf '%s\n' "$table"
  if [ "$status" -ne 0 ]; then
    echo "lumaven-bench exited with code $status on $laptop" >&2
    failed=1
  fi
done
exit $failed
