#!/bin/sh
# Builds everything and runs every test under Wine; ends with CTest's summary.
set -e
cd "$(dirname "$0")/.."
scripts/build.sh
exec ctest --preset mingw "$@"
