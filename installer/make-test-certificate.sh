#!/usr/bin/env bash
# Makes, once per build folder, a throw-away self-signed code-signing
# certificate for builds that were given none (CI, a fresh machine), so the
# signing step runs everywhere. Its name says plainly that it is a test
# certificate: nothing signed with it is trusted anywhere.
# usage: make-test-certificate.sh SIGNING_DIR
set -eu
dir="$1"
pfx="$dir/test-codesign.pfx"
[ -f "$pfx" ] && exit 0
mkdir -p "$dir"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
umask 077
openssl req -x509 -newkey rsa:3072 -sha256 -days 3650 -nodes \
  -subj "/O=Qelvo/CN=Qelvo Filewell TEST code signing - not trusted" \
  -addext "keyUsage=critical,digitalSignature" -addext "extendedKeyUsage=codeSigning" \
  -addext "basicConstraints=critical,CA:FALSE" \
  -keyout "$work/key.pem" -out "$work/cert.pem" 2>/dev/null
# The password only keeps the file in PKCS#12 form; it protects nothing.
printf 'test' > "$dir/test-codesign.password"
openssl pkcs12 -export -inkey "$work/key.pem" -in "$work/cert.pem" -name "Qelvo Filewell TEST code signing" \
  -passout "file:$dir/test-codesign.password" -out "$work/test-codesign.pfx"
mv "$work/test-codesign.pfx" "$pfx"
