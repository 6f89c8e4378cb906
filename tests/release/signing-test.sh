#!/bin/sh
# Authenticode signing of the release, as `scripts/package.sh --sign CERT KEY` does it: a
# throwaway code-signing certificate is made with openssl, the package step signs every PE
# file of this build tree's package with it, and each signed file must verify against that
# certificate, the SBOM must carry the signed files' hashes, and one byte changed in the
# signed LumavenService.dll must make its verification fail.
# usage: signing-test.sh BUILD_DIR VERSION
set -eu
build=$(cd "$1" && pwd)
version=$2
source_dir=$(cd "$(dirname "$0")/../.." && pwd)
work=$build/signing-test
name=Lumaven-$version-win64

fail() {
  echo "signing test: $*" >&2
  exit 1
}

rm -rf "$work"
mkdir -p "$work/unpacked"
openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=Lumaven throwaway test signer" \
  -addext "keyUsage=critical,digitalSignature" -addext "extendedKeyUsage=codeSigning" \
  -keyout "$work/key.pem" -out "$work/cert.pem" 2>"$work/openssl.log" || fail "openssl: $(cat "$work/openssl.log")"
/usr/bin/python3 "$source_dir/scripts/package.py" "$build" --out "$work/out" --sign "$work/cert.pem" "$work/key.pem" \
  >"$work/package.log" 2>&1 || fail "the package step with --sign failed: $(tail -5 "$work/package.log")"
(cd "$work/unpacked" && cmake -E tar xf "$work/out/$name.zip")

signed=0
for binary in $(cd "$work/unpacked" && find . -name '*.dll' -o -name '*.exe' | LC_ALL=C sort); do
  osslsigncode verify -CAfile "$work/cert.pem" -in "$work/unpacked/$binary" >"$work/verify.log" 2>&1 ||
    fail "$binary does not verify: $(tail -3 "$work/verify.log")"
  signed=$((signed + 1))
done
[ "$signed" -ge 16 ] || fail "only $signed signed files in the package"
/usr/bin/python3 "$source_dir/tests/release/sbom-check.py" "$work/out/$name.zip" "$version" ||
  fail "the signed package's SBOM does not describe it"

# One byte of the signed service's code changed: the signature no longer matches.
tampered=$work/LumavenService-tampered.dll
cp "$work/unpacked/$name/bin/LumavenService.dll" "$tampered"
offset=4096
byte=$(od -An -tu1 -j "$offset" -N1 "$tampered" | tr -d ' ')
printf "\\$(printf '%03o' $(((byte + 1) % 256)))" | dd of="$tampered" bs=1 seek="$offset" conv=notrunc 2>/dev/null
if osslsigncode verify -CAfile "$work/cert.pem" -in "$tampered" >"$work/tampered.log" 2>&1; then
  fail "LumavenService.dll with byte $offset changed still verifies"
fi
grep -q MISMATCH "$work/tampered.log" || fail "the changed file failed for another reason: $(tail -3 "$work/tampered.log")"
echo "signing test: $signed PE files signed and verified; one changed byte fails verification"
