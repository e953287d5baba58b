#!/usr/bin/env bash
# Makes what a reader has after the tutorial: bytes.h, ca.h, the certificates, and plan.label.
set -euo pipefail
page=$(dirname "$0")/../../docs/tutorial.md
for name in bytes.h ca.h make.c sign.c; do
  sed -n "/^\/\* $name:/,/^\`\`\`/p" "$page" | sed '$d' >"$name"
done
commands() { sed -n 's/^\$ \(openssl .*\)/\1/p' "$page"; }
bash -e <(commands | head -n 7)
cc make.c -o make -ltqlabel
./make
bash -e <(commands | grep 'dgst.* -sign')
cc sign.c -o sign -ltqlabel
./sign
rm make sign make.c sign.c log unsigned.label message signature ./*.csr
