#!/bin/sh
# Makes the private Wine prefix of a build tree once; later runs reuse it.
set -e
prefix="$1"
if [ -f "$prefix/system.reg" ] && [ -d "$prefix/drive_c/windows/system32" ]; then
  echo "wine prefix ready: $prefix"
  exit 0
fi
mkdir -p "$prefix"
WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" wineboot -i >/dev/null 2>&1
WINEPREFIX="$prefix" wineserver -w
echo "wine prefix made: $prefix"
