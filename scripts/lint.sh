#!/usr/bin/env bash
# Runs every static check and reports all that fail.
# usage: lint.sh BUILD_DIR   (a configured build with compile_commands.json)
set -euo pipefail
cd "$(dirname "$0")/.."
build=$1
[ -e "$build/compile_commands.json" ] || { echo "$build: no compile_commands.json" >&2; exit 1; }

failed=()
step() {
  echo "lint: $1"
  "${@:2}" || failed+=("$1")
}
tidy() {
  find src -name '*.cpp' -print0 |
    xargs -0 -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet 2> >(grep -v 'warnings generated' >&2)
}
step format scripts/format.sh --check
step layers scripts/check_layers.py
step house scripts/check_house.sh
step tidy tidy
[ ${#failed[@]} -eq 0 ] || { echo "lint: failed: ${failed[*]}" >&2; exit 1; }
