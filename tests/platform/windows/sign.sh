#!/usr/bin/env bash
# Signs a PE file with a fresh RSA key and a certificate of its own for NAME.
# usage: sign.sh INPUT OUTPUT NAME
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
openssl req -x509 -newkey rsa:2048 -nodes -utf8 -days 3650 -subj "/CN=$3" \
    -addext extendedKeyUsage=codeSigning -keyout "$work/key.pem" -out "$work/certificate.pem" \
    >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
rm -f "$2"
osslsigncode sign -certs "$work/certificate.pem" -key "$work/key.pem" -in "$1" -out "$2" \
    >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
