#!/bin/sh
# Builds what is missing, makes a demo Wine prefix and runs the reference host against the
# service on the simulated laptops.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh >/dev/null
root=$(pwd)
export WINEPREFIX="$root/build/demo-prefix"
cmake/make-wineprefix.sh "$WINEPREFIX" >/dev/null
bin="$root/build/bin"
run() { (cd "$bin" && "$root/cmake/wine-run.sh" "$@"); }

say() { printf '\n== %s\n' "$*"; }

say "Simulated Intel laptop (panel 0x4174834C): the service is created"
run lumaven-sim.exe install profiles/intel-laptop.json
run xelto-host.exe create

say "Desktop with an unsupported monitor: the factory refuses"
run lumaven-sim.exe install profiles/desktop.json
run xelto-host.exe create || echo "(xelto-host exit code $?: service unavailable, as expected)"
