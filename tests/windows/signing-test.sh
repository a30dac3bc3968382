#!/usr/bin/env bash
# The add-in's DLL and its MSI carry a valid SHA-256 Authenticode signature
# made with the build's certificate; the MSI holds that very signed DLL; and
# one byte changed in a signed DLL breaks its signature. Checked on the Linux
# side with osslsigncode.
# usage: signing-test.sh DLL MSI SIGNING_DIR
set -u
dll="$1"
msi="$2"
signing_dir="$3"
cert="$signing_dir/signing-cert.pem"
failures=0
fail() { echo "FAILED: $*"; failures=$((failures + 1)); }

[ -f "$cert" ] || { echo "FAILED: no signing certificate in $signing_dir"; exit 1; }
subject="$(openssl x509 -in "$cert" -noout -subject -nameopt compat)"
subject="${subject#subject=}"
issuer="$(openssl x509 -in "$cert" -noout -issuer -nameopt compat)"
issuer="${issuer#issuer=}"
# A self-signed certificate (the build's test certificate) is its own trust
# anchor, so the signature itself is what gets checked; a real certificate
# is checked against the system's authorities unless told otherwise.
if [ -n "${QSYNC_SIGN_CAFILE:-}" ]; then cafile="$QSYNC_SIGN_CAFILE"
elif [ "$subject" = "$issuer" ]; then cafile="$cert"
else cafile=/etc/ssl/certs/ca-certificates.crt
fi

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# osslsigncode verify exits 0 only when the digest matches and the chain
# verifies; its report names the signer.
expect_signed() {
  local file="$1" report="$work/$(basename "$1").verify"
  if ! osslsigncode verify -CAfile "$cafile" -in "$file" >"$report" 2>&1; then
    fail "$(basename "$file") does not verify:"; sed 's/^/    /' "$report"; return
  fi
  grep -q "Signature verification: ok" "$report" || fail "$(basename "$file"): no 'Signature verification: ok'"
  grep -qF "Subject: $subject" "$report" || fail "$(basename "$file") is not signed by $subject"
  grep -q "^Message digest algorithm *: SHA256" "$report" || fail "$(basename "$file"): digest is not SHA-256"
  echo "ok: $(basename "$file") signed by $subject (SHA-256)"
}
expect_signed "$dll"
expect_signed "$msi"

# The MSI installs the signed DLL itself, not an unsigned twin.
mkdir -p "$work/extracted"
if msiextract -C "$work/extracted" "$msi" >/dev/null; then
  packed="$(find "$work/extracted" -iname QSyncMSOfficeAddin.dll | head -1)"
  if [ -n "$packed" ] && cmp -s "$packed" "$dll"; then echo "ok: the MSI holds the signed DLL"
  else fail "the DLL inside the MSI differs from the signed DLL"; fi
else
  fail "msiextract could not read $msi"
fi

# One byte changed in the middle of a copy: the digest no longer matches.
cp "$dll" "$work/tampered.dll"
size=$(stat -c %s "$work/tampered.dll")
offset=$((size / 2))
byte=$(od -An -tu1 -j "$offset" -N1 "$work/tampered.dll" | tr -d ' ')
printf "\\$(printf '%03o' $(((byte + 1) % 256)))" | dd of="$work/tampered.dll" bs=1 seek="$offset" conv=notrunc 2>/dev/null
if osslsigncode verify -CAfile "$cafile" -in "$work/tampered.dll" >"$work/tampered.verify" 2>&1; then
  fail "a DLL with byte $offset changed still verifies"
elif ! grep -q "MISMATCH" "$work/tampered.verify"; then
  fail "the changed DLL fails, but not for its digest:"; sed 's/^/    /' "$work/tampered.verify"
else
  echo "ok: a byte changed at offset $offset breaks the signature"
fi

[ "$failures" -eq 0 ] && echo "1 passed, 0 failed" || echo "0 passed, 1 failed"
exit $((failures > 0))
