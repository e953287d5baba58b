#!/usr/bin/env bash
# Makes ca.cer, and NAME.key and NAME.cer of each name that is given, for the pages.
# usage: people.sh NAME...
set -euo pipefail
quiet() { "$@" 2>openssl.log || { cat openssl.log >&2 && return 1; }; }

quiet openssl req -x509 -newkey rsa:2048 -nodes -keyout ca.key -out ca.cer -days 365 \
  -subj "/C=XX/O=Example/CN=CA"
for name; do
  quiet openssl req -new -newkey rsa:2048 -nodes -keyout "$name.key" -out "$name.csr" \
    -subj "/C=XX/O=Example/CN=$name"
  quiet openssl x509 -req -in "$name.csr" -CA ca.cer -CAkey ca.key -days 365 -out "$name.cer"
done
rm -f -- openssl.log ./*.csr
