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
# Wine's own messages go to this file; a failure prints it, since the callers keep only the
# script's exit code and a silent failure cannot be told apart from another one.
log="$prefix.log"
fail() {
  echo "make-wineprefix: $1 ($prefix); Wine printed:" >&2
  cat "$log" >&2
  exit 1
}
disable_crash_debugger() {
  WINEPREFIX="$prefix" WINEDEBUG=-all wine reg add "$aedebug" /v Debugger /d "$no_debugger" /f >>"$log" 2>&1 &&
    WINEPREFIX="$prefix" WINEDEBUG=-all wine reg add "$aedebug" /v Auto /d 1 /f >>"$log" 2>&1 &&
    WINEPREFIX="$prefix" wineserver -w
}
: >"$log"
if [ -f "$prefix/system.reg" ] && [ -d "$prefix/drive_c/windows/system32" ]; then
  if grep -q "^\"Debugger\"=\"$no_debugger\"" "$prefix/system.reg"; then
    echo "wine prefix ready: $prefix"
  else
    disable_crash_debugger || fail "could not disable the crash debugger"
    echo "wine prefix ready, crash debugger disabled: $prefix"
  fi
  exit 0
fi
make_prefix() {
  WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" wineboot -i >>"$log" 2>&1 &&
    WINEPREFIX="$prefix" wineserver -w && disable_crash_debugger
}
# A first wineboot has been seen to fail on a clean machine without a word on the console; the
# half-made prefix is then removed and made once more from nothing before giving up.
if ! make_prefix; then
  echo "make-wineprefix: the first attempt failed, making the prefix again" >>"$log"
  WINEPREFIX="$prefix" wineserver -k >/dev/null 2>&1 || true
  rm -rf "$prefix"
  mkdir -p "$prefix"
  make_prefix || fail "could not make the prefix"
fi
echo "wine prefix made: $prefix"
