#!/bin/sh
# Configures (once) and builds everything into build/.
set -e
cd "$(dirname "$0")/.."
scripts/setup.sh
[ -f build/build.ninja ] || cmake --preset mingw >/dev/null
cmake --build --preset mingw
