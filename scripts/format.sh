#!/usr/bin/env bash
# Formats the C and C++ files in place; with --check only reports those that are not formatted.
set -euo pipefail
cd "$(dirname "$0")/.."

mode=(-i)
[ "${1:-}" != --check ] || mode=(--dry-run -Werror)
folders=()
for folder in include src tools examples tests fuzz bench; do
  [ ! -d $folder ] || folders+=("$folder")
done
find "${folders[@]}" -name '*.h' -print0 -o -name '*.c' -print0 -o -name '*.cpp' -print0 |
  xargs -0 clang-format "${mode[@]}"
