#!/usr/bin/env bash
# House rules that no linter knows. Prints file:line of each breach.
set -euo pipefail
cd "$(dirname "$0")/.."
export LC_ALL=C
shopt -s lastpipe # so that a breach at the end of a pipe sets the script's own variable
failed=0

# breach MESSAGE: the lines on standard input, if any, break a rule
breach() {
  local lines
  lines=$(cat)
  [ -n "$lines" ] || return 0
  printf '%s\n' "$lines" | sed "s|\$|  <- $1|"
  failed=1
}

# sources FOLDER...: the C and C++ files below the folders that exist
sources() {
  find "$@" -type f \( -name '*.h' -o -name '*.c' -o -name '*.cpp' \) 2>/dev/null | sort
}

# code FILE...: file:line:text without comments and without the contents of literals
code() {
  awk '
    FNR == 1 { inside = 0 }
    {
      line = $0
      gsub(/\\./, "", line)
      gsub(/'\''"'\''/, "", line)
      gsub(/"[^"]*"/, "\"\"", line)
      if (inside) {
        if (!sub(/^.*\*\//, "", line)) next
        inside = 0
      }
      sub(/\/\/.*/, "", line)
      gsub(/\/\*([^*]|\*+[^*\/])*\*+\//, "", line)
      if (sub(/\/\*.*/, "", line)) inside = 1
      if (line ~ /[^ \t]/) print FILENAME ":" FNR ":" line
    }' "$@"
}

mapfile -t src < <(sources src)
mapfile -t all < <(sources include src tools examples tests fuzz bench)
mapfile -t text < <(printf '%s\n' "${all[@]}"; find cmake scripts .ci tests \
  -name '*.cmake' -o -name CMakeLists.txt -o -name '*.sh' -o -name '*.py' -o -path .ci/run | sort -u)
[ ${#src[@]} -gt 0 ] || { echo "no sources found" >&2; exit 1; }

library_code=$(code "${src[@]}")
rule() { grep -P "$1" <<<"$library_code" || true; }

rule '\b(new|goto|throw|try|catch)\b|(?<!=)(?<!= )\bdelete\b' | breach "owners, guards and results do this"
rule '\b(malloc|calloc|realloc|free)\s*\(' | { grep -v '^src/asn1/allocator\.cpp:' || true; } |
  breach "memory comes from Asn1Malloc and goes to Asn1Free"
rule '\b(printf|puts|abort|exit)\s*\(|\bstd::c(out|err)\b' | breach "the library never prints, never aborts"
{ grep -nE '\b(TO[D]O|FIX[M]E|XX[X])\b' "${text[@]}" || true; } | breach "finish it or leave it out"
{ grep -nP '[^\x00-\x7F]' "${text[@]}" || true; } | breach "sources are ASCII"
for file in "${all[@]}"; do
  case $file in *.h) ;; *) continue ;; esac
  awk '/^#/ { ok = /^#pragma once/ || /^#ifndef [A-Z0-9_]+_H_?$/; exit } END { exit !ok }' "$file" ||
    echo "$file:1:"
done | breach "no include guard as the first directive"
wc -l "${src[@]}" | awk '$2 != "total" && $1 > 400 { print $2 ":" $1 ":" }' | breach "above 400 lines"
exit $failed
