#!/usr/bin/env bash
# Runs the fuzz targets, all or those named, each for some seconds. Corpora stay in build/fuzz/corpus.
# usage: fuzz.sh SECONDS [der|decode|structure|calls|tool_label|tool_json|tool_sealed]...
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:?usage: fuzz.sh SECONDS [TARGET]...}
shift
[ $# -gt 0 ] || set -- der decode structure calls tool_label tool_json tool_sealed
build=build/fuzz
cmake --preset fuzz >/dev/null
cmake --build --preset fuzz

# figure NAME LOG: the last value that libFuzzer has printed for it
figure() {
  grep -oE "\b$1: [0-9]+" "$2" | tail -n 1 | tr -dc 0-9 || true
}

table=$(printf '%-10s %12s %8s %10s %8s %9s' target executions edges features corpus findings)
all=0
for target in "$@"; do
  corpus=$build/corpus/$target found=$build/findings/$target log=$build/fuzz_$target.log
  kept=fuzz/regressions/$target inputs=labels most=4096
  known=("$corpus")
  [ "$target" != calls ] || inputs=calls most=300
  [ "$target" != tool_json ] || inputs=json most=8192
  [ "$target" != tool_sealed ] || inputs=sealed most=16384
  mkdir -p "$corpus" "$found"
  [ ! -d "$kept" ] || known+=("$kept")
  "$build/bin/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
    -max_len=$most -print_final_stats=1 -dict=fuzz/label.dict -artifact_prefix="$found/" \
    "${known[@]}" "$build/fuzz/seeds/$inputs" >"$log" 2>&1 || tail -n 40 "$log"
  findings=$(find "$found" -type f | wc -l)
  find "$found" -type f -printf 'found: %p\n'
  [ "$findings" -eq 0 ] || echo "to keep one: mkdir -p $kept && cp FILE $kept/WHAT_IT_SHOWS"
  all=$((all + findings))
  table+=$(printf '\n%-10s %12s %8s %10s %8s %9s' "$target" \
    "$(grep -oE 'number_of_executed_units: +[0-9]+' "$log" | tr -dc 0-9)" \
    "$(figure cov "$log")" "$(figure ft "$log")" "$(find "$corpus" -type f | wc -l)" "$findings")
done
printf '\n%s\n' "$table"
exit $((all > 0))
