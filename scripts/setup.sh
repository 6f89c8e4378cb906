#!/bin/sh
# Installs the Debian packages the build and the tests need, when any is missing.
# Safe to run again: it does nothing when everything is there.
set -e
# clang-22 and lld-22: the second compiler (the clang preset); clang-tidy-14: scripts/tidy.sh;
# clang-format-14: scripts/format.sh, pinned because each release lays code out differently.
# The release: python3 with python3-pefile (scripts/package.py and the release tests' binary
# check, SBOM and notices checks), osslsigncode and openssl (signing and its test), unzip
# (the guide's walkthrough). gcovr: the coverage report (scripts/coverage.sh).
packages="g++-mingw-w64-x86-64-posix mingw-w64-tools wine wine64 cmake ninja-build rapidjson-dev googletest
          clang-22 lld-22 clang-tidy-14 clang-format-14
          python3 python3-pefile osslsigncode openssl unzip gcovr"
missing=""
for package in $packages; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
    missing="$missing $package"
  fi
done
[ -z "$missing" ] && exit 0

line="apt-get update && DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends$missing"
if [ "$(id -u)" -ne 0 ]; then
  echo "setup: missing Debian packages:$missing" >&2
  echo "setup: run as root: $line" >&2
  exit 1
fi
echo "setup: installing$missing"
apt-get update -qq
DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing >/dev/null
