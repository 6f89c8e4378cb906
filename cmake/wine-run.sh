#!/bin/sh
# Runs a Windows program under Wine in the build tree's private prefix.
#   cmake/wine-run.sh PROGRAM [ARGUMENTS...]
#   cmake/wine-run.sh --server [ARGUMENTS...]   that prefix's wineserver, e.g. --server -k
# WINEPREFIX may be set by the caller (CTest sets it per build tree).
: "${WINEPREFIX:=${LUMAVEN_WINEPREFIX:-$HOME/.wine}}"
export WINEPREFIX
# LUMAVEN_WINEDEBUG turns Wine's debug channels on for a checking run (scripts/heapcheck.sh).
export WINEDEBUG="${LUMAVEN_WINEDEBUG:--all}"
# The simulated GPU is a native dxgi.dll in the prefix's system32. Wine's own file there is
# marked builtin and is refused as native, so "b" must follow: without it a prefix that has
# Wine's dxgi.dll back cannot load Wine's WMI provider (which imports dxgi.dll) at all.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-dxgi=n,b}"
if [ "${1:-}" = "--server" ]; then
  shift
  exec wineserver "$@"
fi
exec wine "$@"
