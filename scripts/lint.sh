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
  find src tools -name '*.cpp' -print0 |
    xargs -0 -P "$(nproc)" -n 1 clang-tidy -p "$build" --quiet 2> >(grep -v 'warnings generated' >&2)
}
# The suppressed two come from templates that it cannot follow: calls that it takes for other ones,
# and decltype in conditions.
check() {
  cppcheck --quiet --error-exitcode=1 --std=c++20 --language=c++ --inline-suppr -j "$(nproc)" \
    --enable=warning,performance,portability --suppress=ignoredReturnValue \
    --suppress=internalAstError -I include -I src src tools
}
step format scripts/format.sh --check
step layers scripts/check_layers.py
step house scripts/check_house.sh
step links scripts/check_links.py
step tidy tidy
step cppcheck check
[ ${#failed[@]} -eq 0 ] || { echo "lint: failed: ${failed[*]}" >&2; exit 1; }
