#!/bin/sh
# Makes the release package from a clean clone or an existing build tree: builds what is
# missing (GCC, build/), then scripts/package.py turns the install tree into
# build/package/Lumaven-<version>-win64.zip, with the third-party notices and the SBOM
# inside, and its SHA-256 sum file (Lumaven-<version>-win64.zip.sha256, checked with
# `sha256sum -c`). The zip is the same bytes for the same commit in any folder
# (scripts/reproduce.sh); SOURCE_DATE_EPOCH, when set, dates its entries instead of the
# last commit.
#
#   scripts/package.sh [--sign CERT KEY]
#
# --sign: every PE file is signed with Authenticode (osslsigncode, SHA-256) with the code
# signing certificate CERT and its private key KEY, both PEM files, before the SBOM and the
# zip are made. Unsigned is the default.
set -e
if [ $# -ne 0 ] && { [ $# -ne 3 ] || [ "$1" != --sign ]; }; then
  echo "usage: $0 [--sign CERT KEY]" >&2
  exit 2
fi
[ $# -eq 3 ] && set -- --sign "$(realpath "$2")" "$(realpath "$3")"
cd "$(dirname "$0")/.."
scripts/build.sh
/usr/bin/python3 scripts/package.py build "$@"
for zip in build/package/Lumaven-*-win64.zip; do
  (cd build/package && sha256sum -c "$(basename "$zip").sha256")
done
