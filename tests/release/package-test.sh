#!/bin/sh
# The release package, checked as a host vendor receives it: made by the package step from
# this build tree, its checksum verified, unpacked, its file list compared with the manifest
# kept beside this script, its stripped binaries, version resources and SBOM checked, and then
# its xelto-host.exe run against its LumavenService.dll on a simulated laptop in a fresh Wine
# prefix. The answer (output and the AUX writes that reached the panel) must be the build
# tree's answer on the same laptop. The zip stays in BUILD_DIR/package-test/out for the guide
# walkthrough.
# usage: package-test.sh BUILD_DIR VERSION
set -eu
build=$(cd "$1" && pwd)
version=$2
source_dir=$(cd "$(dirname "$0")/../.." && pwd)
name=Lumaven-$version-win64
work=$build/package-test
objdump=x86_64-w64-mingw32-objdump
windres=x86_64-w64-mingw32-windres

fail() {
  echo "package test: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work/unpacked"

/usr/bin/python3 "$source_dir/scripts/package.py" "$build" --out "$work/out" >"$work/package.log" 2>&1 ||
  fail "the package step failed: $(tail -5 "$work/package.log")"
zip=$work/out/$name.zip
[ -f "$zip" ] || fail "no $name.zip in $work/out"
(cd "$work/out" && sha256sum -c "$name.zip.sha256" >/dev/null) || fail "$name.zip does not match its .sha256 file"
echo "package: $name.zip, $(wc -c <"$zip") bytes"

(cd "$work/unpacked" && cmake -E tar xf "$zip")
root=$work/unpacked/$name
[ -d "$root" ] || fail "the zip has no top folder $name"

# The file list: the manifest's lines for every build and for this compiler's debug files,
# with the package's name for @PACKAGE@.
compiler=gcc
[ -f "$build/bin/LumavenService.pdb" ] && compiler=clang
sed -n -e "s/^\(all\|$compiler\): *//p" "$source_dir/tests/release/package-manifest.txt" | sed "s/@PACKAGE@/$name/" |
  LC_ALL=C sort >"$work/expected-files.txt"
(cd "$root" && find . -type f | sed 's|^\./||' | LC_ALL=C sort) >"$work/files.txt"
diff -u "$work/expected-files.txt" "$work/files.txt" >&2 ||
  fail "the zip's file list is not tests/release/package-manifest.txt's (update it when a file is meant to come or go)"

/usr/bin/python3 "$source_dir/tests/release/sbom-check.py" "$zip" "$version" || fail "the SBOM does not describe the zip"

# Stripped binaries; the product's debug information beside them, found again by debuglink.
for binary in "$root"/bin/*.dll "$root"/bin/*.exe "$root"/share/lumaven/sim/lumaven-sim.exe \
  "$root"/share/lumaven/sim/fake-vendor-libraries/*.dll; do
  if "$objdump" -h "$binary" | grep -q ' \.debug_'; then
    fail "$binary still carries debug sections"
  fi
done
if [ "$compiler" = gcc ]; then
  for binary in "$root"/bin/*.dll "$root"/bin/*.exe; do
    "$objdump" -h "$binary" | grep -q ' \.gnu_debuglink ' || fail "$binary has no debuglink"
    "$objdump" -h "$binary.debug" | grep -q ' \.debug_info ' || fail "$binary.debug holds no debug information"
  done
fi
echo "stripped LumavenService.dll: $(wc -c <"$root/bin/LumavenService.dll") bytes"

# Every binary of the product and the installer carries the version in its resource.
file_version=$(echo "$version" | sed 's/\./, /g')
for binary in "$root"/bin/*.dll "$root"/bin/*.exe "$root"/share/lumaven/sim/lumaven-sim.exe; do
  resource=$("$windres" -i "$binary" -O rc 2>&1) || fail "no resources in $binary: $resource"
  echo "$resource" | grep -q "VALUE \"ProductVersion\", \"$version\"" || fail "$binary: ProductVersion is not $version"
  echo "$resource" | grep -q "FILEVERSION $file_version, 0" || fail "$binary: FILEVERSION is not $version"
done

# The packaged host and DLL on a simulated Intel laptop in a fresh prefix, then the build tree's.
export WINEPREFIX="$work/prefix"
"$source_dir/cmake/make-wineprefix.sh" "$WINEPREFIX" >/dev/null
wine_run() {
  "$source_dir/cmake/wine-run.sh" "$@" | tr -d '\r'
}
printf 'run _SetOLEDPowerSaveON\nrun GetOledFromRegistry\n' >"$work/answer.script"
answer() {
  (cd "$root/share/lumaven/sim" && wine_run lumaven-sim.exe install profiles/intel-laptop.json >/dev/null)
  wine_run reg delete 'HKLM\SOFTWARE\Xelto\Xelto Lumaven' /f >/dev/null 2>&1 || true
  (cd "$1" && wine_run xelto-host.exe script "$(cd "$work" && pwd)/answer.script")
  echo "AUX writes that reached the panel:"
  (cd "$root/share/lumaven/sim" && wine_run lumaven-sim.exe log --aux)
}
expected_versions=$(printf 'xelto-host %s\nLumavenService.dll %s\nXeltoLog.dll %s' "$version" "$version" "$version")
packaged_versions=$(cd "$root/bin" && wine_run xelto-host.exe --version)
[ "$packaged_versions" = "$expected_versions" ] || fail "packaged xelto-host --version printed: $packaged_versions"

answer "$root/bin" >"$work/packaged-answer.txt"
answer "$build/bin" >"$work/build-answer.txt"
grep -q '^command 11 _SetOLEDPowerSaveON: StatusSuccess' "$work/packaged-answer.txt" ||
  fail "the packaged host did not run command 11: $(cat "$work/packaged-answer.txt")"
grep -q 'AUX write' "$work/packaged-answer.txt" || fail "no AUX write reached the panel: $(cat "$work/packaged-answer.txt")"
diff -u "$work/build-answer.txt" "$work/packaged-answer.txt" >&2 || fail "the packaged answer differs from the build tree's"
echo "package test: the packaged host and DLL answer as the build tree does ($(grep -c . "$work/packaged-answer.txt") lines)"
