#!/usr/bin/env bash
# Writes the seed labels as JSON.
# usage: json_seeds.sh TOOL SEEDS
set -euo pipefail
mkdir -p "$2/json"
for label in "$2"/labels/*; do
  "$1" inspect --json "$label" >"$2/json/${label##*/}" 2>/dev/null || rm "$2/json/${label##*/}"
done
