#!/bin/sh
# Runs a Windows program under Wine in the build tree's private prefix.
# WINEPREFIX may be set by the caller (CTest sets it per build tree).
: "${WINEPREFIX:=${LUMAVEN_WINEPREFIX:-$HOME/.wine}}"
export WINEPREFIX
export WINEDEBUG=-all
# The simulated GPU is a native dxgi.dll in the prefix's system32.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-dxgi=n}"
exec wine "$@"
