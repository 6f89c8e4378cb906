#!/bin/sh
# Makes the private Wine prefix of a build tree once; later runs reuse it.
#
# A crashed program must end as on Windows, with the exception code as its exit code
# (0xC0000005 -> 5). Wine instead starts winedbg on a crash, also when the prefix names no
# debugger, and the process then often ends with exit code 0, which would hide the crash
# from the tests. So the prefix names a crash debugger that does not exist: Wine cannot
# start it and the process ends with the exception code. Also applied to a prefix made by
# an earlier version of this script.
set -e
mkdir -p "$1"
prefix=$(cd "$1" && pwd)
aedebug='HKLM\Software\Microsoft\Windows NT\CurrentVersion\AeDebug'
no_debugger=lumaven-no-crash-debugger
disable_crash_debugger() {
  WINEPREFIX="$prefix" WINEDEBUG=-all wine reg add "$aedebug" /v Debugger /d "$no_debugger" /f >/dev/null
  WINEPREFIX="$prefix" WINEDEBUG=-all wine reg add "$aedebug" /v Auto /d 1 /f >/dev/null
  WINEPREFIX="$prefix" wineserver -w
}
if [ -f "$prefix/system.reg" ] && [ -d "$prefix/drive_c/windows/system32" ]; then
  if grep -q "^\"Debugger\"=\"$no_debugger\"" "$prefix/system.reg"; then
    echo "wine prefix ready: $prefix"
  else
    disable_crash_debugger
    echo "wine prefix ready, crash debugger disabled: $prefix"
  fi
  exit 0
fi
mkdir -p "$prefix"
WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" wineboot -i >/dev/null 2>&1
disable_crash_debugger
echo "wine prefix made: $prefix"
