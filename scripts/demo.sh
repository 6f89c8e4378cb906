#!/bin/sh
# Builds what is missing, makes a demo Wine prefix and runs the reference host against the
# service on a simulated Intel laptop, a simulated AMD laptop and a desktop it refuses.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh >/dev/null
root=$(pwd)
export WINEPREFIX="$root/build/demo-prefix"
cmake/make-wineprefix.sh "$WINEPREFIX" >/dev/null
cd "$root/build/bin"
wine_run() { "$root/cmake/wine-run.sh" "$@"; }
sim() { wine_run lumaven-sim.exe "$@"; }
host() { wine_run xelto-host.exe "$@"; }
say() { printf '\n== %s\n' "$*"; }

laptop() {
  name=$1
  say "$name: install the simulated laptop"
  sim install "profiles/$2.json"
  say "$name: the panel before"
  sim drivers
  say "$name: start-up, support queries, power saving on, display off and on again"
  host script demo/power-save-on.script
  say "$name: the panel after (power saving on)"
  sim drivers
  say "$name: what reached the panel over the AUX channel (the last block is the re-apply after display-on)"
  sim log --aux
  sim clear-log
  say "$name: power saving off"
  host --quiet script demo/power-save-off.script
  sim drivers
}

laptop "Intel laptop (panel 0x4174834C)" intel-laptop
laptop "AMD laptop (panel 0x416C834C)" amd-laptop

say "Desktop with an unsupported monitor: the factory refuses"
sim install profiles/desktop.json
host create || echo "(xelto-host exit code $?: service unavailable, as expected)"
