#!/bin/sh
# Configures (once) and builds everything with one compiler's preset: mingw (GCC, the
# default) into build/, clang (Clang and LLD) into build-clang/, debug (GCC, Debug, with
# libstdc++'s and RapidJSON's checks on) into build-debug/. Cache settings given after
# the preset name configure the tree again with them, e.g.
#   scripts/build.sh clang -DLUMAVEN_WARNINGS_AS_ERRORS=ON
set -e
cd "$(dirname "$0")/.."
preset=${1:-mingw}
[ $# -gt 0 ] && shift
case "$preset" in
  mingw) tree=build ;;
  clang) tree=build-clang ;;
  debug) tree=build-debug ;;
  *) echo "usage: $0 [mingw|clang|debug] [-DNAME=VALUE...]" >&2; exit 2 ;;
esac
scripts/setup.sh
if [ ! -f "$tree/build.ninja" ] || [ $# -gt 0 ]; then
  cmake --preset "$preset" "$@" >/dev/null
fi
cmake --build --preset "$preset"
