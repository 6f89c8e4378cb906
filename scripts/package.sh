#!/bin/sh
# Makes the release package from a clean clone or an existing build tree: builds what is
# missing, then turns the install tree into build/package/Lumaven-<version>-win64.zip and its
# SHA-256 sum file (Lumaven-<version>-win64.zip.sha256, checked with `sha256sum -c`).
set -e
cd "$(dirname "$0")/.."
scripts/build.sh
cpack --config build/CPackConfig.cmake -B build/package
for zip in build/package/Lumaven-*-win64.zip; do
  echo "package: $zip ($(wc -c <"$zip") bytes)"
  (cd build/package && sha256sum -c "$(basename "$zip").sha256")
done
