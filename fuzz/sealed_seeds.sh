#!/usr/bin/env bash
# Writes labels of sealed files, as they stand in front of the content and with their body in the clear.
# usage: sealed_seeds.sh TOOL SEEDS
set -euo pipefail
tool=$1 seeds=$2/sealed
mkdir -p "$seeds"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for name in ann bob; do
  openssl genpkey -algorithm SM2 -out "$work/$name.key"
  openssl req -x509 -new -key "$work/$name.key" -subj "/CN=$name" -out "$work/$name.cer" -sm3 \
    -sigopt distid:1234567812345678
done
as_ann=(--key "$work/ann.key" --cert "$work/ann.cer")
"$tool" protect "$0" -o "$work/sealed" --to "$work"/{ann,bob}.cer --privilege reads=3 7=1 \
  --sign "$work/ann.key,$work/ann.cer" --sign "$work/bob.key,$work/bob.cer" >/dev/null
"$tool" log append "$work/sealed" "${as_ann[@]}" --note x
head -c $(($(stat -c %s "$work/sealed") - $(stat -c %s "$0") / 16 * 16 - 32)) "$work/sealed" >"$seeds/sealed"
"$tool" inspect --json "$work/sealed" "${as_ann[@]}" >"$work/json"
"$tool" new "$work/json" -o "$work/plain"
"$tool" edit "$work/plain" --set padding=null -o "$seeds/opened"
