#!/usr/bin/env bash
# Signs a Windows file (the DLL or the MSI) in place with Authenticode,
# SHA-256. The certificate comes from QSYNC_SIGN_PFX (a PKCS#12 file) with
# its password in QSYNC_SIGN_PASSWORD; without one, a throw-away test
# certificate made in SIGNING_DIR. A timestamp is added only when
# QSYNC_TIMESTAMP_URL names a timestamp service. The certificate used is left
# in SIGNING_DIR/signing-cert.pem for verification.
# usage: sign-file.sh FILE SIGNING_DIR
set -eu
file="$1"
dir="$2"
here="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
mkdir -p "$dir"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
umask 077
if [ -n "${QSYNC_SIGN_PFX:-}" ]; then
  pfx="$QSYNC_SIGN_PFX"
  # The password goes through a private file, not the command line that
  # every process on the machine can read.
  printf '%s' "${QSYNC_SIGN_PASSWORD:-}" > "$work/password"
else
  "$here/make-test-certificate.sh" "$dir"
  pfx="$dir/test-codesign.pfx"
  cp "$dir/test-codesign.password" "$work/password"
fi
[ -f "$pfx" ] || { echo "sign-file.sh: no certificate file at $pfx" >&2; exit 1; }

extract_certificate() {
  openssl pkcs12 -in "$pfx" -passin "file:$work/password" -clcerts -nokeys "$@" 2>/dev/null |
    openssl x509 -out "$work/cert.pem" 2>/dev/null
}
# A PFX exported by older Windows tools is RC2-encrypted, which OpenSSL 3
# reads only with its legacy provider.
extract_certificate || extract_certificate -legacy ||
  { echo "sign-file.sh: cannot read the certificate in $pfx (wrong password?)" >&2; exit 1; }
timestamp=()
[ -n "${QSYNC_TIMESTAMP_URL:-}" ] && timestamp=(-ts "$QSYNC_TIMESTAMP_URL")
# Into a new file first: a signing that fails leaves the unsigned file whole.
osslsigncode sign -pkcs12 "$pfx" -readpass "$work/password" -h sha256 \
  -n "Qelvo Filewell Sync Add-in for Microsoft Office" "${timestamp[@]}" \
  -in "$file" -out "$work/signed" >/dev/null
mv -f "$work/signed" "$file"
chmod 644 "$file"
umask 022
cp "$work/cert.pem" "$dir/signing-cert.pem"
chmod 644 "$dir/signing-cert.pem"
